#include "entries/entry_fields.h"

#include <nvxprofile/special_color.h>

#include <memory>

namespace nvx {
namespace {

using Table = CSpecialColorInfoDataEntry;

constexpr std::uint32_t kOnlyType = 1;
constexpr Field kUsedType = {.name = "usedType", .values = {kOnlyType, kOnlyType}};

void TellTable(FieldCodec& codec, Table& table) {
  std::uint32_t usedType = table.GetUsedType();
  codec.Number(kUsedType, usedType);
  codec.Number({"patternCount"}, table, &Table::GetPatternCount, &Table::SetPatternCount);
  DescribeWordArrays(codec, table.Arrays(), 0);
  codec.Groups(
      {"curvesVD"}, table.CurvesVD(), [&](CCurveData* set) { DescribeCurveSet(codec, *set, 0); }, [](std::size_t) {});
}

std::unique_ptr<Table> MakeTable(FieldCodec& codec) {
  std::uint32_t usedType = kOnlyType;
  std::int32_t patternCount = 0;
  codec.Number(kUsedType, usedType);
  codec.Number({"patternCount"}, patternCount);
  const auto arrays = DescribeWordArrays(codec, WordArrays(0), WordArrays::kMostArrays);
  const std::uint32_t sizes[] = {static_cast<std::uint32_t>(arrays[0].size()),
                                 static_cast<std::uint32_t>(arrays[1].size())};
  std::unique_ptr<Table> table(Table::CreateSpecialColorInfoDataEntry(kOnlyType, sizes));
  if (!table) codec.Refuse("", "the arrays are too long");
  table->SetPatternCount(patternCount);
  SetWords(table->Arrays(), arrays);
  codec.Groups(
      {"curvesVD"}, table->CurvesVD(), [](CCurveData*) {},
      [&](std::size_t) {
        auto set = std::make_unique<CCurveData>();
        DescribeCurveSet(codec, *set, CProfileDataEntry::kVariable);
        table->AddTailVD(set.release());
      });
  return table;
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
      {"entries"}, data.Entries(), [&](Table* table) { TellTable(codec, *table); },
      [&](std::size_t) { data.AddTail(MakeTable(codec).release()); });
  codec.Rebuild(
      entry,
      "words 0, 2 and 3 of array 0 must be its byte length and the number and bytes of the VD curve sets, and "
      "the curves of a set must have the same size");
}

}  // namespace nvx
