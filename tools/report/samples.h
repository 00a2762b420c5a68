// Samples on their way into a page: little-endian numbers as base64.
#pragma once

#include "payload.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace nvx::tool {

// `width` is 1 or 2, the bytes of a sample.
inline std::string PackSamples(std::span<const std::uint32_t> samples, std::size_t width) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(samples.size() * width);
  for (const std::uint32_t sample : samples) {
    for (std::size_t i = 0; i < width; ++i) bytes.push_back(static_cast<std::uint8_t>(sample >> (8 * i)));
  }
  return ToBase64(bytes.data(), bytes.size());
}

}  // namespace nvx::tool
