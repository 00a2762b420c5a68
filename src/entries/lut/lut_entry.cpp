#include "core/payload.h"
#include "entries/lut/lut_records.h"

#include <nvxprofile/lut.h>

namespace {

constexpr std::uint32_t kOptionInfo = 6;

std::uint64_t FormSize(CLutData& data) {
  const std::uint64_t channels = std::uint64_t{data.GetInputChannelCount()} + data.GetOutputChannelCount();
  std::uint64_t size = nvx::kRecordSize<nvx::LutHeader> + channels * nvx::kRecordSize<nvx::LutChannelHeader>;
  nvx::SampleRun run;
  for (int node = 0; node < data.GetSize(); node += run.nodes) {
    run = data.GetRun(node);
    size += run.size;
  }
  return size;
}

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

CDataObject* CSeparateChromaEntry::GetFormatData() { return &data_; }
CLutData3D* CSeparateChromaEntry::GetLutData() { return &data_; }

bool CSeparateChromaEntry::DoImport(CProfileDataEntry* source) {
  if (dynamic_cast<CSeparateChromaEntry*>(source) == nullptr) return false;
  ReduceCodes(data_, &CLutData::GetAtInputChannelInf);
  ReduceCodes(data_, &CLutData::GetAtOutputChannelInf);
  return true;
}

bool CSeparateChromaEntry::BufferToData() {
  return nvx::ParseBuffer(*this, [&](CNvxFile& stream) { return CLutFile().LoadFile(stream, GetLutData()); });
}

bool CSeparateChromaEntry::DataToBuffer() {
  return nvx::RebuildBuffer(*this, FormSize(*GetLutData()), nvx::BufferLength::kCapacity,
                            [&](CNvxFile& stream) { return CLutFile().SaveFile(stream, GetLutData()); });
}
