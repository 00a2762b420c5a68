#include "adjust/adjust_keys.h"
#include "adjust/adjust_syntax.h"
#include "adjust/initialize.h"

#include <algorithm>
#include <string>

using namespace nvx::adjust;

namespace {

constexpr const char* kSource = "ColorAdjustFile";
constexpr const char16_t* kNotFound = u"Color adjust file: File not found. (file name:%s)";

bool ReadCurve(CAdjustFileAnalyzer& analyzer, const std::string& key, std::uint8_t* curve, CError& error) {
  return analyzer.GetCurve8(key.c_str(), curve, error);
}

bool ReadCurve(CAdjustFileAnalyzer& analyzer, const std::string& key, std::uint16_t* curve, CError& error) {
  return analyzer.GetCurve16(key.c_str(), curve, error);
}

// Every key is looked up, whatever the ones before gave, so that the record names the last that is missing.
template <class Param>
bool ReadDensity(CAdjustFileAnalyzer* analyzer, Param* param, const char* prefix, CError& error) {
  if (analyzer == nullptr || param == nullptr) return false;
  const std::string block = prefix;
  bool whole = true;
  for (const DensityField<Param>& field : kDensityFields<Param>) {
    whole &= analyzer->GetIntValue((block + field.name).c_str(), &(param->*field.field), error);
  }
  whole &= analyzer->GetBoolValue((block + kInkRatio).c_str(), &param->InkRatio, error);
  whole &= ReadCurve(*analyzer, block + kKCurve, param->KCurve, error);
  whole &= ReadCurve(*analyzer, block + kMixCurve, param->MixCurve, error);
  return whole;
}

template <class Data>
bool ReadColorAdjust(CAdjustFileAnalyzer* analyzer, Data* data, CError& error) {
  return analyzer != nullptr && data != nullptr && analyzer->GetIntValue(kProfileCode, &data->ProfileCode, error) &&
         analyzer->GetIntValue(kTotalDensity, &data->TotalDensity, error) &&
         ReadDensity(analyzer, &data->V, kFirstBlock, error) && ReadDensity(analyzer, &data->R, kSecondBlock, error);
}

template <class Sample>
bool ReadInkCurve(CAdjustFileAnalyzer* analyzer, const std::string& key, Sample* curve, CError& error) {
  return analyzer != nullptr && curve != nullptr && ReadCurve(*analyzer, key, curve, error);
}

bool ReadCurves(CAdjustFileAnalyzer* analyzer, const char* keyPart, std::uint8_t* curves, int count, CError& error) {
  if (analyzer == nullptr || curves == nullptr) return false;
  std::fill_n(curves, static_cast<std::size_t>(std::max(count, 0)) * kCurveLength, std::uint8_t{0});
  return analyzer->GetCurves8(keyPart, curves, count, error);
}

}  // namespace

CColorAdjustFile::CColorAdjustFile() = default;
CColorAdjustFile::~CColorAdjustFile() = default;

bool CColorAdjustFile::Initialize(const char16_t* path, CError& error) {
  return nvx::adjust::Initialize(analyzer_, path, kSource, kNotFound, error);
}

bool CColorAdjustFile::GetColorAdjustData(COLOR_ADJUST* data, CError& error) {
  return ReadColorAdjust(analyzer_.get(), data, error);
}

bool CColorAdjustFile::GetGrayBalanceCurve(std::uint8_t* curve, int ink, CError& error) {
  return ReadInkCurve(analyzer_.get(), InkKey(kGrayCurve, ink), curve, error);
}

bool CColorAdjustFile::GetInkLimitCurve(std::uint8_t* curve, int ink, CError& error) {
  return ReadInkCurve(analyzer_.get(), InkKey(kLimitCurve, ink), curve, error);
}

bool CColorAdjustFile::GetDensityParam(DENSITY_PARAM* param, const char* prefix, CError& error) {
  return ReadDensity(analyzer_.get(), param, prefix, error);
}

bool CColorAdjustFile::GetGrayBalanceCurves(std::uint8_t* curves, CError& error) {
  return ReadCurves(analyzer_.get(), kGrayCurvePart, curves, 4, error);
}

bool CColorAdjustFile::GetInkLimitCurves(std::uint8_t* curves, int count, CError& error) {
  return ReadCurves(analyzer_.get(), kLimitCurvePart, curves, count, error);
}

CColorAdjustFileV3::CColorAdjustFileV3() = default;
CColorAdjustFileV3::~CColorAdjustFileV3() = default;

bool CColorAdjustFileV3::Initialize(const char16_t* path, CError& error) {
  return nvx::adjust::Initialize(analyzer_, path, kSource, kNotFound, error);
}

bool CColorAdjustFileV3::GetColorAdjustData(COLOR_ADJUST_V3* data, CError& error) {
  return ReadColorAdjust(analyzer_.get(), data, error);
}

bool CColorAdjustFileV3::GetLinearizationCurve(std::uint16_t* curve, int ink, CError& error) {
  return ReadInkCurve(analyzer_.get(), InkKey(kLinearCurve, ink), curve, error);
}

bool CColorAdjustFileV3::GetMultiInkLimitCurve(std::uint16_t* curve, int ink, int index, CError& error) {
  return ReadInkCurve(analyzer_.get(), IndexInkKey(kLimitCurve, index, ink), curve, error);
}

bool CColorAdjustFileV3::GetDensityParam(DENSITY_PARAM_V3* param, const char* prefix, CError& error) {
  return ReadDensity(analyzer_.get(), param, prefix, error);
}
