// The model record (type 1) and the info record (type 14) as JSON.
#include "payload.h"

#include <nvxprofile/model_info.h>

#include <string>

namespace nvx::tool {
namespace {

// What a stored name has room for, so that nothing is cut on the way.
constexpr std::size_t kLongestText = 63;

std::string NameOf(const CModelData& model, void (CModelData::*get)(char*) const) {
  char name[CModelData::kNameLength];
  (model.*get)(name);
  return name;
}

std::string TextAt(const Node& node, const char* key) { return NarrowFromJson(node.At(key), kLongestText); }

void RebuildModel(const Node& node, CProfileDataEntry& entry) {
  if (!entry.DataToBuffer()) node.Fail("the record cannot be written");
}

}  // namespace

Json ModelToJson(CProfileDataEntry& entry, Detail) {
  auto* const model = dynamic_cast<CModelData*>(entry.GetFormatData());
  if (model == nullptr || !entry.BufferToData()) return nullptr;
  return {{"modelName", NarrowToJson(NameOf(*model, &CModelData::GetModelName))},
          {"mediaName", NarrowToJson(NameOf(*model, &CModelData::GetMediaName))},
          {"inksetName", NarrowToJson(NameOf(*model, &CModelData::GetInksetName))},
          {"parametersetName", NarrowToJson(NameOf(*model, &CModelData::GetParametersetName))},
          {"cmykMode", model->IsCmykMode()},
          {"vdType", model->GetVDType()}};
}

void ModelFromJson(const Node& node, CProfileDataEntry& entry) {
  auto* const model = dynamic_cast<CModelData*>(entry.GetFormatData());
  if (model == nullptr) node.Fail("the entry holds no model record");
  model->SetModelName(TextAt(node, "modelName").c_str());
  model->SetMediaName(TextAt(node, "mediaName").c_str());
  model->SetInksetName(TextAt(node, "inksetName").c_str());
  model->SetParametersetName(TextAt(node, "parametersetName").c_str());
  model->SetCmykMode(node.At("cmykMode").Bool());
  model->SetVDType(node.At("vdType").U32());
  RebuildModel(node, entry);
}

Json InfoToJson(CProfileDataEntry& entry, Detail) {
  auto* const info = dynamic_cast<CInfoData*>(entry.GetFormatData());
  if (info == nullptr || !entry.BufferToData()) return nullptr;
  return {{"versionStr", NarrowToJson(info->GetVersionStr())},
          {"comment", NarrowToJson(info->GetComment())},
          {"userName", NarrowToJson(info->GetUserNameW())},
          {"reserveBuffer", ToBase64(info->GetReserveBuffer(nullptr), CInfoData::kReserveSize)}};
}

void InfoFromJson(const Node& node, CProfileDataEntry& entry) {
  auto* const info = dynamic_cast<CInfoData*>(entry.GetFormatData());
  if (info == nullptr) node.Fail("the entry holds no info record");
  const Node reserve = node.At("reserveBuffer");
  const std::vector<std::uint8_t> bytes = reserve.Base64();
  if (bytes.size() != CInfoData::kReserveSize) reserve.Fail("192 bytes are expected");
  info->SetVersionStr(TextAt(node, "versionStr").c_str());
  info->SetComment(TextAt(node, "comment").c_str());
  info->SetUserName(TextAt(node, "userName").c_str());
  info->SetReserveBuffer(bytes.data());
  RebuildModel(node, entry);
}

}  // namespace nvx::tool
