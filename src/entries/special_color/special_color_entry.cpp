#include "core/payload.h"
#include "entries/special_color/special_color_records.h"

#include <nvxprofile/special_color.h>

#include <memory>

namespace {

// Rebuilds the buffer of `target` from the tables of another or the same entry.
bool Rebuild(CProfileDataEntry& target, CSpecialColorInfoData& tables) {
  const auto size = nvx::SpecialColorFormSize(tables);
  return size && nvx::RebuildBuffer(target, *size, nvx::BufferLength::kCapacity,
                                    [&](CNvxFile& file) { return CSpecialColorInfoFile().SaveFile(file, &tables); });
}

}  // namespace

CDataObject* CSpecialColorInfoEntry::GetFormatData() { return &data_; }

bool CSpecialColorInfoEntry::DoImport(CProfileDataEntry* source) {
  auto* const other = dynamic_cast<CSpecialColorInfoEntry*>(source);
  if (other == nullptr) return false;
  try {
    if (!Rebuild(*this, other->data_)) return false;
    BufferToData();
    return true;
  } catch (...) {
    return false;
  }
}

bool CSpecialColorInfoEntry::BufferToData() {
  return nvx::ParseBuffer(*this, [this](CNvxFile& file) {
    data_.DeleteSpecialColorInfo();
    const std::unique_ptr<CSpecialColorInfoFile> reader(CSpecialColorInfoFile::CreateSpecialColorInfoFile(file));
    return reader && reader->LoadFile(file, &data_);
  });
}

bool CSpecialColorInfoEntry::DataToBuffer() { return Rebuild(*this, data_); }
