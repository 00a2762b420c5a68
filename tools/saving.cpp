#include "saving.h"

#include "loading.h"
#include "terminal.h"

#include <nvxprofile/icm_entry.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/profile_file_text.h>
#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
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

// What stands in the way of a file at that path; empty if nothing does.
std::string Obstacle(const std::string& path) {
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (fs::is_directory(status)) return "it is a folder";
  if (fs::exists(status) && !fs::is_regular_file(status)) return "it is no ordinary file";
  const fs::path folder = fs::path(path).parent_path();
  if (::access(folder.empty() ? "." : folder.c_str(), W_OK) != 0) return std::strerror(errno);
  return {};
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
  if (const std::string obstacle = Obstacle(path); !obstacle.empty()) {
    PrintError(fmt::format("{}: cannot be written: {}", path, obstacle));
    return false;
  }
  _tagDeviceProfileInfo& info = *access.GetProfileInfo();
  info.SaveVersion5 = info.ProfileMinorVersion == kVersion5;
  if (SaveModel(access.GetProfileLoadFormat(), *access.GetProfileData(), path)) return true;
  PrintError(fmt::format("{}: the profile cannot be saved; what was there is as it was", path));
  return false;
}

}  // namespace nvx::tool
