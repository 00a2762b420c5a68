// Media property sets written down by hand.
#pragma once

#include "support/byte_builder.h"

#include <cstdint>
#include <vector>

namespace nvx::test {

struct MediaBlock {
  std::uint32_t usedType;
  std::uint32_t parameterMax;
  std::vector<std::int32_t> values;
};

inline ByteBuilder MediaForm(const std::vector<MediaBlock>& blocks) {
  ByteBuilder form;
  form.Text("IDEM").U32(16, 0x00010000, static_cast<std::uint32_t>(blocks.size()));
  for (const MediaBlock& block : blocks) form.Text("HEPM").U32(20, block.usedType, 68, block.parameterMax);
  for (const MediaBlock& block : blocks) {
    form.Text("ADPM");
    for (const std::int32_t value : block.values) form.I32(value);
    form.Zero(4 * (16 - block.values.size()));
  }
  return form;
}

}  // namespace nvx::test
