// A folder of its own for each test, removed behind it.
#pragma once

#include "platform/locale.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
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
  std::string File(const std::string& name) const { return (path_ / name).string(); }
  std::u16string WideFile(const std::string& name) const { return platform::Utf8ToWide(File(name)); }

 private:
  std::filesystem::path path_;
};

inline Bytes ReadBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

inline void WriteBytes(const std::string& path, const Bytes& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace nvx::test
