#include "core/payload.h"
#include "entries/large_parameter/large_parameter_records.h"

#include <nvxprofile/large_parameter.h>

#include <memory>

namespace {

auto Writer(CLargeParameterData& tables) {
  return [&tables](CNvxFile& file) { return CLargeParameterFile().SaveFile(file, &tables); };
}

}  // namespace

CDataObject* CLargeParameterEntry::GetFormatData() { return GetLargeParameterData(); }

bool CLargeParameterEntry::DoImport(CProfileDataEntry* source) {
  auto* const other = dynamic_cast<CLargeParameterEntry*>(source);
  if (other == nullptr || !nvx::PayloadKeeper::SaysAll(*other)) return false;
  return nvx::PayloadKeeper::Replace(*this, nvx::BufferLength::kCapacity, Writer(other->data_)) && BufferToData();
}

bool CLargeParameterEntry::BufferToData() {
  return nvx::ParseBuffer(*this, [this](CNvxFile& file) {
    data_.DeleteLargeParameter();
    const std::unique_ptr<CLargeParameterFile> reader(CLargeParameterFile::CreateLargeParameterFile(file));
    return reader && reader->LoadFile(file, &data_);
  });
}

bool CLargeParameterEntry::DataToBuffer() {
  return nvx::RebuildBuffer(*this, nvx::BufferLength::kCapacity, Writer(data_));
}
