#include "core/payload.h"
#include "core/replacing_file.h"
#include "core/stream.h"
#include "icc/icc_directory.h"

#include <nvxprofile/icm_entry.h>

namespace {

CICMEntry::ICMOptionInfo OptionOf(const nvx::IccDirectory& directory) {
  const bool marked =
      directory.Find(nvx::Signature("agfa")) != nullptr || directory.Find(nvx::Signature("AGFA")) != nullptr;
  return marked ? CICMEntry::kIcmMarked : CICMEntry::kIcmPlain;
}

bool Fail(std::uint32_t& error, std::uint32_t reason) {
  error = reason;
  return false;
}

}  // namespace

CICMEntry::CICMEntry() : CICMEntry(kIcm) {}
CICMEntry::CICMEntry(UsedType usedType) : CProfileDataEntry(usedType, kFormatIcc, true) {}
CICMEntry::~CICMEntry() = default;

CReplaceProfileEntry::CReplaceProfileEntry() : CICMEntry(kReplaceProfile) {}
CReplaceProfileEntry::~CReplaceProfileEntry() = default;

bool CICMEntry::DoImport(CProfileDataEntry* source) { return source != nullptr && source->Copy(*this); }

bool CICMEntry::BufferToData() {
  return nvx::ParseBuffer(*this, [this](CNvxFile& stream) {
    nvx::IccDirectory directory;
    if (!nvx::ReadIccDirectory(stream, directory)) return false;
    SetOptionInfo(OptionOf(directory));
    return true;
  });
}

std::uint32_t CICMEntry::GetColors() {
  nvx::IccDirectory directory;
  if (!nvx::ReadIccDirectory(Bytes().data(), GetSize(), directory)) return 0;
  return nvx::IccColorCount(directory.header.phDataColorSpace);
}

bool CICMEntry::Load(const char16_t* path, std::uint32_t& error, ICMOptionInfo) {
  CNvxFile file;
  nvx::IccDirectory directory;
  if (!file.Open(path, nvx::kGenericRead, nvx::kNoShare, nvx::kOpenExisting) || !file.FitsLength() ||
      !nvx::ReadIccDirectory(file, directory)) {
    return Fail(error, kErrorNoIccProfile);
  }
  const std::uint32_t size = file.GetLength();
  nvx::Block block = nvx::AllocateBlock(size);
  file.SeekToBegin();
  if (!nvx::ReadExact(file, block.get(), size)) return Fail(error, kErrorFile);
  AttachBuffer(block.release(), size);
  nvx::PayloadKeeper::SetInStep(*this);
  SetOptionInfo(OptionOf(directory));
  SetComplete(true);
  return true;
}

bool CICMEntry::Save(const char16_t* path, std::uint32_t& error) {
  const bool saved = nvx::SaveByReplacing(
      path, [&](CNvxFile& file) { return GetSize() != 0 && file.Write(Bytes().data(), GetSize()) == GetSize(); });
  return saved || Fail(error, kErrorFile);
}
