#include "entries/entry_fields.h"

#include <nvxprofile/media_property.h>

#include <memory>

namespace nvx {
namespace {

using Block = CMediaPropertyDataEntry;

// A block lists the parameters in use.
void DescribeBlock(FieldCodec& codec, Block& block) {
  std::uint32_t usedType = block.GetUsedType();
  std::int32_t parameterMax = block.GetParameterMax();
  codec.Number({"usedType"}, usedType);
  codec.Number({.name = "parameterMax", .values = {0, Block::kParameterRoom}}, parameterMax);
  if (codec.Fills()) {
    block.SetUsedType(usedType, static_cast<std::uint32_t>(parameterMax));
    if (block.GetParameterMax() != parameterMax) {
      codec.Refuse("parameterMax",
                   "a block of this type has " + std::to_string(block.GetParameterMax()) + " parameters");
    }
  }
  codec.Numbers({.name = "parameters", .count = {0, Block::kParameterRoom}},
                std::span(block.GetRefBuffer(), static_cast<std::size_t>(parameterMax)));
}

}  // namespace

void Describe(FieldCodec& codec, CMediaPropertyEntry& entry) {
  using Entry = CMediaPropertyEntry;
  CMediaPropertyData& data = codec.PayloadOf(entry, &Entry::GetMediaPropertyData, &Entry::GetMediaPropertyData);
  if (codec.Fills()) data.DeleteMediaProperty();
  codec.Groups(
      {"mediaProperties"}, data.Entries(), [&](Block* block) { DescribeBlock(codec, *block); },
      [&](std::size_t) {
        auto block = std::make_unique<Block>();
        DescribeBlock(codec, *block);
        data.AddTail(block.release());
      });
  codec.Rebuild(entry, "the blocks do not fit their form");
}

}  // namespace nvx
