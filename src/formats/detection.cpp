// Which format a file has. Each format takes its place in the order of the tests here.
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

#include <string_view>

namespace {

bool HasIccExtension(const char16_t* path) {
  const std::u16string_view extension = nvx::platform::SplitFileName(path).extension;
  return extension == u".icc" || extension == u".icm";
}

bool StartsWithTextHeader(CNvxFile& file) {
  char start[nvx::kTextHeaderStart.size()];
  file.SeekToBegin();
  return nvx::ReadExact(file, start, sizeof start) && std::string_view(start, sizeof start) == nvx::kTextHeaderStart;
}

// The format of an ICC profile whose header block stands in `tag`: its version word decides. A block that is not whole
// does not load in either class.
CProfileFile* CreateContainer(CNvxFile& file, const nvx::IccTag& tag) {
  _tagDeviceProfileInfo scratch;
  nvx::HeaderBlockWords words;
  if (tag.size >= nvx::kHeaderBlockSize) {
    file.Seek(tag.offset, nvx::kFromBegin);
    nvx::ReadHeaderBlock(file, scratch, words);
  }
  if (words.MajorVersion() >= 4 || (words.MajorVersion() == 3 && words.MinorVersion() >= 5))
    return new CProfileFileQPFv4;
  return new CProfileFileQPFv3;
}

}  // namespace

CProfileFile* CProfileFile::CreateProfileFile(const char16_t* path, bool readOnly) {
  if (path == nullptr) return nullptr;
  if (HasIccExtension(path)) return CreateICCProfileFile(path);
  CNvxFile file;
  const std::uint32_t access = readOnly ? nvx::kGenericRead : nvx::kGenericRead | nvx::kGenericWrite;
  if (!file.Open(path, access, nvx::kShareRead, nvx::kOpenExisting)) return nullptr;
  if (nvx::ReadMagic(file, nvx::ContainerHeader::kMagic)) return new CProfileFileQCT;
  if (StartsWithTextHeader(file)) {
    CProfileData scratch;
    CProfileFileQPFv1 reader;
    file.GetFileName(scratch.GetProfileInfo()->FileName);
    const bool readable = static_cast<CProfileFile&>(reader).LoadHeader(file, &scratch);
    const std::uint32_t version = readable ? scratch.GetProfileInfo()->ProfileMajorVersion : 0;
    if (version == 1) return new CProfileFileQPFv1;
    if (version == 2) return new CProfileFileQPFv2;
  }
  return CreateICCProfileFile(path);
}

CProfileFile* CProfileFile::CreateICCProfileFile(const char16_t* path) {
  CNvxFile file;
  nvx::IccDirectory directory;
  if (!file.Open(path, nvx::kGenericRead, nvx::kShareRead, nvx::kOpenExisting)) return nullptr;
  if (!nvx::ReadIccDirectory(file, directory)) return nullptr;
  if (const nvx::IccTag* const tag = directory.Find(CICCProfile::MakeTagSignature(nvx::kEntryTag)))
    return CreateContainer(file, *tag);
  return new CProfileFileICC;
}
