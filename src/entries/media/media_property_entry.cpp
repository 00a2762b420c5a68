#include "core/payload.h"
#include "entries/media/media_property_records.h"

#include <nvxprofile/media_property.h>

namespace {

std::uint64_t FormSize(const CMediaPropertyData& data) {
  constexpr std::uint64_t kBlockSize =
      nvx::kRecordSize<nvx::MediaPropertyEntryHeader> + nvx::kRecordSize<nvx::MediaPropertyBlock>;
  return nvx::kRecordSize<nvx::MediaPropertyHeader> + kBlockSize * static_cast<std::uint64_t>(data.GetPropertyCount());
}

}  // namespace

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
  return nvx::RebuildBuffer(*this, FormSize(data_), nvx::BufferLength::kCapacity,
                            [&](CNvxFile& stream) { return CMediaPropertyFile().SaveFile(stream, &data_); });
}
