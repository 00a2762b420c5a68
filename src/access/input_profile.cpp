#include "core/text.h"
#include "icc/icc_directory.h"
#include "platform/file_system.h"

#include <nvxprofile/input_profile.h>

#include <string>

namespace platform = nvx::platform;

bool CInputProfileInfo::IsOrderedBefore(const CProfileInfoObject& other) const {
  const auto* const info = dynamic_cast<const CInputProfileInfo*>(&other);
  if (info == nullptr) return false;
  const int byText = nvx::FieldText(SortText).compare(nvx::FieldText(info->SortText));
  return byText != 0 ? byText > 0 : nvx::FieldText(FileName) > nvx::FieldText(info->FileName);
}

CInputProfileAccess::CInputProfileAccess() = default;
CInputProfileAccess::~CInputProfileAccess() = default;

bool CInputProfileAccess::Init(const char16_t* path, CError*) {
  nvx::IccDirectory directory;
  {
    CNvxFile file;
    if (!file.Open(path, nvx::kGenericRead, nvx::kShareRead, nvx::kOpenExisting) ||
        !nvx::ReadIccDirectory(file, directory)) {
      return false;
    }
  }
  if (directory.Find(nvx::Signature("NVX1")) != nullptr) return false;
  auto info = std::make_unique<CInputProfileInfo>();
  const bool cmyk = directory.header.phDataColorSpace == nvx::Signature("CMYK");
  info->ColorKind = cmyk ? CInputProfileInfo::kColorCmyk : CInputProfileInfo::kColorOther;
  const platform::FileNameParts parts = platform::SplitFileName(path);
  std::u16string name(parts.name);
  name += parts.extension;
  nvx::CopyText(info->FileName, name);
  if (const auto time = platform::FileCreationTime(path)) info->FileTime = *time;
  info_ = std::move(info);
  return true;
}
