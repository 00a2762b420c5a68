#include "core/text.h"

#include <nvxprofile/model_info.h>

#include <algorithm>

namespace {

template <std::size_t N>
void CopyOut(char* out, const char (&text)[N]) {
  nvx::CopyOut(out, nvx::FieldText(text));
}

}  // namespace

CModelData::~CModelData() = default;

void CModelData::GetModelName(char* name) const { CopyOut(name, modelName_); }
void CModelData::SetModelName(const char* name) { nvx::CopyText(modelName_, nvx::TextOf(name)); }
void CModelData::GetMediaName(char* name) const { CopyOut(name, mediaName_); }
void CModelData::SetMediaName(const char* name) { nvx::CopyText(mediaName_, nvx::TextOf(name)); }
void CModelData::GetInksetName(char* name) const { CopyOut(name, inksetName_); }
void CModelData::SetInksetName(const char* name) { nvx::CopyText(inksetName_, nvx::TextOf(name)); }
void CModelData::GetParametersetName(char* name) const { CopyOut(name, parametersetName_); }
void CModelData::SetParametersetName(const char* name) { nvx::CopyText(parametersetName_, nvx::TextOf(name)); }

CInfoData::~CInfoData() = default;

void CInfoData::SetVersionStr(const char* text) { nvx::CopyText(versionStr_, nvx::TextOf(text)); }
void CInfoData::SetComment(const char* text) { nvx::CopyText(comment_, nvx::TextOf(text)); }
void CInfoData::SetUserName(const char* text) { nvx::CopyText(userName_, nvx::TextOf(text)); }

std::uint8_t* CInfoData::GetReserveBuffer(std::uint32_t* size) {
  if (size != nullptr) *size = kReserveSize;
  return reserve_;
}

void CInfoData::SetReserveBuffer(const std::uint8_t* bytes) {
  if (bytes != nullptr) std::copy_n(bytes, kReserveSize, reserve_);
}
