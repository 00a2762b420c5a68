#include "saving.h"

#include "interruption.h"
#include "loading.h"
#include "paths.h"
#include "terminal.h"

#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/text_conversion.h>

#include <stdexcept>

namespace nvx::tool {
namespace {

constexpr std::uint32_t kVersion5 = 5;

[[noreturn]] void Fail(const std::string& path, const std::string& why) { throw std::runtime_error(path + ": " + why); }

}  // namespace

ChangedProfile::ChangedProfile(const std::string& file) : file_(file), input_(file) {
  if (!input_.Failure().empty()) Fail(file, input_.Failure());
  CError error;
  if (!access_.Init(input_.Path().c_str(), &error)) Fail(file, WhyNotLoaded(input_.Path()));
  Diagnosis diagnosis;
  if (edit_.Open(input_.Path().c_str(), &diagnosis)) return;
  Fail(file, diagnosis.Findings().empty() ? "cannot be changed" : diagnosis.Findings().front().rule);
}

void ChangedProfile::Save(std::uint32_t usedType, const std::string& path) {
  if (!edit_.EntryBytes(usedType)) {
    WriteOutput(path, SavedModel(path));
    return;
  }
  CProfileDataEntry& entry = *Data().GetProfileDataEntryFromList(usedType);
  if (!edit_.SetEntryBytes(usedType, entry.Bytes())) {
    Fail(file_, "its format has no room for an entry of another size");
  }
  WriteOutput(path, edit_.Image());
}

// A save names the ICC profile around it after its file, so the model is saved under that name elsewhere first.
std::vector<std::uint8_t> ChangedProfile::SavedModel(const std::string& path) {
  if (access_.GetProfileLoadFormat() != kPrinterProfile) Fail(file_, "its format has no room for such an entry");
  _tagDeviceProfileInfo& info = *access_.GetProfileInfo();
  info.SaveVersion5 = info.ProfileMinorVersion == kVersion5;
  const WorkFolder folder;
  const bool hasName = path != kStandardStream && !IsDeviceName(path);
  const std::string name = hasName ? OwnNameOf(path) : FileNameOf(file_);
  const std::u16string saved = PathToWide(folder.File(name));
  if (!CProfileFileQPFv3().SaveData(saved.c_str(), &Data(), kSaveReplaceProfile | kSaveCalibration)) {
    Fail(file_, "the changed profile cannot be saved");
  }
  const std::string bytes = ReadInput(folder.File(name));
  return {bytes.begin(), bytes.end()};
}

bool ParsesWhole(CProfileDataEntry& entry) {
  return entry.BufferToData() && entry.GetPayloadState() != PayloadState::kPart;
}

void PrintDone(const std::string& path, const std::string& what) {
  if (path != kStandardStream) PrintLine(path + ": " + what);
}

void WriteText(const std::string& path, const std::string& text) {
  WriteOutput(path, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

}  // namespace nvx::tool
