#include "core/payload.h"
#include "entries/lut/lut_records.h"

#include <nvxprofile/lut.h>

namespace {

constexpr std::uint32_t kOptionInfo = 6;

// A code is 8 bits wide, whatever was set.
void ReduceCodes(CLutData& data, CLutChannelInf* (CLutData::*channelAt)(int)) {
  for (int i = 0; CLutChannelInf* const channel = (data.*channelAt)(i); ++i) {
    channel->SetChannelCode(channel->GetChannelCode());
  }
}

}  // namespace

CSeparateChromaEntry::CSeparateChromaEntry() : CProfileDataEntry(kSeparateChroma, kFormatLut, true) {
  CProfileDataEntry::SetOptionInfo(kOptionInfo);
}

CSeparateChromaEntry::~CSeparateChromaEntry() = default;

CDataObject* CSeparateChromaEntry::GetFormatData() { return CSeparateChromaEntry::GetLutData(); }

CLutData3D* CSeparateChromaEntry::GetLutData() {
  OpenPayload();
  return &data_;
}

bool CSeparateChromaEntry::DoImport(CProfileDataEntry* source) {
  if (dynamic_cast<CSeparateChromaEntry*>(source) == nullptr) return false;
  OpenPayload();
  ReduceCodes(data_, &CLutData::GetAtInputChannelInf);
  ReduceCodes(data_, &CLutData::GetAtOutputChannelInf);
  return true;
}

bool CSeparateChromaEntry::BufferToData() {
  return nvx::ParseBuffer(*this, [&](CNvxFile& stream) { return CLutFile().LoadFile(stream, &data_); });
}

bool CSeparateChromaEntry::DataToBuffer() {
  return nvx::RebuildBuffer(*this, nvx::BufferLength::kCapacity,
                            [&](CNvxFile& stream) { return CLutFile().SaveFile(stream, &data_); });
}
