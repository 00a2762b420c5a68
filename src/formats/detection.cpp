// Each format takes its place in the order of the tests here.
#include "formats/detection.h"

#include "core/stream.h"
#include "formats/container_records.h"
#include "formats/legacy_header.h"
#include "formats/qpf_tags.h"
#include "icc/icc_directory.h"
#include "platform/file_system.h"

#include <nvxprofile/icc_profile.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/profile_file_icc.h>
#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/profile_file_text.h>

#include <memory>
#include <string_view>

namespace {

bool StartsWithTextHeader(CNvxFile& file) {
  char start[nvx::kTextHeaderStart.size()];
  file.SeekToBegin();
  return nvx::ReadExact(file, start, sizeof start) && std::string_view(start, sizeof start) == nvx::kTextHeaderStart;
}

// The format of an ICC profile whose header block stands in `tag`: its version word decides. A block that is not whole
// does not load in either class.
std::unique_ptr<CProfileFile> CreateContainer(CNvxFile& file, const nvx::IccTag& tag) {
  _tagDeviceProfileInfo scratch;
  nvx::HeaderBlockWords words;
  if (tag.size >= nvx::kHeaderBlockSize) {
    file.Seek(tag.offset, nvx::kFromBegin);
    nvx::ReadHeaderBlock(file, scratch, words);
  }
  if (words.MajorVersion() >= 4 || (words.MajorVersion() == 3 && words.MinorVersion() >= 5))
    return std::make_unique<CProfileFileQPFv4>();
  return std::make_unique<CProfileFileQPFv3>();
}

// Null for what is no ICC profile.
std::unique_ptr<CProfileFile> DetectIccFormat(CNvxFile& file) {
  file.SeekToBegin();
  nvx::IccDirectory directory;
  if (!nvx::ReadIccDirectory(file, directory)) return nullptr;
  if (const nvx::IccTag* const tag = directory.Find(CICCProfile::MakeTagSignature(nvx::kEntryTag)))
    return CreateContainer(file, *tag);
  return std::make_unique<CProfileFileICC>();
}

// Null for a header that cannot be read and for another version.
std::unique_ptr<CProfileFile> DetectTextFormat(CNvxFile& file) {
  CProfileData scratch;
  file.SeekToBegin();
  if (!CProfileFileQPFv1().LoadData(file, &scratch, true)) return nullptr;
  const std::uint32_t version = scratch.GetProfileInfo()->ProfileMajorVersion;
  if (version == 1) return std::make_unique<CProfileFileQPFv1>();
  if (version == 2) return std::make_unique<CProfileFileQPFv2>();
  return nullptr;
}

std::unique_ptr<CProfileFile> Detect(CNvxFile& file) {
  if (nvx::HasIccExtension(file.GetPath())) return DetectIccFormat(file);
  file.SeekToBegin();
  if (nvx::ReadMagic(file, nvx::ContainerHeader::kMagic)) return std::make_unique<CProfileFileQCT>();
  if (StartsWithTextHeader(file)) {
    if (std::unique_ptr<CProfileFile> format = DetectTextFormat(file)) return format;
  }
  return DetectIccFormat(file);
}

}  // namespace

bool nvx::HasIccExtension(std::u16string_view path) {
  const std::u16string_view extension = nvx::platform::SplitFileName(path).extension;
  return extension == u".icc" || extension == u".icm";
}

std::unique_ptr<CProfileFile> nvx::DetectFormat(CNvxFile& file) {
  Diagnosis* const diagnosis = file.GetDiagnosis();
  file.SetDiagnosis(nullptr);
  std::unique_ptr<CProfileFile> format = Detect(file);
  file.SetDiagnosis(diagnosis);
  file.SeekToBegin();
  return format;
}

CProfileFile* CProfileFile::CreateProfileFile(const char16_t* path, bool readOnly) {
  if (path == nullptr) return nullptr;
  if (nvx::HasIccExtension(path)) return CreateICCProfileFile(path);
  CNvxFile file;
  const std::uint32_t access = readOnly ? nvx::kGenericRead : nvx::kGenericRead | nvx::kGenericWrite;
  if (!file.Open(path, access, nvx::kShareRead, nvx::kOpenExisting)) return nullptr;
  return nvx::DetectFormat(file).release();
}

CProfileFile* CProfileFile::CreateICCProfileFile(const char16_t* path) {
  CNvxFile file;
  if (!file.Open(path, nvx::kGenericRead, nvx::kShareRead, nvx::kOpenExisting)) return nullptr;
  return DetectIccFormat(file).release();
}
