// Curve sets as JSON: the used type of the set, and of each curve its attributes and samples.
#include "payload.h"
#include "payloads/curve_set.h"

#include <nvxprofile/curve_entry.h>

#include <memory>

namespace nvx::tool {
namespace {

constexpr std::size_t kLongestName = CCurveDataEntry::kInkNameLength - 1;

CCurveData* CurvesOf(CProfileDataEntry& entry) {
  auto* const curves = dynamic_cast<CProfileCurveEntry*>(&entry);
  return curves != nullptr ? curves->GetCurveData() : nullptr;
}

Json CurveToJson(CCurveDataEntry& curve) {
  Json samples = Json::array();
  std::uint32_t sample = 0;
  for (std::uint32_t i = 0; curve.GetAt(i, sample); ++i) samples.push_back(sample);
  return {{"inkID", curve.GetInkID()},
          {"inkName", NarrowToJson(curve.GetInkName())},
          {"slotNo", curve.GetSlotNo()},
          {"displayRGB", curve.GetDisplayRGB()},
          {"extendInfo", curve.GetExtendInfo()},
          {"max", curve.GetMax()},
          {"min", curve.GetMin()},
          {"dataType", curve.GetDataType()},
          {"samples", std::move(samples)}};
}

std::unique_ptr<CCurveDataEntry> CurveFromJson(const Node& node) {
  const auto type = static_cast<CCurveDataEntry::typeData>(node.At("dataType").Integer(1, 2));
  std::unique_ptr<CCurveDataEntry> curve(CCurveDataEntry::CreateCurveDataEntry(type));
  curve->SetInkID(static_cast<std::uint32_t>(node.At("inkID").Integer(0, 255)));
  curve->SetInkName(NarrowFromJson(node.At("inkName"), kLongestName).c_str());
  curve->SetSlotNo(node.At("slotNo").U32());
  curve->SetDisplayRGB(node.At("displayRGB").U32());
  curve->SetExtendInfo(node.At("extendInfo").U32());
  curve->SetMax(node.At("max").U32());
  curve->SetMin(node.At("min").U32());
  const auto greatest = static_cast<std::int64_t>(curve->GetMaxBitValue());
  for (const Node& sample : node.At("samples").Items()) {
    curve->Add(static_cast<std::uint32_t>(sample.Integer(0, greatest)));
  }
  return curve;
}

}  // namespace

Json CurveSetToJson(CCurveData& set) {
  Json curves = Json::array();
  bool more = set.GetHeadPosition();
  while (more) curves.push_back(CurveToJson(*set.GetNext(more)));
  return {{"usedType", set.GetUsedType()}, {"curves", std::move(curves)}};
}

void CurveSetFromJson(const Node& node, CCurveData& set) {
  set.DeleteContents();
  set.SetUsedType(node.At("usedType").U32());
  for (const Node& curve : node.At("curves").Items()) set.AddTail(CurveFromJson(curve).release());
}

// The buffer is what a file holds and what every query reads, so the document tells of the buffer.
Json CurvesToJson(CProfileDataEntry& entry) {
  CCurveData* const set = CurvesOf(entry);
  if (set == nullptr || !entry.BufferToData()) return nullptr;
  return CurveSetToJson(*set);
}

void CurvesFromJson(const Node& node, CProfileDataEntry& entry) {
  CCurveData* const set = CurvesOf(entry);
  if (set == nullptr) node.Fail("the entry holds no curves");
  CurveSetFromJson(node, *set);
  if (!entry.DataToBuffer()) node.Fail("the curves are too many for one entry");
}

}  // namespace nvx::tool
