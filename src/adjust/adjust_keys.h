// The keys of adjust files, in one place for those who read them and those who judge a file.
#pragma once

#include <nvxprofile/adjust_file.h>

#include <array>
#include <cstdio>
#include <string>
#include <string_view>

namespace nvx::adjust {

template <class Param>
struct DensityField {
  const char* name;  // behind the prefix of the block
  int Param::*field;
};

template <class Param>
inline constexpr std::array<DensityField<Param>, 8> kDensityFields{{
    {"_Contrast", &Param::Contrast},
    {"_Cyan", &Param::Cyan},
    {"_CyanType", &Param::CyanType},
    {"_Magenta", &Param::Magenta},
    {"_MagentaType", &Param::MagentaType},
    {"_Yellow", &Param::Yellow},
    {"_YellowType", &Param::YellowType},
    {"_Black", &Param::Black},
}};
inline constexpr const char* kInkRatio = "_InkRatio";
inline constexpr const char* kKCurve = "_KCurve";
inline constexpr const char* kMixCurve = "_MixCurve";
inline constexpr const char* kFirstBlock = "v";
inline constexpr const char* kSecondBlock = "r";

inline constexpr const char* kProfileCode = "ProfileCode";
inline constexpr const char* kTotalDensity = "g_TotalDensity";
inline constexpr const char* kGrayCurvePart = "GrayCurve";
inline constexpr const char* kLimitCurvePart = "LimitCurve";
inline constexpr const char* kGrayCurve = "GrayCurve_";
inline constexpr const char* kLimitCurve = "LimitCurve_";
inline constexpr const char* kLinearCurve = "LinearCurve_";

struct DeviceField {
  const char* key;
  int DEVICE_ADJUST_PARAM::*field;
  bool required;
};

inline constexpr std::array<DeviceField, 14> kDeviceFields{{
    {"FeedAdjust[WhichUse]", &DEVICE_ADJUST_PARAM::FeedAdjustWhichUse, true},
    {"FeedAdjust[Value]", &DEVICE_ADJUST_PARAM::FeedAdjustValue, true},
    {"Heater1[WhichUse]", &DEVICE_ADJUST_PARAM::Heater1WhichUse, true},
    {"Heater1[Value]", &DEVICE_ADJUST_PARAM::Heater1Value, true},
    {"Heater2[WhichUse]", &DEVICE_ADJUST_PARAM::Heater2WhichUse, true},
    {"Heater2[Value]", &DEVICE_ADJUST_PARAM::Heater2Value, true},
    {"Heater3[WhichUse]", &DEVICE_ADJUST_PARAM::Heater3WhichUse, false},
    {"Heater3[Value]", &DEVICE_ADJUST_PARAM::Heater3Value, false},
    {"Heater4[WhichUse]", &DEVICE_ADJUST_PARAM::Heater4WhichUse, false},
    {"Heater4[Value]", &DEVICE_ADJUST_PARAM::Heater4Value, false},
    {"MediaFeedSpeed[WhichUse]", &DEVICE_ADJUST_PARAM::MediaFeedSpeedWhichUse, false},
    {"MediaFeedSpeed[Value]", &DEVICE_ADJUST_PARAM::MediaFeedSpeedValue, false},
    {"UvMode[WhichUse]", &DEVICE_ADJUST_PARAM::UvModeWhichUse, false},
    {"UvMode[Value]", &DEVICE_ADJUST_PARAM::UvModeValue, false},
}};

inline constexpr const char* kSpecialInkset = "SpecialInkset";
inline constexpr const char* kSpecialInkCount = "SpecialInkCount";
inline constexpr const char* kSpecialInk = "SpecialInk";
inline constexpr const char* kSpecialDensity = "g_SpecialDensity_";
inline constexpr const char* kVDApplyWay = "VDApplyWay_";
inline constexpr const char* kVD01Curve = "VD01Curve_";
inline constexpr const char* kVD02Curve = "VD02Curve_";
inline constexpr const char* kVD03Curve = "VD03Curve_";

// Keys that end in an ink number of four digits or more, and in an index of two and an ink number.
inline std::string InkKey(const char* name, int ink) {
  char number[16];
  std::snprintf(number, sizeof number, "%04d", ink);
  return std::string(name) + number;
}

inline std::string IndexInkKey(const char* name, int index, int ink) {
  char number[32];
  std::snprintf(number, sizeof number, "%02d_%04d", index, ink);
  return std::string(name) + number;
}

}  // namespace nvx::adjust
