#include "core/replacing_file.h"
#include "core/stream.h"
#include "formats/model_guard.h"
#include "platform/clock.h"

#include <nvxprofile/profile_file.h>

CProfileFile::~CProfileFile() = default;

CProfileFile::SaveTimes CProfileFile::TimesOfSave(std::int64_t created) const {
  if (times_) return *times_;
  const std::int64_t now = nvx::platform::CurrentTime();
  return {created != 0 ? created : now, now};
}

bool CProfileFile::LoadHeader(CNvxFile&, CProfileData*) { return false; }
bool CProfileFile::LoadEntries(CNvxFile&, CProfileData*) { return false; }
bool CProfileFile::SaveHeader(CNvxFile&, CProfileData*, std::uint32_t) { return false; }
bool CProfileFile::SaveBody(CNvxFile&, CProfileData*, std::uint32_t) { return false; }

bool CProfileFile::LoadData(CNvxFile& file, CProfileData* data, bool headerOnly) {
  if (data == nullptr) return false;
  file.GetFileName(data->GetProfileInfo()->FileName);
  if (!LoadHeader(file, data)) return false;
  return headerOnly || LoadEntries(file, data);
}

bool CProfileFile::LoadData(const char16_t* path, CProfileData* data, bool headerOnly) {
  CNvxFile file;
  return file.Open(path, nvx::kGenericRead, nvx::kShareRead, nvx::kOpenExisting) && file.FitsLength() &&
         LoadData(file, data, headerOnly);
}

bool CProfileFile::SaveData(CNvxFile& file, CProfileData* data, std::uint32_t route) {
  if (data == nullptr) return false;
  nvx::ModelGuard guard(*data);
  return guard.Done(SaveHeader(file, data, route) && SaveBody(file, data, route) && file.Flush());
}

bool CProfileFile::SaveData(const char16_t* path, CProfileData* data, std::uint32_t route) {
  if (data == nullptr) return false;
  nvx::ModelGuard guard(*data);
  return guard.Done(nvx::SaveByReplacing(path, [&](CNvxFile& file) { return SaveData(file, data, route); }));
}
