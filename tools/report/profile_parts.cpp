#include "report/profile_parts.h"

#include "calibration_view.h"
#include "curve_view.h"
#include "loading.h"
#include "report/icc_part.h"
#include "report/samples.h"

#include <nvxprofile/curve_entry.h>
#include <nvxprofile/icm_entry.h>
#include <nvxprofile/large_parameter.h>
#include <nvxprofile/lut.h>
#include <nvxprofile/mask_download.h>
#include <nvxprofile/media_property.h>
#include <nvxprofile/model_info.h>
#include <nvxprofile/special_color.h>
#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

namespace nvx::tool {
namespace {

std::string Utf8(const char* ansi) { return WideToUtf8(AnsiToWide(ansi)); }

template <class Entry>
Entry* Find(CProfileAccess& access, std::uint32_t usedType) {
  return dynamic_cast<Entry*>(access.GetProfileData()->GetProfileDataEntryFromList(usedType));
}

std::vector<CProfileDataEntry*> AllEntries(CProfileAccess& access) {
  std::vector<CProfileDataEntry*> entries;
  bool more = access.GetProfileData()->GetEntryStartPos();
  while (more) entries.push_back(access.GetProfileData()->GetNextEntry(more));
  return entries;
}

// --- what the profile holds -------------------------------------------------------------------------------------

Json EntriesPart(CProfileAccess& access) {
  Json list = Json::array();
  for (CProfileRoute* const route : RoutesOf(*access.GetProfileData())) {
    for (CProfileDataEntry* const entry : EntriesOf(*route)) {
      list.push_back({{"route", route->GetRouteType()},
                      {"usedType", entry->GetUsedType()},
                      {"name", std::string(EntryName(entry->GetUsedType()))},
                      {"label", Utf8(entry->GetLabelString())},
                      {"size", entry->GetSize()},
                      {"complete", entry->IsComplete()},
                      {"sound", entry->GetSize() == 0 || entry->BufferToData()}});
    }
  }
  return list;
}

// --- curves -----------------------------------------------------------------------------------------------------

Json CurveToReport(CCurveDataEntry& curve) {
  const std::size_t width = curve.GetMaxBitValue() > 255 ? 2 : 1;
  return {{"ink", curve.GetInkID()},      {"name", NameOf(curve)}, {"extend", curve.GetExtendInfo()},
          {"rgb", curve.GetDisplayRGB()}, {"width", width},        {"samples", PackSamples(SamplesOf(curve), width)}};
}

Json CurvesToReport(CCurveData& set) {
  Json curves = Json::array();
  bool more = set.GetHeadPosition();
  while (more) curves.push_back(CurveToReport(*set.GetNext(more)));
  return curves;
}

Json CurveSet(CProfileCurveEntry& entry) {
  const bool isSound = entry.BufferToData();
  return {{"usedType", entry.GetUsedType()},
          {"name", std::string(EntryName(entry.GetUsedType()))},
          {"sound", isSound},
          {"curves", isSound ? CurvesToReport(*entry.GetCurveData()) : Json::array()}};
}

// The gray balance through the linearization, as a print job gets it; null without one of them.
Json MergedCurves(CProfileAccess& access) {
  auto* const balance = Find<CProfileCurveEntry>(access, CProfileDataEntry::kGrayBalance);
  if (balance == nullptr || !balance->BufferToData()) return nullptr;
  Json curves = CurvesToReport(*balance->GetCurveData());
  Json merged = Json::array();
  for (Json& curve : curves) {
    CError error;
    int size = 0;
    int dataType = 0;
    const auto ink = curve["ink"].get<std::uint32_t>();
    if (!access.GetMergeGrayBalance(ink, nullptr, size, dataType, &error) || size <= 0) continue;
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    if (!access.GetMergeGrayBalance(ink, bytes.data(), size, dataType, &error)) continue;
    const std::size_t width = dataType == 2 ? 2 : 1;
    std::vector<std::uint32_t> samples(bytes.size() / width);
    for (std::size_t i = 0; i < samples.size(); ++i) {
      std::uint16_t sample = bytes[i];
      if (width == 2) std::memcpy(&sample, bytes.data() + 2 * i, sizeof sample);
      samples[i] = sample;
    }
    curve["width"] = width;
    curve["samples"] = PackSamples(samples, width);
    merged.push_back(std::move(curve));
  }
  if (merged.empty()) return nullptr;
  return {{"usedType", 0}, {"name", "merged-gray-balance"}, {"sound", true}, {"curves", std::move(merged)}};
}

Json CurvesPart(CProfileAccess& access) {
  Json sets = Json::array();
  for (CProfileDataEntry* const entry : AllEntries(access)) {
    auto* const curves = dynamic_cast<CProfileCurveEntry*>(entry);
    if (curves != nullptr) sets.push_back(CurveSet(*curves));
  }
  Json merged = MergedCurves(access);
  if (!merged.is_null()) sets.push_back(std::move(merged));
  return sets.empty() ? Json(nullptr) : sets;
}

// --- settings ---------------------------------------------------------------------------------------------------

Json MediaPart(CProfileAccess& access) {
  auto* const entry = Find<CMediaPropertyEntry>(access, CProfileDataEntry::kMediaProperty);
  if (entry == nullptr || !entry->BufferToData()) return nullptr;
  CMediaPropertyData& data = *entry->GetMediaPropertyData();
  Json blocks = Json::array();
  bool more = data.GetHeadPosition();
  while (more) {
    CMediaPropertyDataEntry& block = *data.GetNext(more);
    const std::int32_t* const values = block.GetRefBuffer();
    blocks.push_back({{"usedType", block.GetUsedType()},
                      {"values", Json(std::vector<std::int32_t>(values, values + block.GetParameterMax()))}});
  }
  return blocks;
}

// --- conditions -------------------------------------------------------------------------------------------------

// The records of a table stand one behind the other after its head, all of one length.
std::int32_t RecordLength(std::size_t words, std::size_t head, std::int32_t records) {
  return records > 0 && words > head ? static_cast<std::int32_t>((words - head) / static_cast<std::size_t>(records))
                                     : 0;
}

Json LampPatterns(CLargeParameterDataEntry& table) {
  constexpr std::int32_t kHead = 2;
  constexpr std::int32_t kConditions = 2;  // words before the conditions of a record
  const auto store = table.Arrays().Words(1);
  const std::int32_t length = RecordLength(table.Arrays().Words(0).size(), kHead, table.GetPatternCount());
  Json patterns = Json::array();
  for (std::int32_t i = 0; length > 0 && i < table.GetPatternCount(); ++i) {
    Json conditions = Json::array();
    for (std::int32_t c = 0; c < 4; ++c) {
      conditions.push_back(table.GetParameter(kHead + i * length + kConditions + c, 0));
    }
    Json splits = Json::array();
    for (std::int32_t j = 0; j < std::min(table.SeekPatternSplitCount(i), length); ++j) {
      splits.push_back(table.SeekPatternSplitParamCount(i, j));
    }
    Json parameters = Json::array();
    if (const std::int32_t* const first = table.GetRefBufferByPatternIndex(i)) {
      const auto most = static_cast<std::int32_t>(store.data() + store.size() - first);
      for (std::int32_t j = 0; j < std::min(table.SeekPatternParamCount(i), most); ++j) parameters.push_back(first[j]);
    }
    patterns.push_back(
        {{"conditions", std::move(conditions)}, {"splits", std::move(splits)}, {"parameters", std::move(parameters)}});
  }
  return {{"patterns", std::move(patterns)}};
}

Json LampPart(CProfileAccess& access) {
  auto* const entry = Find<CLargeParameterEntry>(access, CProfileDataEntry::kLargeParameter);
  if (entry == nullptr || !entry->BufferToData()) return nullptr;
  Json tables = Json::array();
  for (CLargeParameterDataEntry* const table : entry->GetLargeParameterData()->Entries()) {
    if (table->GetUsedType() == 1) {
      const auto words = table->Arrays().Words(0);
      tables.push_back({{"fixed", Json(std::vector<std::int32_t>(words.begin(), words.end()))}});
    } else {
      tables.push_back(LampPatterns(*table));
    }
  }
  return tables;
}

Json MasksPart(CProfileAccess& access) {
  Json part = Json::object();
  for (const std::uint32_t type : {CProfileDataEntry::kMaskDownload, CProfileDataEntry::kMaskDownloadIncludePattern}) {
    CProfileDataEntry* const entry = access.GetProfileData()->GetProfileDataEntryFromList(type);
    Json payload = entry != nullptr ? PayloadToJson(*entry) : Json(nullptr);
    if (!payload.is_null())
      part[type == CProfileDataEntry::kMaskDownload ? "blocks" : "conditions"] = std::move(payload);
  }
  return part.empty() ? Json(nullptr) : part;
}

Json Recommendations(CSpecialColorInfoDataEntry& table) {
  constexpr std::int32_t kHead = 4;
  constexpr std::int32_t kSlots = 5;  // words before the colours of a record
  const std::int32_t length = RecordLength(table.Arrays().Words(0).size(), kHead, table.GetPatternCount());
  const std::int32_t slots = length > 0 ? table.GetParameter(kHead + kSlots - 1, 0) : 0;
  Json patterns = Json::array();
  for (std::int32_t i = 0; length > 0 && i < table.GetPatternCount(); ++i) {
    const auto word = [&](std::int32_t number) { return table.GetParameter(kHead + i * length + number, 0); };
    Json colors = Json::array();
    for (std::int32_t j = kSlots; j < length && j - kSlots < slots; ++j) colors.push_back(word(j));
    patterns.push_back({{"conditions", {word(2), word(3)}},
                        {"colors", std::move(colors)},
                        {"level", table.SeekPatternRecommendLevel(i)},
                        {"density", table.SeekPatternRecommendDensity(i)},
                        {"curveSet", table.SeekPatternVDCurveIndex(i)}});
  }
  Json sets = Json::array();
  for (CCurveData* const set : table.CurvesVD()) sets.push_back(CurvesToReport(*set));
  return {{"patterns", std::move(patterns)}, {"curveSets", std::move(sets)}};
}

Json SpecialPart(CProfileAccess& access) {
  auto* const entry = Find<CSpecialColorInfoEntry>(access, CProfileDataEntry::kSpecialColorInfo);
  if (entry == nullptr || !entry->BufferToData()) return nullptr;
  CSpecialColorInfoData& data = *entry->GetSpecialColorInfoData();
  Json tables = Json::array();
  for (CSpecialColorInfoDataEntry* const table : data.Entries()) tables.push_back(Recommendations(*table));
  return {{"profileColorType", data.GetProfileColorType()}, {"tables", std::move(tables)}};
}

// --- colour -----------------------------------------------------------------------------------------------------

Json Channels(CLutData& table, CLutChannelInf* (CLutData::*at)(int)) {
  Json channels = Json::array();
  for (int i = 0; const CLutChannelInf* const channel = (table.*at)(i); ++i) {
    channels.push_back({{"ink", channel->GetChannelCode()}, {"name", Utf8(channel->GetChannelName())}});
  }
  return channels;
}

Json SeparationPart(CProfileAccess& access) {
  auto* const entry = Find<CSeparateChromaEntry>(access, CProfileDataEntry::kSeparateChroma);
  if (entry == nullptr || !entry->BufferToData()) return nullptr;
  CLutData& table = *entry->GetLutData();
  return {{"grid", table.GetGridCount()},
          {"inputs", Channels(table, &CLutData::GetAtInputChannelInf)},
          {"outputs", Channels(table, &CLutData::GetAtOutputChannelInf)},
          {"samples", ToBase64(table.GetRefBuffer(), table.GetLutDataSize())}};
}

Json IccParts(CProfileAccess& access) {
  Json parts = Json::array();
  for (CProfileDataEntry* const entry : AllEntries(access)) {
    if (entry->GetFormatType() != CProfileDataEntry::kFormatIcc) continue;
    Json part = IccPart(entry->Bytes());
    if (part.is_null()) continue;
    part["name"] = std::string(EntryName(entry->GetUsedType()));
    part["label"] = Utf8(entry->GetLabelString());
    parts.push_back(std::move(part));
  }
  return parts.empty() ? Json(nullptr) : parts;
}

// --- calibrations -----------------------------------------------------------------------------------------------

std::optional<std::int32_t> NewestCalibration(CProfileAccess& access) {
  CError error;
  std::int32_t code = -1;
  access.GetNewestCalibrationCode(code, &error);
  return code >= 0 ? std::optional(code) : std::nullopt;
}

std::vector<CContainerEntry*> CalibrationsIn(CProfileAccess& access) {
  CCalibrationHistoryEntry* const history = HistoryOf(*access.GetProfileData());
  return history != nullptr ? CalibrationsOf(*history) : std::vector<CContainerEntry*>();
}

// What is known of each, in the order of the history.
Json CalibrationsPart(CProfileAccess& access) {
  if (HistoryOf(*access.GetProfileData()) == nullptr) return nullptr;
  Json list = Json::array();
  for (CContainerEntry* const calibration : CalibrationsIn(access)) {
    const tag_ContainerData& description = *calibration->GetContainerData();
    list.push_back({{"code", calibration->GetOptionInfo()},
                    {"name", NameOf(*calibration)},
                    {"value", description.Value},
                    {"time", description.Time}});
  }
  const std::optional<std::int32_t> newest = NewestCalibration(access);
  return {{"newest", newest ? Json(*newest) : Json(nullptr)}, {"list", std::move(list)}};
}

// The curves of each, in the same order.
Json CalibrationCurvesPart(CProfileAccess& access) {
  Json list = Json::array();
  for (CContainerEntry* const calibration : CalibrationsIn(access)) {
    Json sets = Json::array();
    for (int i = 0; i < calibration->GetEntryCount(); ++i) {
      auto* const curves = dynamic_cast<CProfileCurveEntry*>(calibration->GetProfileDataEntry(i));
      if (curves != nullptr) sets.push_back(CurveSet(*curves));
    }
    list.push_back(std::move(sets));
  }
  return list.empty() ? Json(nullptr) : list;
}

Json ModelPart(CProfileAccess& access) {
  Json part = Json::object();
  for (const std::uint32_t type : {CProfileDataEntry::kModel, CProfileDataEntry::kInfo}) {
    CProfileDataEntry* const entry = access.GetProfileData()->GetProfileDataEntryFromList(type);
    const Json payload = entry != nullptr ? PayloadToJson(*entry) : Json(nullptr);
    for (const auto& [key, value] : payload.items()) {
      if (key != "reserveBuffer") part[key] = value;
    }
  }
  return part.empty() ? Json(nullptr) : part;
}

std::string PrinterOf(const _tagDeviceProfileInfo& info) {
  return info.LayoutNumber == kTextView ? Utf8(info.Text.Printer_Label) : WideToUtf8(info.PrinterComment);
}

std::string ModelOf(const _tagDeviceProfileInfo& info) {
  if (info.ModelCode[0] == 0) return {};
  return fmt::format("{}/{}/{}", WideToUtf8(info.ModelCode), WideToUtf8(info.ModelSubCode),
                     WideToUtf8(info.InternalCode));
}

std::string InkSetOf(const _tagDeviceProfileInfo& info) {
  if (info.LayoutNumber == kNoView) return {};
  if (info.LayoutNumber == kTextView) return Utf8(info.Text.InkSet_Label);
  return fmt::format("{}/{}/{}/{}", info.InkMakerCode, info.InkTypeCode, info.ColorsetCode, info.InkVersion);
}

std::string ResolutionOf(const _tagDeviceProfileInfo& info) {
  return info.ScanResolution != 0 ? fmt::format("{}x{}", info.ScanResolution, info.FeedResolution) : std::string();
}

}  // namespace

std::string FileNameOf(const std::string& path) { return path.substr(path.find_last_of("/\\") + 1); }

Json IndexLine(const std::string& path, CProfileAccess& access) {
  const _tagDeviceProfileInfo& info = *access.GetProfileInfo();
  Json line = {{"path", path},
               {"file", FileNameOf(path)},
               {"format", std::string(FormatName(access.GetProfileLoadFormat()))},
               {"media", WideToUtf8(info.MediaName)},
               {"printer", PrinterOf(info)},
               {"model", ModelOf(info)},
               {"inkSet", InkSetOf(info)},
               {"resolution", ResolutionOf(info)},
               {"version", fmt::format("{}.{}", info.ProfileMajorVersion, info.ProfileMinorVersion)},
               {"updated", info.UpdateTimeValue},
               {"calibrations", CalibrationsIn(access).size()}};
  const std::optional<std::int32_t> newest = NewestCalibration(access);
  for (CContainerEntry* const calibration : CalibrationsIn(access)) {
    if (!newest || calibration->GetOptionInfo() != static_cast<std::uint32_t>(*newest)) continue;
    line["calibration"] = NameOf(*calibration);
    line["calibrated"] = calibration->GetContainerData()->Time;
  }
  return line;
}

std::vector<ProfilePart> PartsOf(CProfileAccess& access) {
  std::vector<ProfilePart> parts;
  const auto add = [&parts](const char* key, Json content) {
    if (!content.is_null()) parts.push_back({key, std::move(content)});
  };
  add("record", RecordToJson(*access.GetProfileInfo()));
  add("entries", EntriesPart(access));
  add("model", ModelPart(access));
  add("calibrations", CalibrationsPart(access));
  add("media", MediaPart(access));
  add("curves", CurvesPart(access));
  add("special", SpecialPart(access));
  add("icc", IccParts(access));
  add("lamp", LampPart(access));
  add("masks", MasksPart(access));
  add("calibrationCurves", CalibrationCurvesPart(access));
  add("separation", SeparationPart(access));
  return parts;
}

}  // namespace nvx::tool
