#include "entries/entry_fields.h"

#include <nvxprofile/special_color.h>

#include <memory>

namespace nvx {
namespace {

using Table = CSpecialColorInfoDataEntry;

constexpr std::uint32_t kOnlyType = 1;
constexpr Field kUsedType = {.name = "usedType", .values = {kOnlyType, kOnlyType}};

std::unique_ptr<Table> MakeTable(const std::uint32_t* sizes) {
  return std::unique_ptr<Table>(Table::CreateSpecialColorInfoDataEntry(kOnlyType, sizes));
}

std::unique_ptr<Table> FilledTable(FieldCodec& codec, std::int32_t patternCount, const GivenArrays& arrays) {
  const std::uint32_t sizes[] = {static_cast<std::uint32_t>(arrays[0].size()),
                                 static_cast<std::uint32_t>(arrays[1].size())};
  std::unique_ptr<Table> table = MakeTable(sizes);
  if (!table) codec.Refuse("", "the arrays are too long");
  table->SetPatternCount(patternCount);
  SetWords(table->Arrays(), arrays);
  return table;
}

// Tells a table, or makes one of what the source gives, in the place of a blank one.
std::unique_ptr<Table> DescribeTable(FieldCodec& codec, Table& told) {
  std::uint32_t usedType = told.GetUsedType();
  std::int32_t patternCount = told.GetPatternCount();
  codec.Number(kUsedType, usedType);
  codec.Number({"patternCount"}, patternCount);
  const auto arrays = DescribeWordArrays(codec, told.Arrays(), WordArrays::kMostArrays);
  std::unique_ptr<Table> made = codec.Fills() ? FilledTable(codec, patternCount, arrays) : nullptr;
  codec.Groups(
      {"curvesVD"}, (made ? *made : told).CurvesVD(), [&](CCurveData* set) { DescribeCurveSet(codec, *set, 0); },
      [&](std::size_t) {
        auto set = std::make_unique<CCurveData>();
        DescribeCurveSet(codec, *set, CProfileDataEntry::kVariable);
        made->AddTailVD(set.release());
      });
  return made;
}

}  // namespace

void Describe(FieldCodec& codec, CSpecialColorInfoEntry& entry) {
  using Entry = CSpecialColorInfoEntry;
  CSpecialColorInfoData& data =
      codec.PayloadOf(entry, &Entry::GetSpecialColorInfoData, &Entry::GetSpecialColorInfoData);
  if (codec.Fills()) data.DeleteSpecialColorInfo();
  codec.Number({"profileColorType"}, data, &CSpecialColorInfoData::GetProfileColorType,
               &CSpecialColorInfoData::SetProfileColorType);
  codec.Groups(
      {"entries"}, data.Entries(), [&](Table* table) { DescribeTable(codec, *table); },
      [&](std::size_t) { data.AddTail(DescribeTable(codec, *MakeTable(nullptr)).release()); });
  codec.Rebuild(
      entry,
      "words 0, 2 and 3 of array 0 must be its byte length and the number and bytes of the VD curve sets, and "
      "the curves of a set must have the same size");
}

}  // namespace nvx
