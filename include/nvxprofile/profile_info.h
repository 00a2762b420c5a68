// What a profile says about itself. All wide text is UTF-16 and zero-terminated; sizes of text fields count characters,
// the terminator included.
#pragma once

#include <nvxprofile/export.h>
#include <nvxprofile/system_time.h>

#include <cstdint>

// One media name in one language.
struct tagMedia {
  std::uint16_t Language = 0;  // primary language number: 17 Japanese, 9 English
  char16_t Name[65] = {};
};

// The run of _tagDeviceProfileInfo from ModelCode to DotType, as CProfileAccess::GetOutputInfo copies it.
struct _tagOutputInfo {
  char16_t ModelCode[5] = {};
  char16_t ModelSubCode[3] = {};
  char16_t InternalCode[3] = {};
  std::uint32_t ScanResolution = 0;
  std::uint32_t FeedResolution = 0;
  std::uint32_t RenderingScan = 0;
  std::uint32_t RenderingFeed = 0;
  std::uint32_t Expand = 0;
  std::int32_t ColorsetCode = 0;
  std::int32_t InkTypeCode = 0;
  std::int32_t DotType = 0;
};

// Six values of a caller's profile database, which the conversion of a legacy profile puts into the new one.
struct _tagDBDeviceProfileInfo {
  std::int32_t DatabaseKey[5] = {};
  std::int32_t HalftoneCode = 0;
};

namespace nvx {

// Values of _tagDeviceProfileInfo::LayoutNumber: which of the two views holds.
inline constexpr std::uint32_t kNoView = 0;
inline constexpr std::uint32_t kTextView = 1;
inline constexpr std::uint32_t kBinaryView = 3;

}  // namespace nvx

// The information record. Each format fills the fields that its files carry. It owns nothing and may be copied; what
// MediaInfo points to belongs to the CProfileData that made it, and a copy that is to outlive it is made by
// CProfileData::CopyProfileInfo.
struct _tagDeviceProfileInfo {
  // What the header of a legacy text-headed profile holds: narrow text in the ANSI code page.
  struct TextView {
    char Printer_Label[32];
    char InkSet_Label[32];
    char Media_Code[16];
    char Media_Label[64];
    char Media_Eng[64];
    char Media_Jpn[64];
    char Dpi_Code[20];
    std::uint32_t Pass_Support;  // number of Pass_Code values that a save writes, at most 8
    std::uint32_t Pass_Code[8];
  };

  // What the header of the current generation holds.
  struct BinaryView {
    std::uint32_t ModelNumber;
    std::uint32_t ModelSubNumber;
    std::uint32_t InternalNumber;
    std::uint32_t MediaNumber;
    char16_t DefaultMediaName[65];  // taken when no media name fits the language
    std::uint32_t MediaInfoCount;
    tagMedia* MediaInfo;  // from CProfileData::CreateMediaInfoArray, which owns it
    char16_t CreateModule[33];
    char16_t MakerText[33];
    char16_t StoredRevisionCode[5];
  };

  char16_t FileName[256] = {};  // name and extension of the loaded file
  char16_t ModelCode[5] = {};   // four digits
  char16_t ModelSubCode[3] = {};
  char16_t InternalCode[3] = {};
  std::uint32_t ScanResolution = 0;  // output resolution across the media
  std::uint32_t FeedResolution = 0;  // output resolution along the media
  std::uint32_t RenderingScan = 0;
  std::uint32_t RenderingFeed = 0;
  std::uint32_t Expand = 0;
  std::int32_t ColorsetCode = 0;
  std::int32_t InkTypeCode = 0;
  std::int32_t DotType = 0;  // 1 or 2
  std::int32_t InkMakerCode = 0;
  std::int32_t InkVersion = 0;
  char16_t MediaCode[11] = {};
  char16_t MediaName[65] = {};    // in the language of the system
  char16_t RevisionCode[8] = {};  // four characters; "FFFF" when a file gives none
  std::int32_t DatabaseKey[5] = {-1, -1, -1, -1, -1};
  std::int32_t HalftoneCode = 0;
  std::int32_t SeparateWayCode = 0;
  std::uint32_t ProfileMajorVersion = 0;  // 1, 2 or 3
  std::uint32_t ProfileMinorVersion = 0;  // 0 to 5
  char16_t PrinterComment[65] = {};
  SYSTEMTIME CreateTime{};
  std::int64_t CreateTimeValue = 0;  // seconds since 1970
  SYSTEMTIME UpdateTime{};
  std::int64_t UpdateTimeValue = 0;
  std::uint32_t LayoutNumber = 0;  // which view holds: nvx::kTextView, kBinaryView or kNoView
  union {
    TextView Text{};
    BinaryView Binary;
  };
  std::int32_t Unused[2] = {-1, -1};
  bool HasMaskDownload = false;    // route 8 was loaded from a profile of the current generation
  bool HasOutputBlock = false;     // its mask download entry starts with a block of type 6
  bool HasLargeParameter = false;  // route 1024, likewise
  bool HasSpecialColor = false;    // route 2048, likewise
  std::int32_t WaveFormParam = 0;
  std::int32_t OutputFourthValue = 0;  // from the block of type 6, -1 when there is none
  std::uint8_t OutputCodeA = 0;        // from the same block, 255 when there is none
  std::uint8_t OutputCodeB = 0;
  std::uint16_t OutputThirdValue = 0;
  char16_t OutputText[32] = {};
  bool SaveVersion5 = false;       // set by callers: a save writes minor version 5
  char16_t ListKeys[5][256] = {};  // filled by callers, compared by CProfileDataInfo::IsOrderedBefore
  char16_t FullPath[256] = {};     // full path of a text-headed file; empty if it is longer
};

// Zeroing the greater view zeroes both.
static_assert(sizeof(_tagDeviceProfileInfo::TextView) >= sizeof(_tagDeviceProfileInfo::BinaryView));

// Base of the records by which lists of profiles are sorted.
class NVX_EXPORT CProfileInfoObject {
 public:
  // Whether this record stands before the other one.
  virtual bool IsOrderedBefore(const CProfileInfoObject& other) const;

 protected:
  CProfileInfoObject() = default;
  CProfileInfoObject(const CProfileInfoObject&) = default;
  CProfileInfoObject& operator=(const CProfileInfoObject&) = default;
  ~CProfileInfoObject() = default;
};

// The information object of a loaded profile. A copy would point to the media names of another profile, so there are
// none.
class NVX_EXPORT CProfileDataInfo : public CProfileInfoObject {
 public:
  CProfileDataInfo() = default;  // cppcheck-suppress uninitMemberVar
  CProfileDataInfo(const CProfileDataInfo&) = delete;
  CProfileDataInfo& operator=(const CProfileDataInfo&) = delete;

  // Ascending by second, fifth and third list key, MediaName, first and fourth list key, then the major version. False
  // for an object of another class.
  bool IsOrderedBefore(const CProfileInfoObject& other) const override;
  virtual ~CProfileDataInfo();

  // True for versions 1.0, 2.0 and 3.0 to 3.5.
  virtual bool IsKnownVersion() const;
  // False for version 2.0 alone.
  virtual bool IsNotVersion2() const;

  _tagDeviceProfileInfo Info;

 private:
  std::uint32_t VersionWord() const;
};
