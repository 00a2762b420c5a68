#include "entries/entry_fields.h"
#include "entries/large_parameter/large_parameter_records.h"

#include <nvxprofile/large_parameter.h>

#include <memory>

namespace nvx {
namespace {

using Table = CLargeParameterDataEntry;

constexpr Field kUsedType = {.name = "usedType", .values = {kFixedTable, kPatternTable}};
constexpr Field kPatternCount = {"patternCount", Presence::kSometimes};

std::unique_ptr<Table> MakeTable(std::uint32_t usedType, const std::uint32_t* sizes) {
  return std::unique_ptr<Table>(Table::CreateLargeParameterDataEntry(usedType, sizes));
}

// Tells a table, or makes one of what the source gives, in the place of a blank one.
std::unique_ptr<Table> DescribeTable(FieldCodec& codec, Table& told) {
  std::uint32_t usedType = told.GetUsedType();
  std::int32_t patternCount = told.GetPatternCount();
  codec.Number(kUsedType, usedType);
  if (usedType == kPatternTable) codec.Number(kPatternCount, patternCount);
  const std::size_t count = usedType == kFixedTable ? 1 : 2;
  const auto arrays = DescribeWordArrays(codec, told.Arrays(), count);
  if (!codec.Fills()) return nullptr;
  if (usedType == kFixedTable && arrays[0].size() != CLargeParameterID001Entry::kWordCount) {
    codec.Refuse("parameters",
                 "an array of " + std::to_string(CLargeParameterID001Entry::kWordCount) + " words is expected");
  }
  std::uint32_t sizes[2] = {};
  std::transform(arrays.begin(), arrays.end(), sizes,
                 [](const auto& words) { return static_cast<std::uint32_t>(words.size()); });
  std::unique_ptr<Table> table = MakeTable(usedType, sizes);
  if (usedType == kPatternTable) table->SetPatternCount(patternCount);
  SetWords(table->Arrays(), arrays);
  return table;
}

}  // namespace

void Describe(FieldCodec& codec, CLargeParameterEntry& entry) {
  using Entry = CLargeParameterEntry;
  CLargeParameterData& data = codec.PayloadOf(entry, &Entry::GetLargeParameterData, &Entry::GetLargeParameterData);
  if (codec.Fills()) data.DeleteLargeParameter();
  codec.Groups(
      {"entries"}, data.Entries(), [&](Table* table) { DescribeTable(codec, *table); },
      [&](std::size_t) { data.AddTail(DescribeTable(codec, *MakeTable(kFixedTable, nullptr)).release()); });
  codec.Rebuild(entry, "word 0 of each pattern table must be the byte length of its array");
}

}  // namespace nvx
