// A folder of the process for readers that go by path, in memory where the system has a place for that.
#pragma once

#include "check.h"

#include <nvxprofile/text_conversion.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>

namespace nvx::fuzz {

class ScratchFolder {
 public:
  ScratchFolder() {
    const bool inMemory = std::filesystem::is_directory("/dev/shm");
    std::string name =
        ((inMemory ? std::filesystem::path("/dev/shm") : std::filesystem::temp_directory_path()) / "nvx-fuzz-XXXXXX")
            .string();
    Check(::mkdtemp(name.data()) != nullptr);
    path_ = name;
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
  }

  std::string File(const char* name) const { return (path_ / name).string(); }
  std::u16string WideFile(const char* name) const { return Utf8ToWide(File(name)); }
  void Write(const char* name, std::span<const std::uint8_t> bytes) const {
    std::ofstream(path_ / name, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }
  // Makes this the folder where text-headed profiles look for their conversion table.
  void UseForConversionTable() const { ::setenv("NVXPROFILE_PROFILE_DIR", path_.c_str(), 1); }
  // And puts a table there, once, that the seeds go by.
  void WriteConversionTable() const {
    UseForConversionTable();
    if (std::filesystem::exists(path_ / "QPFConvert.qpd")) return;
    std::ofstream(path_ / "QPFConvert.qpd") << "[Printer.PX]\nModelCode=0042\nModelSubCode=07\nInternalCode=13\n"
                                               "[Inkset.SetA]\nMaker=3\nInk=5\nColorset=12\nVer=2\n"
                                               "[Printer.00420713:Scan.720:Feed.1080]\nRendering_Scan=360\n"
                                               "Rendering_Feed=540\nExpand=4\n";
  }

 private:
  std::filesystem::path path_;
};

}  // namespace nvx::fuzz
