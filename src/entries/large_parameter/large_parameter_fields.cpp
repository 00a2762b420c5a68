#include "entries/entry_fields.h"
#include "entries/large_parameter/large_parameter_records.h"

#include <nvxprofile/large_parameter.h>

#include <memory>

namespace nvx {
namespace {

using Table = CLargeParameterDataEntry;

constexpr Field kUsedType = {.name = "usedType", .values = {kFixedTable, kPatternTable}};
constexpr Field kPatternCount = {"patternCount", Presence::kSometimes};

// Tells a table; null stands for one that is made of what the source gives.
std::unique_ptr<Table> DescribeTable(FieldCodec& codec, Table* told) {
  std::uint32_t usedType = told != nullptr ? told->GetUsedType() : kFixedTable;
  std::int32_t patternCount = told != nullptr ? told->GetPatternCount() : 0;
  codec.Number(kUsedType, usedType);
  if (usedType == kPatternTable) codec.Number(kPatternCount, patternCount);
  const std::size_t count = usedType == kFixedTable ? 1 : 2;
  const auto arrays = DescribeWordArrays(codec, told != nullptr ? &told->Arrays() : nullptr, count);
  if (!codec.Fills()) return nullptr;
  if (usedType == kFixedTable && arrays[0].size() != CLargeParameterID001Entry::kWordCount) {
    codec.Refuse("parameters",
                 "an array of " + std::to_string(CLargeParameterID001Entry::kWordCount) + " words is expected");
  }
  std::uint32_t sizes[2] = {};
  std::transform(arrays.begin(), arrays.end(), sizes,
                 [](const auto& words) { return static_cast<std::uint32_t>(words.size()); });
  std::unique_ptr<Table> table(Table::CreateLargeParameterDataEntry(usedType, sizes));
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
      {"entries"}, data.Entries(), [&](Table* table) { DescribeTable(codec, table); },
      [&](std::size_t) { data.AddTail(DescribeTable(codec, nullptr).release()); });
  codec.Rebuild(entry, "word 0 of each pattern table must be the byte length of its array");
}

}  // namespace nvx
