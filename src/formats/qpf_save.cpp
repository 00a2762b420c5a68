// Writing profiles of the current generation.
#include "core/payload.h"
#include "core/stream.h"
#include "formats/container_entries.h"
#include "formats/model_guard.h"
#include "formats/qpf_tags.h"
#include "formats/record_views.h"
#include "icc/description.h"
#include "platform/clock.h"

#include <nvxprofile/icc_profile.h>
#include <nvxprofile/profile_file_qpf.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

using nvx::ForEachEntry;
using nvx::RouteTag;

namespace {

constexpr std::uint32_t kMajorVersion = 3;
constexpr std::uint32_t kOpeningSize = nvx::kRecordSize<nvx::PrivateTagOpening>;

constexpr std::uint64_t RoundUpTo4(std::uint64_t size) { return (size + 3) / 4 * 4; }

bool IsIcc(const CProfileDataEntry& entry) { return entry.GetUsedType() == CProfileDataEntry::kIcm; }

// The first that applies; a reader of an older version learns by it what it would miss.
std::uint32_t MinorVersion(const _tagDeviceProfileInfo& info) {
  if (info.SaveVersion5) return 5;
  if (info.HasMaskDownload && info.HasOutputBlock) return 4;
  if (info.HasSpecialColor) return 3;
  if (info.HasLargeParameter) return 2;
  if (info.HasMaskDownload) return 1;
  return 0;
}

std::uint64_t RouteTagSize(const CProfileData& data, const RouteTag& tag) {
  const CProfileRoute* const route = data.GetProfileRoute(tag.route);
  if (route == nullptr) return 0;
  std::uint64_t size = kOpeningSize;
  ForEachEntry(*route, [&](CProfileDataEntry& entry) {
    size += entry.GetSize();
    return true;
  });
  return RoundUpTo4(size);
}

bool SaveRouteData(CNvxFile& stream, CProfileData& data, const RouteTag& tag) {
  CProfileRoute* const route = data.GetProfileRoute(tag.route);
  return route != nullptr && nvx::WriteRecord(stream, nvx::PrivateTagOpening()) &&
         ForEachEntry(*route, [&](CProfileDataEntry& entry) {
           return nvx::WriteExact(stream, entry.Bytes().data(), entry.GetSize());
         });
}

// A stream with a block of its own, which a write beyond its end replaces by a longer one.
class BlockStream : public CNvxMemFile {
 public:
  explicit BlockStream(std::uint32_t size) : CNvxMemFile(nvx::AllocateBlock(size).release(), size) {}
  ~BlockStream() override { std::free(Buffer); }

  std::uint8_t* Take() { return std::exchange(Buffer, nullptr); }
};

// Sets a tag to what save(stream) writes into a block of the tag's size, with zeros behind it.
template <class Save>
bool SetTag(CICCProfile& profile, const char* tag, std::uint64_t size, Save save) {
  if (size == 0 || size > std::numeric_limits<std::uint32_t>::max()) return false;
  BlockStream stream(static_cast<std::uint32_t>(size));
  if (!save(stream) || stream.Length != size) return false;
  std::memset(stream.Buffer + stream.Position, 0, stream.Length - stream.Position);
  return profile.AttachTag(tag, stream.Take(), stream.Length);
}

// The same for the bytes of a route. Where they are none there is no tag: one with its opening alone would not load.
template <class Save>
bool SetRouteTag(CICCProfile& profile, const RouteTag& tag, std::uint64_t size, Save save) {
  return size == kOpeningSize ? profile.SetTag(tag.name, nullptr, 0) : SetTag(profile, tag.name, size, save);
}

}  // namespace

bool CProfileFileQPFv3::SaveData(const char16_t* path, CProfileData* data, std::uint32_t flags) {
  return CProfileFile::SaveData(path, data, flags);
}

bool CProfileFileQPFv3::SaveData(CNvxFile& file, CProfileData* data, std::uint32_t flags) {
  if (data == nullptr) return false;
  CProfileDataEntry* const icc = data->GetProfileDataEntryFromList(CProfileDataEntry::kIcm);
  CProfileRoute* const route = data->GetProfileRoute(nvx::kRouteMain);
  if (icc == nullptr || route == nullptr || !route->IsExistEntry(icc)) return false;
  CICCProfile profile;
  if (!profile.OpenBuffer(icc->Bytes().data(), icc->GetSize(), false)) return false;
  nvx::ModelGuard guard(*data);
  nvx::UseBinaryView(*data);
  if (!SaveTags(profile, data, flags)) return false;
  nvx::RewriteDescription(profile, file);
  if (!guard.Done(profile.WriteTo(file) && file.Flush())) return false;
  route->RemoveEntry(CProfileDataEntry::kIcm);
  route->Add(icc);
  return true;
}

bool CProfileFileQPFv3::SaveTags(CICCProfile& profile, CProfileData* data, std::uint32_t flags) {
  const _tagDeviceProfileInfo& info = *data->GetProfileInfo();
  return SaveNVX1Tag(profile, data) && SaveNVX2Tag(profile, data) &&
         ((flags & nvx::kSaveReplaceProfile) == 0 || SaveNVX3Tag(profile, data)) &&
         ((flags & nvx::kSaveCalibration) == 0 || SaveNVX4Tag(profile, data)) &&
         (!info.HasMaskDownload || SaveNVX5Tag(profile, data)) &&
         (!info.HasLargeParameter || SaveNVX6Tag(profile, data)) &&
         (!info.HasSpecialColor || SaveNVX7Tag(profile, data));
}

bool CProfileFileQPFv3::SaveHeader(CNvxFile& stream, CProfileData* data, std::uint32_t) {
  if (!data->IsSpecifiedRoute(nvx::kRouteMain)) return false;
  _tagDeviceProfileInfo& info = *data->GetProfileInfo();
  info.RenderingScan = info.ScanResolution;
  info.RenderingFeed = info.FeedResolution;
  const SaveTimes times = TimesOfSave(info.CreateTimeValue);
  info.CreateTimeValue = times.created;
  info.UpdateTimeValue = times.saved;
  info.ProfileMajorVersion = kMajorVersion;
  info.ProfileMinorVersion = MinorVersion(info);
  nvx::HeaderBlockWords words;
  words.SetVersion(info.ProfileMajorVersion, info.ProfileMinorVersion);
  words.entryCount = GetEntryCountWithoutICCProfile(data) + 1;
  return nvx::WriteHeaderBlock(stream, info, words);
}

bool CProfileFileQPFv3::SaveBody(CNvxFile& stream, CProfileData* data, std::uint32_t route) {
  const CProfileRoute* const place = data->GetProfileRoute(route);
  CProfileDataEntry* const icc = place != nullptr ? place->GetEntry(CProfileDataEntry::kIcm) : nullptr;
  if (icc == nullptr) return false;
  // The bytes of the ICC profile are the frame of the file; here its entry comes last, without them.
  const auto forEachOther = [&](auto write) {
    return ForEachEntry(
        *place, [&](CProfileDataEntry& entry) { return IsIcc(entry) || write(stream, entry, entry.GetSize()); });
  };
  return forEachOther(nvx::WriteEntryHeader) && nvx::WriteEntryHeader(stream, *icc, 0) &&
         forEachOther(nvx::WriteEntryBody) && nvx::WriteEntryBody(stream, *icc, 0);
}

bool CProfileFileQPFv3::SaveMediaData(CNvxFile& stream, CProfileData* data) {
  const auto& view = data->GetProfileInfo()->Binary;
  nvx::MediaTableHeader header;
  header.count = view.MediaInfoCount;
  if (!nvx::WriteRecord(stream, header)) return false;
  if (view.MediaInfo == nullptr) return true;
  for (std::uint32_t i = 0; i < view.MediaInfoCount; ++i) {
    if (!nvx::WriteRecord(stream, nvx::MediaNameRecord{view.MediaInfo[i]})) return false;
  }
  return true;
}

std::uint32_t CProfileFileQPFv3::GetEntryCountWithoutICCProfile(CProfileData* data) {
  std::uint32_t count = 0;
  if (CProfileRoute* const route = data->GetProfileRoute(nvx::kRouteMain)) {
    ForEachEntry(*route, [&](CProfileDataEntry& entry) {
      if (!IsIcc(entry)) ++count;
      return true;
    });
  }
  return count;
}

std::uint64_t CProfileFileQPFv3::GetSizeNvx1Tag(CProfileData* data) {
  CProfileRoute* const route = data->GetProfileRoute(nvx::kRouteMain);
  if (route == nullptr) return 0;
  std::uint64_t size = std::uint64_t{nvx::kHeaderBlockSize} + nvx::kEntryOverhead;
  ForEachEntry(*route, [&](CProfileDataEntry& entry) {
    if (!IsIcc(entry)) size += std::uint64_t{nvx::kEntryOverhead} + entry.GetSize();
    return true;
  });
  return RoundUpTo4(size);
}

std::uint64_t CProfileFileQPFv3::GetSizeNvx2Tag(CProfileData* data) {
  return RoundUpTo4(nvx::kRecordSize<nvx::MediaTableHeader> + std::uint64_t{nvx::kRecordSize<nvx::MediaNameRecord>} *
                                                                  data->GetProfileInfo()->Binary.MediaInfoCount);
}

bool CProfileFileQPFv3::SaveNVX1Tag(CICCProfile& profile, CProfileData* data) {
  return SetTag(profile, nvx::kEntryTag, GetSizeNvx1Tag(data), [&](CNvxFile& stream) {
    return SaveHeader(stream, data, nvx::kRouteMain) && SaveBody(stream, data, nvx::kRouteMain);
  });
}

bool CProfileFileQPFv3::SaveNVX2Tag(CICCProfile& profile, CProfileData* data) {
  return SetTag(profile, nvx::kMediaTag, GetSizeNvx2Tag(data),
                [&](CNvxFile& stream) { return SaveMediaData(stream, data); });
}

// The tags that hold the entries of one route.

std::uint64_t CProfileFileQPFv3::GetSizeNvx3Tag(CProfileData* data) {
  return RouteTagSize(*data, nvx::kReplaceProfileTag);
}

std::uint64_t CProfileFileQPFv3::GetSizeNvx4Tag(CProfileData* data) {
  return RouteTagSize(*data, nvx::kCalibrationTag);
}

std::uint64_t CProfileFileQPFv3::GetSizeNvx5Tag(CProfileData* data) {
  return RouteTagSize(*data, nvx::kMaskDownloadTag);
}

std::uint64_t CProfileFileQPFv3::GetSizeNVX6Tag(CProfileData* data) {
  return RouteTagSize(*data, nvx::kLargeParameterTag);
}

std::uint64_t CProfileFileQPFv3::GetSizeNVX7Tag(CProfileData* data) {
  return RouteTagSize(*data, nvx::kSpecialColorTag);
}

bool CProfileFileQPFv3::SaveNVX3Data(CNvxFile& stream, CProfileData* data) {
  return SaveRouteData(stream, *data, nvx::kReplaceProfileTag);
}

bool CProfileFileQPFv3::SaveNVX4Data(CNvxFile& stream, CProfileData* data) {
  return SaveRouteData(stream, *data, nvx::kCalibrationTag);
}

bool CProfileFileQPFv3::SaveNVX5Data(CNvxFile& stream, CProfileData* data) {
  return SaveRouteData(stream, *data, nvx::kMaskDownloadTag);
}

bool CProfileFileQPFv3::SaveNVX6Data(CNvxFile& stream, CProfileData* data) {
  return SaveRouteData(stream, *data, nvx::kLargeParameterTag);
}

bool CProfileFileQPFv3::SaveNVX7Data(CNvxFile& stream, CProfileData* data) {
  return SaveRouteData(stream, *data, nvx::kSpecialColorTag);
}

bool CProfileFileQPFv3::SaveNVX3Tag(CICCProfile& profile, CProfileData* data) {
  return GetSizeNvx3Tag(data) == 0 || SetRouteTag(profile, nvx::kReplaceProfileTag, GetSizeNvx3Tag(data),
                                                  [&](CNvxFile& stream) { return SaveNVX3Data(stream, data); });
}

bool CProfileFileQPFv3::SaveNVX4Tag(CICCProfile& profile, CProfileData* data) {
  return GetSizeNvx4Tag(data) == 0 || SetRouteTag(profile, nvx::kCalibrationTag, GetSizeNvx4Tag(data),
                                                  [&](CNvxFile& stream) { return SaveNVX4Data(stream, data); });
}

bool CProfileFileQPFv3::SaveNVX5Tag(CICCProfile& profile, CProfileData* data) {
  return SetRouteTag(profile, nvx::kMaskDownloadTag, GetSizeNvx5Tag(data),
                     [&](CNvxFile& stream) { return SaveNVX5Data(stream, data); });
}

bool CProfileFileQPFv3::SaveNVX6Tag(CICCProfile& profile, CProfileData* data) {
  return SetRouteTag(profile, nvx::kLargeParameterTag, GetSizeNVX6Tag(data),
                     [&](CNvxFile& stream) { return SaveNVX6Data(stream, data); });
}

bool CProfileFileQPFv3::SaveNVX7Tag(CICCProfile& profile, CProfileData* data) {
  return SetRouteTag(profile, nvx::kSpecialColorTag, GetSizeNVX7Tag(data),
                     [&](CNvxFile& stream) { return SaveNVX7Data(stream, data); });
}
