// Each format takes its place in the order of the tests here.
#include "formats/detection.h"

#include "core/stream.h"
#include "formats/container_records.h"
#include "formats/qpf_tags.h"
#include "formats/text_header.h"
#include "icc/icc_directory.h"
#include "platform/file_system.h"

#include <nvxprofile/icc_profile.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/profile_file_icc.h>
#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/profile_file_text.h>

#include <memory>
#include <optional>
#include <string_view>
#include <utility>

namespace {

bool StartsWithTextHeader(CNvxFile& file) {
  char start[nvx::kTextHeaderStart.size()];
  file.SeekToBegin();
  return nvx::ReadExact(file, start, sizeof start) && std::string_view(start, sizeof start) == nvx::kTextHeaderStart;
}

std::unique_ptr<CProfileFileQPFv3> CreatePrinterFormat(const nvx::HeaderBlockWords& words) {
  if (words.MajorVersion() >= 4 || (words.MajorVersion() == 3 && words.MinorVersion() >= 5))
    return std::make_unique<CProfileFileQPFv4>();
  return std::make_unique<CProfileFileQPFv3>();
}

// The words of the header block that a tag starts with: its version decides between the classes. A block that is not
// whole does not load in either.
nvx::HeaderBlockWords WordsAt(CNvxFile& stream, std::uint32_t size) {
  _tagDeviceProfileInfo scratch;
  nvx::HeaderBlockWords words;
  if (size >= nvx::kHeaderBlockSize) nvx::ReadHeaderBlock(stream, scratch, words);
  return words;
}

// Null for a header that cannot be read and for another version. The conversion table that was read comes along.
std::unique_ptr<CProfileFile> DetectTextFormat(CNvxFile& file) {
  CProfileData scratch;
  auto format = std::make_unique<CProfileFileQPFv1>();
  file.SeekToBegin();
  if (!format->LoadData(file, &scratch, true)) return nullptr;
  const std::uint32_t version = scratch.GetProfileInfo()->ProfileMajorVersion;
  if (version == 1) return format;
  if (version == 2) return std::make_unique<CProfileFileQPFv2>(*format);
  return nullptr;
}

// What the beginning of a file tells: a format, or an ICC profile that may be one of a printer.
struct Beginning {
  std::unique_ptr<CProfileFile> format;
  bool isIcc = false;
  std::optional<nvx::IccTag> entryTag;
};

Beginning ReadIccBeginning(CNvxFile& file) {
  Beginning beginning;
  file.SeekToBegin();
  nvx::IccDirectory directory;
  if (!nvx::ReadIccDirectory(file, directory)) return beginning;
  beginning.isIcc = true;
  if (const nvx::IccTag* const tag = directory.Find(CICCProfile::MakeTagSignature(nvx::kEntryTag)))
    beginning.entryTag = *tag;
  return beginning;
}

Beginning ReadBeginning(CNvxFile& file) {
  if (nvx::HasIccExtension(file.GetPath())) return ReadIccBeginning(file);
  file.SeekToBegin();
  if (nvx::ReadMagic(file, nvx::ContainerHeader::kMagic))
    return {std::make_unique<CProfileFileQCT>(), false, std::nullopt};
  if (StartsWithTextHeader(file)) {
    if (std::unique_ptr<CProfileFile> format = DetectTextFormat(file)) return {std::move(format), false, std::nullopt};
  }
  return ReadIccBeginning(file);
}

// What is no file of one kind may be one of another, so that nothing is recorded meanwhile.
template <class Read>
Beginning Quietly(CNvxFile& file, Read read) {
  nvx::Diagnosis* const diagnosis = file.GetDiagnosis();
  file.SetDiagnosis(nullptr);
  Beginning beginning = read(file);
  file.SetDiagnosis(diagnosis);
  return beginning;
}

std::unique_ptr<CProfileFile> FormatOf(CNvxFile& file, Beginning beginning) {
  if (beginning.entryTag) {
    file.Seek(beginning.entryTag->offset, nvx::kFromBegin);
    return CreatePrinterFormat(WordsAt(file, beginning.entryTag->size));
  }
  if (beginning.isIcc) return std::make_unique<CProfileFileICC>();
  return std::move(beginning.format);
}

}  // namespace

bool nvx::HasIccExtension(std::u16string_view path) {
  const std::u16string_view extension = nvx::platform::SplitFileName(path).extension;
  return extension == u".icc" || extension == u".icm";
}

std::unique_ptr<CProfileFile> nvx::DetectFormat(CNvxFile& file) {
  if (!file.FitsLength()) return nullptr;
  std::unique_ptr<CProfileFile> format = FormatOf(file, Quietly(file, ReadBeginning));
  file.SeekToBegin();
  return format;
}

nvx::LoadedFormat nvx::LoadProfile(CNvxFile& file, CProfileData& data) {
  if (!file.FitsLength()) {
    Refuse(file, "file: 4 GiB or longer");
    return {};
  }
  Beginning beginning = Quietly(file, ReadBeginning);
  file.SeekToBegin();
  if (!beginning.entryTag) {
    LoadedFormat result{FormatOf(file, std::move(beginning)), false};
    result.isLoaded = result.format && result.format->LoadData(file, &data, false);
    return result;
  }
  // The version stands somewhere in the file: the bytes that are read to see it are those that are loaded.
  CICCProfile profile;
  if (!profile.OpenStream(file, kPrivateTags)) return {std::make_unique<CProfileFileQPFv3>(), false};
  CNvxMemFile tag;
  tag.Buffer = const_cast<std::uint8_t*>(profile.GetRefTag(kEntryTag, tag.Length));
  std::unique_ptr<CProfileFileQPFv3> format = CreatePrinterFormat(WordsAt(tag, tag.Length));
  const bool isLoaded = format->LoadProfile(profile, file, &data);
  return {std::move(format), isLoaded};
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
  return FormatOf(file, ReadIccBeginning(file)).release();
}
