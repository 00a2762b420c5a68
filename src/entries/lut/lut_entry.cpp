#include "core/payload.h"
#include "entries/lut/lut_records.h"

#include <nvxprofile/lut.h>

namespace {

constexpr std::uint32_t kOptionInfo = 6;

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

// Nothing of the source comes over.
bool CSeparateChromaEntry::DoImport(CProfileDataEntry* source) {
  return dynamic_cast<CSeparateChromaEntry*>(source) != nullptr;
}

bool CSeparateChromaEntry::BufferToData() {
  return nvx::ParseBuffer(*this, [&](CNvxFile& stream) { return CLutFile().LoadFile(stream, &data_); });
}

bool CSeparateChromaEntry::DataToBuffer() {
  return nvx::RebuildBuffer(*this, nvx::BufferLength::kCapacity,
                            [&](CNvxFile& stream) { return CLutFile().SaveFile(stream, &data_); });
}
