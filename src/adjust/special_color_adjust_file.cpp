#include "adjust/adjust_keys.h"
#include "adjust/initialize.h"
#include "core/report.h"

#include <algorithm>

using namespace nvx::adjust;

namespace {

constexpr const char* kSource = "SpecialColorAdjustFile";

const char* VariableCurveName(std::uint32_t dotSize) {
  if (dotSize == 3) return kVD01Curve;
  return dotSize == 4 ? kVD02Curve : kVD03Curve;
}

}  // namespace

CSpecialColorAdjustFile::CSpecialColorAdjustFile() = default;
CSpecialColorAdjustFile::~CSpecialColorAdjustFile() = default;

bool CSpecialColorAdjustFile::Initialize(const char16_t* path, CError& error) {
  return nvx::adjust::Initialize(analyzer_, path, kSource, u"Special Color adjust file: File not found. (file name:%s)",
                                 error);
}

bool CSpecialColorAdjustFile::GetColorAdjustData(SPECIAL_COLOR_ADJUST* data, CError& error) {
  if (data == nullptr || !analyzer_) return false;
  int count = 0;
  if (!analyzer_->GetIntValue(kSpecialInkset, &data->Inkset, error)) return false;
  if (!analyzer_->GetIntValue(kSpecialInkCount, &count, error)) return false;
  count = std::min(count, SPECIAL_COLOR_ADJUST::kMaxInks);
  data->InkCount = count;
  int codes[SPECIAL_COLOR_ADJUST::kMaxInks] = {};
  if (!analyzer_->GetIntList(kSpecialInk, codes, count, error)) return false;
  for (int i = 0; i < count; ++i) data->Inks[i].InkCode = codes[i];
  return true;
}

bool CSpecialColorAdjustFile::GetSpecialDensity(SPECIAL_COLOR_ADJUST* data, CError& error) {
  if (data == nullptr || !analyzer_) return false;
  const int count = std::min(data->InkCount, SPECIAL_COLOR_ADJUST::kMaxInks);
  for (int i = 0; i < count; ++i) {
    SPECIAL_COLOR_ADJUST::Ink& ink = data->Inks[i];
    ink.Density = 0;
    analyzer_->GetIntValue(InkKey(kSpecialDensity, ink.InkCode).c_str(), &ink.Density, error);
  }
  return true;
}

bool CSpecialColorAdjustFile::GetInkLimitCurve(std::uint16_t* curve, int ink, CError& error) {
  return curve != nullptr && analyzer_ && analyzer_->GetCurve16(InkKey(kLimitCurve, ink).c_str(), curve, error);
}

int CSpecialColorAdjustFile::GetVDApplyWay(int ink, CError& error) { return _GetVDApplyWay(ink, error); }

int CSpecialColorAdjustFile::_GetVDApplyWay(int ink, CError& error) {
  int way = 0;
  if (analyzer_) analyzer_->GetIntValue(InkKey(kVDApplyWay, ink).c_str(), &way, error);
  return way;
}

bool CSpecialColorAdjustFile::GetVariableCurve(int ink, std::uint32_t dotSize, std::uint16_t* curve, CError& error) {
  const int way = GetVDApplyWay(ink, error);
  if (curve == nullptr || (way != 1 && way != 2)) return false;
  return analyzer_->GetCurve16(InkKey(VariableCurveName(dotSize), ink).c_str(), curve, error);
}
