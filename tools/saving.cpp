#include "saving.h"

#include "files.h"
#include "loading.h"

#include <nvxprofile/icm_entry.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/profile_file_text.h>
#include <nvxprofile/text_conversion.h>

#include <cerrno>
#include <filesystem>

namespace nvx::tool {
namespace {

constexpr std::uint32_t kVersion5 = 5;

std::uint32_t FirstRoute(CProfileData& data) {
  return data.GetRouteStartPos() ? RoutesOf(data).front()->GetRouteType() : 0;
}

bool SavePlainIcc(CProfileData& data, const std::u16string& path) {
  auto* const entry = dynamic_cast<CICMEntry*>(data.GetProfileDataEntry(kRouteIccRoot, CProfileDataEntry::kIcm));
  std::uint32_t error = 0;
  return entry != nullptr && entry->Save(path.c_str(), error);
}

// A profile takes the place of a file; anything else is left alone.
bool IsFileOrNothing(const std::string& path) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  return !std::filesystem::exists(status) || std::filesystem::is_regular_file(status);
}

}  // namespace

bool SaveModel(int format, CProfileData& data, const std::string& path) {
  const std::u16string wide = Utf8ToWide(path);
  switch (format) {
    case 1:
      return CProfileFileQCT().SaveData(wide.c_str(), &data, FirstRoute(data));
    case 2:
      return CProfileFileQPFv1().SaveData(wide.c_str(), &data, FirstRoute(data));
    case 3:
      return CProfileFileQPFv2().SaveData(wide.c_str(), &data, 0);
    case 4:
      return CProfileFileQPFv3().SaveData(wide.c_str(), &data, kSaveReplaceProfile | kSaveCalibration);
    default:
      return SavePlainIcc(data, wide);
  }
}

bool SaveProfile(CProfileAccess& access, const std::string& path) {
  if (path == kStandardStream) {
    PrintErrorOf(path, "a profile cannot be changed in a stream; -o names a file for the result");
    return false;
  }
  if (!IsFileOrNothing(path)) {
    PrintErrorOf(path, "is no file that a profile could replace");
    return false;
  }
  _tagDeviceProfileInfo& info = *access.GetProfileInfo();
  info.SaveVersion5 = info.ProfileMinorVersion == kVersion5;
  errno = 0;
  if (SaveModel(access.GetProfileLoadFormat(), *access.GetProfileData(), path)) return true;
  PrintErrorOf(path, WhyNotWritten(path, errno));
  return false;
}

void WriteText(const std::string& path, const std::string& text) {
  WriteOutput(path, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

}  // namespace nvx::tool
