// Profiles of the current generation: an ICC profile that carries the printer data in seven private tags.
#pragma once

#include <nvxprofile/export.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/system_time.h>

#include <cstdint>

class CICCProfile;

namespace nvx {

// The optional tags that a save is asked for; the other three go by the flags of the information record.
inline constexpr std::uint32_t kSaveReplaceProfile = kRouteReplaceProfile;  // NVX3
inline constexpr std::uint32_t kSaveCalibration = kRouteCalibration;        // NVX4

}  // namespace nvx

// The form stands in docs/formats/qpf.md. In memory the ICC profile proper, without the private tags, is the CICMEntry
// of route 4; in the file it is the frame, and the entry table of NVX1 keeps only a placeholder for it.
//
// A load rebuilds the buffers of route 4 from their payloads, and makes every curve there one of 16 bits. An entry
// whose payload does not parse, or only in part, keeps its bytes as they were in the file; the curves of it that parsed
// are of 16 bits like all others.
class NVX_EXPORT CProfileFileQPFv3 : public CProfileFileQCT {
 public:
  CProfileFileQPFv3();
  ~CProfileFileQPFv3() override;

  using CProfileFileQCT::LoadData;

  // Loads the whole file, whatever headerOnly says, from where the stream stands to its end. FileName is filled last.
  bool LoadData(CNvxFile& file, CProfileData* data, bool headerOnly) override;

  // The same with the ICC profile that was opened from the whole stream. The profile ends with it, whatever the result.
  bool LoadProfile(CICCProfile& profile, CNvxFile& file, CProfileData* data);

  // `flags` is a set of nvx::kSave bits; other bits have no meaning. Buffers are written as they are, so whoever
  // changed a payload has called DataToBuffer. The stream receives everything in one write at the end, or nothing.
  //
  // False, with the model as it was, without an ICC entry that can be opened and stands on route 4, and when a flag of
  // the information record asks for a route that is missing. In the model a save sets LayoutNumber to 3, the version,
  // RenderingScan, RenderingFeed, UpdateTimeValue, CreateTimeValue if it was 0, and moves the ICC entry to the end of
  // route 4. A record with the text view gets a binary view of what that says: the numbers of its code texts, and its
  // media names in Japanese and English.
  bool SaveData(CNvxFile& file, CProfileData* data, std::uint32_t flags) override;
  // As CProfileFile says: after a false the old file is as it was.
  bool SaveData(const char16_t* path, CProfileData* data, std::uint32_t flags) override;

  // The version that NVX1 tells: 0 and -1 if it does not load.
  int GetProfileMajorVersion(CICCProfile& profile);
  int GetProfileMinerVersion(CICCProfile& profile);

  // Entries on route 4 without those of UsedType 10; 0 if there is no route 4.
  std::uint32_t GetEntryCountWithoutICCProfile(CProfileData* data);

  // Bytes of each tag as a save writes it, a multiple of 4. 0 if its route is missing; NVX2 needs none.
  std::uint64_t GetSizeNvx1Tag(CProfileData* data);
  std::uint64_t GetSizeNvx2Tag(CProfileData* data);
  std::uint64_t GetSizeNvx3Tag(CProfileData* data);
  std::uint64_t GetSizeNvx4Tag(CProfileData* data);
  std::uint64_t GetSizeNvx5Tag(CProfileData* data);
  std::uint64_t GetSizeNVX6Tag(CProfileData* data);
  std::uint64_t GetSizeNVX7Tag(CProfileData* data);

  // The bytes of a tag from its opening on, without the padding. False for a tag that ends early, a count beyond the
  // end, a missing route, and a short write.
  bool LoadMediaData(CNvxFile& stream, CProfileData* data);
  bool SaveMediaData(CNvxFile& stream, CProfileData* data);
  bool SaveNVX3Data(CNvxFile& stream, CProfileData* data);
  bool SaveNVX4Data(CNvxFile& stream, CProfileData* data);
  bool SaveNVX5Data(CNvxFile& stream, CProfileData* data);
  bool SaveNVX6Data(CNvxFile& stream, CProfileData* data);
  bool SaveNVX7Data(CNvxFile& stream, CProfileData* data);

  // MediaName in the language of the system, else in English, else DefaultMediaName; MediaCode from its number.
  void SetupMediaFileToData(_tagDeviceProfileInfo* info);
  // The three model code texts from their numbers, cut to their fields.
  void SetPrinterFileToData(_tagDeviceProfileInfo* info);
  // Local time; all zero for a time that the conversion refuses.
  void ConvertTime64ToSYSTEMTIME(std::int64_t time, _SYSTEMTIME* out);

 protected:
  // The header block of NVX1. A load is false only if the stream ends inside it. A save writes the number of entries
  // that SaveBody writes for route 4, whatever `route` says, and is false without that route.
  bool LoadHeader(CNvxFile& stream, CProfileData* data) override;
  bool SaveHeader(CNvxFile& stream, CProfileData* data, std::uint32_t route) override;
  // The entry table at the stream's position. A load takes it to route 4; a save writes that of `route`, with a
  // placeholder at the end in place of the ICC entry, and is false without such an entry.
  bool LoadEntries(CNvxFile& stream, CProfileData* data) override;
  bool SaveBody(CNvxFile& stream, CProfileData* data, std::uint32_t route) override;

  // One private tag each. A load is false for a missing tag.
  bool LoadNVX1Tag(CICCProfile& profile, CProfileData* data);
  bool LoadNVX2Tag(CICCProfile& profile, CProfileData* data);
  bool LoadNVX3Tag(CICCProfile& profile, CProfileData* data);
  bool LoadNVX4Tag(CICCProfile& profile, CProfileData* data);
  bool LoadNVX5Tag(CICCProfile& profile, CProfileData* data);
  bool LoadNVX6Tag(CICCProfile& profile, CProfileData* data);
  bool LoadNVX7Tag(CICCProfile& profile, CProfileData* data);
  // Without their route NVX3 and NVX4 are true and write no tag; the other three are false. A route whose entries hold
  // no bytes gives no tag either, and true.
  bool SaveNVX1Tag(CICCProfile& profile, CProfileData* data);
  bool SaveNVX2Tag(CICCProfile& profile, CProfileData* data);
  bool SaveNVX3Tag(CICCProfile& profile, CProfileData* data);
  bool SaveNVX4Tag(CICCProfile& profile, CProfileData* data);
  bool SaveNVX5Tag(CICCProfile& profile, CProfileData* data);
  bool SaveNVX6Tag(CICCProfile& profile, CProfileData* data);
  bool SaveNVX7Tag(CICCProfile& profile, CProfileData* data);

 private:
  bool LoadTags(CICCProfile& profile, CProfileData* data);
  bool LoadVersion(CICCProfile& profile, CProfileData& scratch);
  bool SaveTags(CICCProfile& profile, CProfileData* data, std::uint32_t flags);

  nvx::Diagnosis* diagnosis_ = nullptr;  // of the stream that is being loaded
  bool passedOver_ = false;              // something of the entry table is not in the model
};

// The same form from version 3.5 on; the version word alone tells the two apart.
class NVX_EXPORT CProfileFileQPFv4 : public CProfileFileQPFv3 {
 public:
  ~CProfileFileQPFv4() override;
};
