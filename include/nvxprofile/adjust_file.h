// Adjust files: small text files with which colour and device settings are corrected from outside a profile. The syntax
// and the keys stand in docs/formats/adjust.md; nvxprofile/adjust_inspection.h tells what is odd about a file.
#pragma once

#include <nvxprofile/error.h>
#include <nvxprofile/export.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

// The table of keys and values of one file. Every getter gives false if the key is missing or its value is empty, and
// the record then holds "Adjust file:Parameter none (key = %s)". A key that was asked for and not found stays in the
// table with an empty value, so one analyzer is for one thread at a time.
//
// Whole numbers are read as decimal text: white space and a sign in front are taken, the number ends at the first
// character that is no digit, text without digits is 0, and what 32 bits do not hold becomes the nearest number that
// they do. Lists are whole numbers between commas; an empty item is 0.
class NVX_EXPORT CAdjustFileAnalyzer {
 public:
  CAdjustFileAnalyzer() = default;
  CAdjustFileAnalyzer(const CAdjustFileAnalyzer&) = delete;
  CAdjustFileAnalyzer& operator=(const CAdjustFileAnalyzer&) = delete;
  virtual ~CAdjustFileAnalyzer();

  // Reads the file into the table. False if it cannot be opened, with the error number of the system in the record.
  bool LoadFile(const char16_t* path, CError& error);
  // The same from the bytes of a file.
  void LoadText(std::string_view text);

  // The target stays as it was on failure.
  bool GetIntValue(const char* key, int* value, CError& error);
  // True for "true", false for "false"; any other text counts as a missing key.
  bool GetBoolValue(const char* key, bool* value, CError& error);

  // Lists of up to 256 values, cut to their low bits, and of up to `count` values. Elements of the target behind the
  // last item stay as they were; items beyond the limit are ignored.
  bool GetCurve8(const char* key, std::uint8_t* curve, CError& error);
  bool GetCurve16(const char* key, std::uint16_t* curve, CError& error);
  bool GetIntList(const char* key, int* values, int count, CError& error);

  // Up to `count` curves of 256 bytes one after the other, from the keys that contain `keyPart` anywhere, in the order
  // of the keys (by byte value). What is left of the target becomes ramps from 0 to 255. A matching key with an empty
  // value ends with false. A count below 1 writes nothing.
  bool GetCurves8(const char* keyPart, std::uint8_t* curves, int count, CError& error);

 private:
  void TakeLine(std::string_view line);
  // The value of the key, null after a failure.
  const std::string* Find(const char* key, CError& error);

  std::map<std::string, std::string> values_;
};

// One block of a colour adjust file.
struct DENSITY_PARAM {
  int Contrast = 0;
  int Cyan = 0;
  int CyanType = 0;
  int Magenta = 0;
  int MagentaType = 0;
  int Yellow = 0;
  int YellowType = 0;
  int Black = 0;
  bool InkRatio = false;
  std::uint8_t KCurve[256] = {};
  std::uint8_t MixCurve[256] = {};
};

// The same with curves of 16 bits.
struct DENSITY_PARAM_V3 {
  int Contrast = 0;
  int Cyan = 0;
  int CyanType = 0;
  int Magenta = 0;
  int MagentaType = 0;
  int Yellow = 0;
  int YellowType = 0;
  int Black = 0;
  bool InkRatio = false;
  std::uint16_t KCurve[256] = {};
  std::uint16_t MixCurve[256] = {};
};

// What a colour adjust file says beside its curves: one block each for the keys with the prefixes v and r.
struct COLOR_ADJUST {
  int ProfileCode = 0;
  int TotalDensity = 0;
  DENSITY_PARAM V;
  DENSITY_PARAM R;
};

// The same with curves of 16 bits.
struct COLOR_ADJUST_V3 {
  int ProfileCode = 0;
  int TotalDensity = 0;
  DENSITY_PARAM_V3 V;
  DENSITY_PARAM_V3 R;
};

// Pairs of a switch and a value. The first three pairs are required in a file; the others are 0 where it lacks them.
struct DEVICE_ADJUST_PARAM {
  int FeedAdjustWhichUse = 0;
  int FeedAdjustValue = 0;
  int Heater1WhichUse = 0;
  int Heater1Value = 0;
  int Heater2WhichUse = 0;
  int Heater2Value = 0;
  int Heater3WhichUse = 0;
  int Heater3Value = 0;
  int Heater4WhichUse = 0;
  int Heater4Value = 0;
  int MediaFeedSpeedWhichUse = 0;
  int MediaFeedSpeedValue = 0;
  int UvModeWhichUse = 0;
  int UvModeValue = 0;
};

// What a file says of special colours: which ink set, and of each ink its code and density.
struct SPECIAL_COLOR_ADJUST {
  // One ink.
  struct Ink {
    int InkCode = 0;
    int Density = 0;
    std::uint8_t Reserved[256] = {};  // the callers'; neither read nor written here
  };
  static constexpr int kMaxInks = 8;

  int Inkset = 0;
  int InkCount = 0;
  Ink Inks[kMaxInks];
};

// The readers. An object reads after a true Initialize, which can be called again for another file. Initialize gives
// false for a path without a file, with the file read before still at hand, and for a file that cannot be opened, of
// which every key is missing then. Without a file the getters give false or 0 and report nothing. A null target gives
// false and reports nothing. Curves have 256 samples; those behind the last item of the file stay as the caller had
// them. `ink` is the number in the key.

// Colour adjust files of the older form, with curves of 8 bits.
class NVX_EXPORT CColorAdjustFile {
 public:
  CColorAdjustFile();
  CColorAdjustFile(const CColorAdjustFile&) = delete;
  CColorAdjustFile& operator=(const CColorAdjustFile&) = delete;
  virtual ~CColorAdjustFile();

  // Reads the file, as said above.
  bool Initialize(const char16_t* path, CError& error);

  // False if any key is missing; the record then names the last one. The other keys of its block are read all the same;
  // a failure ahead of the second block leaves that untouched.
  bool GetColorAdjustData(COLOR_ADJUST* data, CError& error);
  bool GetGrayBalanceCurve(std::uint8_t* curve, int ink, CError& error);
  bool GetInkLimitCurve(std::uint8_t* curve, int ink, CError& error);

 protected:
  // The block of the keys with that prefix.
  bool GetDensityParam(DENSITY_PARAM* param, const char* prefix, CError& error);

  // 4 and `count` curves of 256 bytes, cleared first; see CAdjustFileAnalyzer::GetCurves8.
  bool GetGrayBalanceCurves(std::uint8_t* curves, CError& error);
  bool GetInkLimitCurves(std::uint8_t* curves, int count, CError& error);

 private:
  std::unique_ptr<CAdjustFileAnalyzer> analyzer_;
};

// The newer form, with curves of 16 bits.
class NVX_EXPORT CColorAdjustFileV3 {
 public:
  CColorAdjustFileV3();
  CColorAdjustFileV3(const CColorAdjustFileV3&) = delete;
  CColorAdjustFileV3& operator=(const CColorAdjustFileV3&) = delete;
  ~CColorAdjustFileV3();

  // Reads the file, as said above.
  bool Initialize(const char16_t* path, CError& error);

  // As in CColorAdjustFile.
  bool GetColorAdjustData(COLOR_ADJUST_V3* data, CError& error);
  bool GetLinearizationCurve(std::uint16_t* curve, int ink, CError& error);
  bool GetMultiInkLimitCurve(std::uint16_t* curve, int ink, int index, CError& error);

 protected:
  // The block of the keys with that prefix.
  bool GetDensityParam(DENSITY_PARAM_V3* param, const char* prefix, CError& error);

 private:
  std::unique_ptr<CAdjustFileAnalyzer> analyzer_;
};

// Files that correct device settings.
class NVX_EXPORT CDeviceAdjustFile {
 public:
  CDeviceAdjustFile();
  CDeviceAdjustFile(const CDeviceAdjustFile&) = delete;
  CDeviceAdjustFile& operator=(const CDeviceAdjustFile&) = delete;
  virtual ~CDeviceAdjustFile();

  // Reads the file, as said above.
  bool Initialize(const char16_t* path, CError& error);

  // False at the first required key that is missing, with the fields behind it untouched. After a true the record may
  // name the last optional key that is missing: the result alone decides.
  bool GetDeviceAdjustParam(DEVICE_ADJUST_PARAM* param, CError& error);

 private:
  std::unique_ptr<CAdjustFileAnalyzer> analyzer_;
};

// Files that correct special colours.
class NVX_EXPORT CSpecialColorAdjustFile {
 public:
  CSpecialColorAdjustFile();
  CSpecialColorAdjustFile(const CSpecialColorAdjustFile&) = delete;
  CSpecialColorAdjustFile& operator=(const CSpecialColorAdjustFile&) = delete;
  virtual ~CSpecialColorAdjustFile();

  // Reads the file, as said above.
  bool Initialize(const char16_t* path, CError& error);

  // Inkset, ink count and the codes of the inks; inks for which the list has no item get code 0. An ink count above 8
  // is cut to 8, which nvx::InspectAdjustFile remarks.
  bool GetColorAdjustData(SPECIAL_COLOR_ADJUST* data, CError& error);

  // The densities of the inks that the structure names, 0 where the file has none. True unless the target is null or no
  // file is there; the record may name the last density that is missing. No more than 8 inks are looked at.
  bool GetSpecialDensity(SPECIAL_COLOR_ADJUST* data, CError& error);

  // False if the key is missing.
  bool GetInkLimitCurve(std::uint16_t* curve, int ink, CError& error);

  // How variable dots apply to the ink; 0 if the key is missing, which the record then says.
  int GetVDApplyWay(int ink, CError& error);

  // The curve of a dot size: 3 and 4 have their own, all others share the third. False if the apply way is neither 1
  // nor 2.
  bool GetVariableCurve(int ink, std::uint32_t dotSize, std::uint16_t* curve, CError& error);

 protected:
  // What GetVDApplyWay asks.
  int _GetVDApplyWay(int ink, CError& error);

 private:
  std::unique_ptr<CAdjustFileAnalyzer> analyzer_;
};
