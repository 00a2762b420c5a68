// What a load takes of the heap, and what it leaves when the heap gives nothing more.
#include "memory/heap.h"
#include "support/environment.h"
#include "support/files.h"

#include <nvxprofile/profile_access.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace {

namespace heap = nvx::test::heap;
using nvx::test::Bytes;

using Paths = std::vector<std::filesystem::path>;

void AddFiles(const std::filesystem::path& root, Paths& files) {
  for (const auto& item : std::filesystem::recursive_directory_iterator(root)) {
    if (item.is_regular_file()) files.push_back(item.path());
  }
}

// Files that the repository keeps as seeds and as past findings of its fuzzers, by the form that they hold.
Paths Corpus() {
  Paths files;
  for (const char* const folder : {"corpus", "regressions"}) {
    AddFiles(std::filesystem::path(NVXPROFILE_SOURCE_FOLDER "/fuzz") / folder, files);
  }
  return files;
}

std::vector<std::uint32_t> TypesOfForm(const std::string& form) {
  static const std::map<std::string, std::vector<std::uint32_t>> kTypes{
      {"curve", {2, 6, 7}},      {"lut", {8}},   {"model_info", {1, 14}},     {"media_property", {16}},
      {"calibration", {19, 20}}, {"mask", {29}}, {"mask_download", {27, 29}}, {"large_parameter", {28}},
      {"special_color", {30}}};
  const auto found = kTypes.find(form);
  return found != kTypes.end() ? found->second : std::vector<std::uint32_t>{10};
}

void LoadAsFile(const std::filesystem::path& path) {
  CProfileAccess access;
  CError error;
  access.Init(nvx::platform::Utf8ToWide(path.string()).c_str(), &error);
}

void LoadAsEntry(std::uint32_t usedType, const Bytes& bytes) {
  const std::unique_ptr<CProfileDataEntry> entry(
      CProfileDataEntry::CreateDataEntry(static_cast<CProfileDataEntry::UsedType>(usedType)));
  ASSERT_NE(entry, nullptr);
  if (std::uint8_t* const buffer = entry->GetBuffer(static_cast<std::uint32_t>(bytes.size()))) {
    std::copy(bytes.begin(), bytes.end(), buffer);
  }
  entry->BufferToData();
}

// The most bytes of a load, of which nothing stays.
template <class Run>
std::size_t PeakOf(Run run) {
  const std::size_t before = heap::InUse();
  const std::size_t peak = heap::PeakOf(run);
  EXPECT_EQ(heap::InUse(), before) << "a load leaks";
  return peak;
}

// Runs `run` again and again, each time with one allocation more than the last, until it comes through.
template <class Run>
void RunOutOfMemory(Run run) {
  for (std::size_t number = 0;; ++number) {
    const std::size_t before = heap::InUse();
    heap::FailFrom(number);
    bool through = false;
    try {
      run();
      through = true;
    } catch (const std::bad_alloc&) {
    }
    const bool enough = heap::Count() <= number;
    heap::Recover();
    ASSERT_EQ(heap::InUse(), before) << "leak when allocation " << number << " fails";
    if (through && enough) return;
    ASSERT_LT(number, 100'000u);
  }
}

class LoadMemory : public testing::Test {
 private:
  // Text-headed profiles need the table that stands beside an example.
  nvx::test::ScopedVariable folder_{"NVXPROFILE_PROFILE_DIR", NVXPROFILE_SOURCE_FOLDER "/examples/legacy"};
};

TEST_F(LoadMemory, StaysBelowFiveTimesTheBytesAndOneMegabyte) {
  auto files = Corpus();
  ASSERT_FALSE(files.empty());
  // What a long run of the fuzzers has gathered, in folders of the same names.
  if (const char* const gathered = std::getenv("NVXPROFILE_GATHERED_CORPUS")) AddFiles(gathered, files);
  for (const auto& path : files) {
    SCOPED_TRACE(path.string());
    const std::size_t limit = 5 * std::filesystem::file_size(path) + (std::size_t{1} << 20);
    EXPECT_LE(PeakOf([&] { LoadAsFile(path); }), limit);
    const Bytes bytes = nvx::test::ReadBytes(path.string());
    for (const std::uint32_t type : TypesOfForm(path.parent_path().filename().string())) {
      EXPECT_LE(PeakOf([&] { LoadAsEntry(type, bytes); }), limit) << "as entry " << type;
    }
  }
}

TEST_F(LoadMemory, AnExhaustedHeapIsPassedOnAndLeavesNothing) {
  for (const auto& path : Corpus()) {
    if (std::filesystem::file_size(path) > 20'000) continue;
    SCOPED_TRACE(path.string());
    RunOutOfMemory([&] { LoadAsFile(path); });
    const Bytes bytes = nvx::test::ReadBytes(path.string());
    for (const std::uint32_t type : TypesOfForm(path.parent_path().filename().string())) {
      RunOutOfMemory([&] { LoadAsEntry(type, bytes); });
    }
  }
}

}  // namespace
