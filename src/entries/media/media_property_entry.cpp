#include "core/payload.h"

#include <nvxprofile/media_property.h>

CMediaPropertyEntry::CMediaPropertyEntry() : CProfileDataEntry(kMediaProperty, kFormatKeyed, true) {}
CMediaPropertyEntry::~CMediaPropertyEntry() = default;

CDataObject* CMediaPropertyEntry::GetFormatData() { return GetMediaPropertyData(); }

bool CMediaPropertyEntry::BufferToData() {
  return nvx::ParseBuffer(*this, [&](CNvxFile& stream) {
    data_.DeleteMediaProperty();
    return CMediaPropertyFile().LoadFile(stream, &data_);
  });
}

bool CMediaPropertyEntry::DataToBuffer() {
  return nvx::RebuildBuffer(*this, nvx::BufferLength::kCapacity,
                            [&](CNvxFile& stream) { return CMediaPropertyFile().SaveFile(stream, &data_); });
}
