#include "core/form.h"
#include "entries/model_info/model_info_records.h"

#include <nvxprofile/model_info.h>

#include <algorithm>
#include <array>

using nvx::InfoRecord;
using nvx::ModelRecord;

namespace {

// Shorter records are in use: what the stream lacks is zero.
template <std::size_t N>
void ReadFromBegin(CNvxFile& file, std::array<std::uint8_t, N>& record) {
  std::array<std::uint8_t, N> bytes{};
  file.SeekToBegin();
  const std::uint32_t done = file.Read(bytes.data(), static_cast<std::uint32_t>(N));
  if (done < N) nvx::Warn(file, done, "record: cut short, the rest reads as zero");
  record = bytes;
}

}  // namespace

bool CModelFile::LoadHeader(CNvxFile& file) {
  constexpr std::uint32_t kVdTypeSize = sizeof(ModelRecord::vdType);
  ReadFromBegin(file, record_);
  if (!nvx::CheckConstants<ModelRecord>(file, 0, record_.data())) return false;
  if (nvx::DecodeRecord<ModelRecord>(record_.data()).version == ModelRecord::kShortVersion) {
    std::fill(record_.end() - kVdTypeSize, record_.end(), std::uint8_t{0});
    file.Seek(0u - kVdTypeSize, nvx::kFromPosition);
  }
  headerRead_ = true;
  return true;
}

bool CModelFile::LoadFile(CNvxFile& file, CModelData* data) {
  if (data == nullptr || (!headerRead_ && !LoadHeader(file))) return false;
  const auto record = nvx::DecodeRecord<ModelRecord>(record_.data());
  data->SetCmykMode(record.cmykMode != 0);
  data->SetModelName(record.modelName);
  data->SetInksetName(record.inksetName);
  data->SetMediaName(record.mediaName);
  data->SetParametersetName(record.parametersetName);
  data->SetVDType(record.vdType);
  return true;
}

bool CModelFile::SaveFile(CNvxFile& file, CModelData* data) {
  if (data == nullptr) return false;
  ModelRecord record;
  record.cmykMode = data->IsCmykMode() ? 1 : 0;
  record.vdType = data->GetVDType();
  char name[CModelData::kNameLength];
  const auto put = [&](char(&field)[nvx::kRecordTextWidth], void (CModelData::*get)(char*) const) {
    (data->*get)(name);
    nvx::CopyText(field, nvx::TextOf<char>(name));
  };
  put(record.modelName, &CModelData::GetModelName);
  put(record.inksetName, &CModelData::GetInksetName);
  put(record.mediaName, &CModelData::GetMediaName);
  put(record.parametersetName, &CModelData::GetParametersetName);
  return nvx::WriteRecord(file, record);
}

CInfoFile::~CInfoFile() = default;

bool CInfoFile::LoadHeader(CNvxFile& file) {
  ReadFromBegin(file, record_);
  if (!nvx::CheckConstants<InfoRecord>(file, 0, record_.data())) return false;
  headerRead_ = true;
  return true;
}

bool CInfoFile::LoadFile(CNvxFile& file, CInfoData* data) {
  if (data == nullptr || (!headerRead_ && !LoadHeader(file))) return false;
  const auto record = nvx::DecodeRecord<InfoRecord>(record_.data());
  data->SetVersionStr(record.versionStr);
  data->SetComment(record.comment);
  data->SetUserName(record.userName);
  data->SetReserveBuffer(record.reserve);
  return true;
}

bool CInfoFile::SaveFile(CNvxFile& file, CInfoData* data) {
  if (data == nullptr) return false;
  InfoRecord record;
  nvx::CopyText(record.versionStr, nvx::TextOf(data->GetVersionStr()));
  nvx::CopyText(record.comment, nvx::TextOf(data->GetComment()));
  nvx::CopyText(record.userName, nvx::TextOf(data->GetUserNameW()));
  std::copy_n(data->GetReserveBuffer(nullptr), CInfoData::kReserveSize, record.reserve);
  return nvx::WriteRecord(file, record);
}
