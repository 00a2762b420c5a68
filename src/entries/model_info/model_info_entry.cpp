#include "core/payload.h"

#include <nvxprofile/model_info.h>

CModelEntry::CModelEntry() : CProfileDataEntry(kModel, kFormatModel, false) {}
CModelEntry::~CModelEntry() = default;

CDataObject* CModelEntry::GetFormatData() { return GetModelData(); }

bool CModelEntry::BufferToData() {
  return nvx::ParseBuffer(*this, [&](CNvxFile& stream) { return CModelFile().LoadFile(stream, &data_); });
}

bool CModelEntry::DataToBuffer() {
  return nvx::RebuildBuffer(*this, nvx::BufferLength::kCapacity,
                            [&](CNvxFile& stream) { return CModelFile().SaveFile(stream, &data_); });
}

CInfoEntry::CInfoEntry() : CProfileDataEntry(kInfo, kFormatInfo, true) { CProfileDataEntry::SetComplete(true); }
CInfoEntry::~CInfoEntry() = default;

CDataObject* CInfoEntry::GetFormatData() { return GetInfoData(); }

bool CInfoEntry::BufferToData() {
  return nvx::ParseBuffer(*this, [&](CNvxFile& stream) { return CInfoFile().LoadFile(stream, &data_); });
}

bool CInfoEntry::DataToBuffer() {
  return nvx::RebuildBuffer(*this, nvx::BufferLength::kCapacity,
                            [&](CNvxFile& stream) { return CInfoFile().SaveFile(stream, &data_); });
}
