#include "core/payload.h"
#include "entries/large_parameter/large_parameter_records.h"

#include <nvxprofile/large_parameter.h>

#include <memory>

namespace {

// Rebuilds the buffer of `target` from the tables of another or the same entry.
bool Rebuild(CProfileDataEntry& target, CLargeParameterData& tables) {
  const auto size = nvx::LargeParameterFormSize(tables);
  return size && nvx::RebuildBuffer(target, *size, nvx::BufferLength::kCapacity,
                                    [&](CNvxFile& file) { return CLargeParameterFile().SaveFile(file, &tables); });
}

}  // namespace

CDataObject* CLargeParameterEntry::GetFormatData() { return &data_; }

bool CLargeParameterEntry::DoImport(CProfileDataEntry* source) {
  auto* const other = dynamic_cast<CLargeParameterEntry*>(source);
  if (other == nullptr || !Rebuild(*this, other->data_)) return false;
  BufferToData();
  return true;
}

bool CLargeParameterEntry::BufferToData() {
  return nvx::ParseBuffer(*this, [this](CNvxFile& file) {
    data_.DeleteLargeParameter();
    const std::unique_ptr<CLargeParameterFile> reader(CLargeParameterFile::CreateLargeParameterFile(file));
    return reader && reader->LoadFile(file, &data_);
  });
}

bool CLargeParameterEntry::DataToBuffer() { return Rebuild(*this, data_); }
