// Special colour information as JSON: the arrays of each table, word by word, and its VD curves.
#include "payload.h"
#include "payloads/curve_set.h"
#include "payloads/word_arrays.h"

#include <nvxprofile/special_color.h>

#include <memory>

namespace nvx::tool {
namespace {

constexpr std::uint32_t kUsedType = 1;

Json ColorTableToJson(CSpecialColorInfoDataEntry& table, Detail detail) {
  Json curves = Json::array();
  for (CCurveData* const set : table.CurvesVD()) curves.push_back(CurveSetToJson(*set, detail));
  return {{"usedType", table.GetUsedType()},
          {"patternCount", table.GetPatternCount()},
          {"parameters", WordArraysToJson(table.Arrays())},
          {"curvesVD", std::move(curves)}};
}

std::unique_ptr<CSpecialColorInfoDataEntry> ColorTableFromJson(const Node& node) {
  node.At("usedType").Integer(kUsedType, kUsedType);
  const auto arrays = WordArraysFromJson(node.At("parameters"), 2);
  const std::uint32_t sizes[] = {static_cast<std::uint32_t>(arrays[0].size()),
                                 static_cast<std::uint32_t>(arrays[1].size())};
  std::unique_ptr<CSpecialColorInfoDataEntry> table(
      CSpecialColorInfoDataEntry::CreateSpecialColorInfoDataEntry(kUsedType, sizes));
  if (!table) node.Fail("the arrays are too long");
  table->SetPatternCount(node.At("patternCount").I32());
  SetWords(*table, arrays);
  for (const Node& item : node.At("curvesVD").Items()) {
    auto set = std::make_unique<CCurveData>();
    CurveSetFromJson(item, *set, CProfileDataEntry::kVariable);
    table->AddTailVD(set.release());
  }
  return table;
}

}  // namespace

Json SpecialColorToJson(CProfileDataEntry& entry, Detail detail) {
  auto* const colors = dynamic_cast<CSpecialColorInfoEntry*>(&entry);
  if (colors == nullptr || !colors->BufferToData()) return nullptr;
  CSpecialColorInfoData& data = *colors->GetSpecialColorInfoData();
  Json tables = Json::array();
  for (CSpecialColorInfoDataEntry* const table : data.Entries()) tables.push_back(ColorTableToJson(*table, detail));
  return {{"profileColorType", data.GetProfileColorType()}, {"entries", std::move(tables)}};
}

void SpecialColorFromJson(const Node& node, CProfileDataEntry& entry) {
  auto* const colors = dynamic_cast<CSpecialColorInfoEntry*>(&entry);
  if (colors == nullptr) node.Fail("the entry holds no special colours");
  CSpecialColorInfoData& data = *colors->GetSpecialColorInfoData();
  data.DeleteSpecialColorInfo();
  data.SetProfileColorType(node.At("profileColorType").U32());
  for (const Node& item : node.At("entries").Items()) data.AddTail(ColorTableFromJson(item).release());
  if (!entry.DataToBuffer()) {
    node.Fail(
        "words 0, 2 and 3 of array 0 must be its byte length and the number and bytes of the VD curve sets, and the "
        "curves of a set must have the same size");
  }
}

}  // namespace nvx::tool
