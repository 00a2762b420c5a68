#include "core/payload.h"
#include "core/stream.h"
#include "icc/description.h"

#include <nvxprofile/entry_types.h>
#include <nvxprofile/icc_profile.h>
#include <nvxprofile/profile_file_icc.h>

#include <memory>

CProfileFileICC::CProfileFileICC() { SetMyFormat(nvx::kPlainIcc); }
CProfileFileICC::~CProfileFileICC() = default;

bool CProfileFileICC::LoadHeader(CNvxFile&, CProfileData*) { return true; }

bool CProfileFileICC::LoadEntries(CNvxFile& file, CProfileData* data) {
  std::unique_ptr<CProfileDataEntry> entry(CProfileDataEntry::CreateDataEntry(CProfileDataEntry::kIcm));
  if (!entry) return false;
  const std::uint32_t size = file.GetLength();
  file.SeekToBegin();
  if (size != 0 && !nvx::ReadExact(file, entry->GetBuffer(size), size))
    return nvx::Refuse(file, "ICC profile: unreadable");
  entry->SetComplete(true);
  nvx::ParseInto(file.GetDiagnosis(), *entry);
  data->SetProfileDataEntry(entry.release(), nvx::kRouteIccRoot);
  return true;
}

bool CProfileFileICC::SaveHeader(CNvxFile&, CProfileData*, std::uint32_t) { return true; }

bool CProfileFileICC::SaveBody(CNvxFile& file, CProfileData* data, std::uint32_t) {
  CProfileDataEntry* const entry = data->GetProfileDataEntry(nvx::kRouteIccRoot, CProfileDataEntry::kIcm);
  if (entry == nullptr) return false;
  entry->DataToBuffer();
  CICCProfile profile;
  if (!profile.OpenBuffer(entry->Bytes().data(), entry->GetSize(), false)) return false;
  nvx::RewriteDescription(profile, file);
  return profile.WriteTo(file);
}
