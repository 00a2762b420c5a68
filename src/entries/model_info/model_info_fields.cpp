#include "entries/entry_fields.h"

#include <nvxprofile/model_info.h>

namespace nvx {
namespace {

// What a stored name has room for, so that nothing is cut on the way.
constexpr std::int64_t kLongestText = 63;

Field TextField(const char* name) { return {.name = name, .count = {0, kLongestText}}; }

// A name of the model record, which its getter copies.
template <void (CModelData::*kGet)(char*) const, void (CModelData::*kSet)(const char*)>
void DescribeName(FieldCodec& codec, const char* name, CModelData& model) {
  struct Name {
    const char* Get() {
      (model.*kGet)(text);
      return text;
    }
    void Set(const char* given) { (model.*kSet)(given); }

    CModelData& model;
    char text[CModelData::kNameLength];
  } text{model, {}};
  codec.Text(TextField(name), text, &Name::Get, &Name::Set);
}

}  // namespace

void Describe(FieldCodec& codec, CModelEntry& entry) {
  using Model = CModelData;
  Model& model = codec.PayloadOf(entry, &CModelEntry::GetModelData, &CModelEntry::GetModelData);
  DescribeName<&Model::GetModelName, &Model::SetModelName>(codec, "modelName", model);
  DescribeName<&Model::GetMediaName, &Model::SetMediaName>(codec, "mediaName", model);
  DescribeName<&Model::GetInksetName, &Model::SetInksetName>(codec, "inksetName", model);
  DescribeName<&Model::GetParametersetName, &Model::SetParametersetName>(codec, "parametersetName", model);
  bool isCmyk = model.IsCmykMode();
  codec.Flag({"cmykMode"}, isCmyk);
  if (codec.Fills()) model.SetCmykMode(isCmyk);
  codec.Number({"vdType"}, model, &Model::GetVDType, &Model::SetVDType);
  codec.Rebuild(entry, "the record cannot be written");
}

void Describe(FieldCodec& codec, CInfoEntry& entry) {
  using Info = CInfoData;
  Info& info = codec.PayloadOf(entry, &CInfoEntry::GetInfoData, &CInfoEntry::GetInfoData);
  codec.Text(TextField("versionStr"), info, &Info::GetVersionStr, &Info::SetVersionStr);
  codec.Text(TextField("comment"), info, &Info::GetComment, &Info::SetComment);
  codec.Text(TextField("userName"), info, &Info::GetUserNameW, &Info::SetUserName);
  const std::vector<std::uint8_t> reserve =
      codec.Bytes({.name = "reserveBuffer", .count = {Info::kReserveSize, Info::kReserveSize}},
                  {info.GetReserveBuffer(nullptr), Info::kReserveSize});
  if (codec.Fills()) info.SetReserveBuffer(reserve.data());
  codec.Rebuild(entry, "the record cannot be written");
}

}  // namespace nvx
