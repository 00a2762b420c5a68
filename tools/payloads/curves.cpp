// Curve sets as JSON: the used type of the set, and of each curve its attributes and samples.
#include "json_text.h"
#include "payload.h"
#include "payloads/curve_set.h"

#include <nvxprofile/curve_entry.h>

#include <memory>

namespace nvx::tool {
namespace {

constexpr std::size_t kLongestInkName = CCurveDataEntry::kInkNameLength - 1;

Json SamplesToJson(CCurveDataEntry& curve, Detail detail) {
  if (detail == Detail::kSizes) return {{"count", curve.GetCount()}};
  Json samples = Json::array();
  std::uint32_t sample = 0;
  for (std::uint32_t i = 0; curve.GetAt(i, sample); ++i) samples.push_back(sample);
  return samples;
}

// Calls put(name, value) for all of a curve but its samples.
template <class Put>
void ForEachAttribute(const CCurveDataEntry& curve, Put put) {
  put("inkID", curve.GetInkID());
  put("inkName", NarrowToJson(curve.GetInkName()));
  put("slotNo", curve.GetSlotNo());
  put("displayRGB", curve.GetDisplayRGB());
  put("extendInfo", curve.GetExtendInfo());
  put("max", curve.GetMax());
  put("min", curve.GetMin());
  put("dataType", curve.GetDataType());
}

Json CurveToJson(CCurveDataEntry& curve, Detail detail) {
  Json json;
  ForEachAttribute(curve, [&](const char* name, const Json& value) { json[name] = value; });
  json["samples"] = SamplesToJson(curve, detail);
  return json;
}

// Ink and samples are what a curve needs; all else has the value of a new curve of 16-bit samples.
std::unique_ptr<CCurveDataEntry> CurveFromJson(const Node& node) {
  const std::uint32_t wanted = node.U32Or("dataType", CCurveDataEntry::kSamples16);
  if (wanted < 1 || wanted > 2) node.At("dataType").Fail("the data type must be 1 or 2");
  std::unique_ptr<CCurveDataEntry> curve(
      CCurveDataEntry::CreateCurveDataEntry(static_cast<CCurveDataEntry::typeData>(wanted)));
  const auto greatest = static_cast<std::int64_t>(curve->GetMaxBitValue());
  curve->SetInkID(static_cast<std::uint32_t>(node.At("inkID").Integer(0, 255)));
  if (node.Has("inkName")) curve->SetInkName(NarrowFromJson(node.At("inkName"), kLongestInkName).c_str());
  curve->SetSlotNo(node.U32Or("slotNo", 0));
  curve->SetDisplayRGB(node.U32Or("displayRGB", 0));
  curve->SetExtendInfo(node.U32Or("extendInfo", 0));
  curve->SetMax(node.U32Or("max", static_cast<std::uint32_t>(greatest)));
  curve->SetMin(node.U32Or("min", 0));
  for (const Node& sample : node.At("samples").Items()) {
    curve->Add(static_cast<std::uint32_t>(sample.Integer(0, greatest)));
  }
  return curve;
}

}  // namespace

Json CurveSetToJson(CCurveData& set, Detail detail) {
  Json curves = Json::array();
  for (CCurveDataEntry* const curve : set.Curves()) curves.push_back(CurveToJson(*curve, detail));
  return {{"usedType", set.GetUsedType()}, {"curves", std::move(curves)}};
}

void CurveSetFromJson(const Node& node, CCurveData& set, std::uint32_t usedType) {
  set.DeleteContents();
  set.SetUsedType(node.U32Or("usedType", usedType));
  for (const Node& curve : node.At("curves").Items()) set.AddTail(CurveFromJson(curve).release());
}

// The buffer is what a file holds and what every query reads, so the document tells of the buffer.
Json CurvesToJson(CProfileDataEntry& entry, Detail detail) {
  CProfileCurveEntry* const holder = entry.AsCurveEntry();
  if (holder == nullptr || !entry.BufferToData()) return nullptr;
  return CurveSetToJson(*holder->GetCurveData(), detail);
}

void WriteCurveSizes(CCurveData& set, JsonWriter& out) {
  const auto put = [&out](const char* name, const Json& value) { out.Member(name, value); };
  out.Object([&] {
    out.Member("usedType", set.GetUsedType());
    out.Name("curves");
    out.Array([&] {
      for (CCurveDataEntry* const curve : set.Curves()) {
        out.Object([&] {
          ForEachAttribute(*curve, put);
          out.Name("samples");
          out.Object([&] { out.Member("count", curve->GetCount()); });
        });
      }
    });
  });
}

void CurvesFromJson(const Node& node, CProfileDataEntry& entry) {
  CProfileCurveEntry* const holder = entry.AsCurveEntry();
  if (holder == nullptr) node.Fail("the entry holds no curves");
  CurveSetFromJson(node, *holder->GetCurveData(), entry.GetUsedType());
  if (!entry.DataToBuffer()) node.Fail("the curves are too many for one entry");
}

}  // namespace nvx::tool
