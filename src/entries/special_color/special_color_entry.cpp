#include "core/payload.h"
#include "entries/special_color/special_color_records.h"

#include <nvxprofile/special_color.h>

#include <memory>

namespace {

auto Writer(CSpecialColorInfoData& tables) {
  return [&tables](CNvxFile& file) { return CSpecialColorInfoFile().SaveFile(file, &tables); };
}

}  // namespace

CDataObject* CSpecialColorInfoEntry::GetFormatData() { return GetSpecialColorInfoData(); }

bool CSpecialColorInfoEntry::DoImport(CProfileDataEntry* source) {
  auto* const other = dynamic_cast<CSpecialColorInfoEntry*>(source);
  if (other == nullptr || !nvx::PayloadKeeper::SaysAll(*other)) return false;
  try {
    return nvx::PayloadKeeper::Replace(*this, nvx::BufferLength::kCapacity, Writer(other->data_)) && BufferToData();
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

bool CSpecialColorInfoEntry::DataToBuffer() {
  return nvx::RebuildBuffer(*this, nvx::BufferLength::kCapacity, Writer(data_));
}
