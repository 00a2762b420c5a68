// What a report shows of an ICC profile.
#pragma once

#include "payload.h"

#include <cstdint>
#include <span>

namespace nvx::tool {

// Descriptions by language, header facts, tags and gamut; null for bytes that are no ICC profile.
Json IccPart(std::span<const std::uint8_t> profile);

}  // namespace nvx::tool
