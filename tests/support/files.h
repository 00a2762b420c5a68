// Files of tests: a folder of its own for each, removed behind it, and the real profiles of the machine.
#pragma once

#include "platform/locale.h"

#include <strings.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace nvx::test {

using Bytes = std::vector<std::uint8_t>;

class TempFolder {
 public:
  TempFolder() {
    path_ = std::filesystem::temp_directory_path() / ("nvxprofile-test-" + std::to_string(std::random_device()()));
    std::filesystem::create_directories(path_);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  ~TempFolder() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
  }

  const std::filesystem::path& Path() const { return path_; }
  std::size_t FileCount() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_), {}));
  }
  std::string File(const std::string& name) const { return (path_ / name).string(); }
  std::u16string WideFile(const std::string& name) const { return platform::Utf8ToWide(File(name)); }

 private:
  std::filesystem::path path_;
};

inline Bytes ReadBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  const std::streamoff size = file.tellg();
  if (size <= 0) return {};
  Bytes bytes(static_cast<std::size_t>(size));
  file.seekg(0).read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  return bytes;
}

inline void WriteBytes(const std::string& path, const Bytes& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

// The bytes, cut to a size.
inline Bytes First(const Bytes& bytes, std::size_t size) { return Bytes(bytes.data(), bytes.data() + size); }

// The real ICC profiles below the system's colour folder.
inline std::vector<std::string> RealProfiles() {
  std::vector<std::string> paths;
  std::error_code error;
  for (const auto& file : std::filesystem::recursive_directory_iterator("/usr/share/color/icc", error)) {
    const std::string extension = file.path().extension().string();
    const bool isProfile = ::strcasecmp(extension.c_str(), ".icc") == 0 || ::strcasecmp(extension.c_str(), ".icm") == 0;
    if (file.is_regular_file() && isProfile) paths.push_back(file.path().string());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

}  // namespace nvx::test
