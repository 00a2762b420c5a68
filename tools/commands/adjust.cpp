// nvxprofile adjust: what a reader takes from an adjust file, and what it drops or bends on the way.
#include "command.h"
#include "files.h"
#include "loading.h"
#include "terminal.h"

#include <nvxprofile/adjust_file.h>
#include <nvxprofile/adjust_inspection.h>
#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>

#include <array>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace nvx::tool {
namespace {

const std::map<std::string, AdjustKind> kKinds = {{"color", AdjustKind::kColor},
                                                  {"color-v3", AdjustKind::kColorV3},
                                                  {"device", AdjustKind::kDevice},
                                                  {"special", AdjustKind::kSpecial}};

struct AdjustOptions {
  std::string file;
  std::optional<AdjustKind> kind;
  bool json = false;
};

std::string KindName(AdjustKind kind) {
  for (const auto& [name, value] : kKinds) {
    if (value == kind) return name;
  }
  return {};
}

std::string Utf8(const std::string& ansi) { return WideToUtf8(AnsiToWide(ansi)); }

// What one reader gave: its values, and the curves that the file has, each under its key.
struct Reading {
  bool whole = false;  // the reader has all that it requires
  CError error;        // why it has not
  Json values = Json::object();
  Json curves = Json::object();
};

template <class Sample, class Get>
void AddCurve(Reading& reading, const std::string& key, Get get) {
  std::array<Sample, 256> samples{};
  CError error;
  if (get(samples.data(), error)) reading.curves[Utf8(key)] = samples;
}

template <class Param>
Json DensityToJson(const Param& param) {
  return {{"contrast", param.Contrast},       {"cyan", param.Cyan},
          {"cyanType", param.CyanType},       {"magenta", param.Magenta},
          {"magentaType", param.MagentaType}, {"yellow", param.Yellow},
          {"yellowType", param.YellowType},   {"black", param.Black},
          {"inkRatio", param.InkRatio},       {"kCurve", Json(param.KCurve)},
          {"mixCurve", Json(param.MixCurve)}};
}

template <class File, class Data>
void ReadColorValues(File& file, Data&& data, Reading& reading) {
  reading.whole = file.GetColorAdjustData(&data, reading.error);
  reading.values = {{"profileCode", data.ProfileCode},
                    {"totalDensity", data.TotalDensity},
                    {"v", DensityToJson(data.V)},
                    {"r", DensityToJson(data.R)}};
}

void ReadColor(CColorAdjustFile& file, const AdjustInspection& inspection, Reading& reading) {
  ReadColorValues(file, COLOR_ADJUST(), reading);
  for (const AdjustKey& key : inspection.keys) {
    if (!key.ink) continue;
    AddCurve<std::uint8_t>(reading, key.key, [&](std::uint8_t* curve, CError& error) {
      return key.name == "GrayCurve_" ? file.GetGrayBalanceCurve(curve, *key.ink, error)
                                      : file.GetInkLimitCurve(curve, *key.ink, error);
    });
  }
}

void ReadColorV3(CColorAdjustFileV3& file, const AdjustInspection& inspection, Reading& reading) {
  ReadColorValues(file, COLOR_ADJUST_V3(), reading);
  for (const AdjustKey& key : inspection.keys) {
    if (!key.ink) continue;
    AddCurve<std::uint16_t>(reading, key.key, [&](std::uint16_t* curve, CError& error) {
      return key.index ? file.GetMultiInkLimitCurve(curve, *key.ink, *key.index, error)
                       : file.GetLinearizationCurve(curve, *key.ink, error);
    });
  }
}

void ReadDevice(CDeviceAdjustFile& file, const AdjustInspection&, Reading& reading) {
  DEVICE_ADJUST_PARAM param;
  reading.whole = file.GetDeviceAdjustParam(&param, reading.error);
  const auto pair = [](int whichUse, int value) { return Json{{"whichUse", whichUse}, {"value", value}}; };
  reading.values = {{"feedAdjust", pair(param.FeedAdjustWhichUse, param.FeedAdjustValue)},
                    {"heater1", pair(param.Heater1WhichUse, param.Heater1Value)},
                    {"heater2", pair(param.Heater2WhichUse, param.Heater2Value)},
                    {"heater3", pair(param.Heater3WhichUse, param.Heater3Value)},
                    {"heater4", pair(param.Heater4WhichUse, param.Heater4Value)},
                    {"mediaFeedSpeed", pair(param.MediaFeedSpeedWhichUse, param.MediaFeedSpeedValue)},
                    {"uvMode", pair(param.UvModeWhichUse, param.UvModeValue)}};
}

// The dot size for which a reader takes the curves of that name.
std::uint32_t DotSizeOf(const std::string& name) {
  if (name == "VD01Curve_") return 3;
  return name == "VD02Curve_" ? 4 : 0;
}

void ReadSpecial(CSpecialColorAdjustFile& file, const AdjustInspection& inspection, Reading& reading) {
  SPECIAL_COLOR_ADJUST data;
  CError ignored;
  reading.whole = file.GetColorAdjustData(&data, reading.error);
  if (reading.whole) file.GetSpecialDensity(&data, ignored);
  Json inks = Json::array();
  for (int i = 0; reading.whole && i < data.InkCount; ++i) {
    const int code = data.Inks[i].InkCode;
    inks.push_back(
        {{"inkCode", code}, {"density", data.Inks[i].Density}, {"vdApplyWay", file.GetVDApplyWay(code, ignored)}});
  }
  reading.values = {{"inkset", data.Inkset}, {"inkCount", data.InkCount}, {"inks", std::move(inks)}};
  for (const AdjustKey& key : inspection.keys) {
    if (key.form != AdjustForm::kCurve16) continue;
    AddCurve<std::uint16_t>(reading, key.key, [&](std::uint16_t* curve, CError& error) {
      return key.name == "LimitCurve_" ? file.GetInkLimitCurve(curve, *key.ink, error)
                                       : file.GetVariableCurve(*key.ink, DotSizeOf(key.name), curve, error);
    });
  }
}

template <class File, class Read>
Reading ReadWith(const std::u16string& path, const AdjustInspection& inspection, Read read) {
  Reading reading;
  File file;
  if (file.Initialize(path.c_str(), reading.error)) read(file, inspection, reading);
  return reading;
}

Reading Read(AdjustKind kind, const std::u16string& path, const AdjustInspection& inspection) {
  switch (kind) {
    case AdjustKind::kColor:
      return ReadWith<CColorAdjustFile>(path, inspection, ReadColor);
    case AdjustKind::kColorV3:
      return ReadWith<CColorAdjustFileV3>(path, inspection, ReadColorV3);
    case AdjustKind::kDevice:
      return ReadWith<CDeviceAdjustFile>(path, inspection, ReadDevice);
    case AdjustKind::kSpecial:
      return ReadWith<CSpecialColorAdjustFile>(path, inspection, ReadSpecial);
  }
  return {};
}

bool IsCurve(const Json& value) { return value.is_array() && value.size() == 256; }

// One row for each number, under the names that lead to it.
void AddValues(Table& table, const std::string& name, const Json& value) {
  if (!value.is_structured()) {
    table.Add({name, value.dump()});
    return;
  }
  if (IsCurve(value)) return;
  const std::string start = name.empty() ? name : name + ".";
  for (const auto& item : value.items()) AddValues(table, start + item.key(), item.value());
}

void AddCurves(Table& table, const std::string& name, const Json& value) {
  if (IsCurve(value)) {
    table.Add({name, value[0].dump(), value[128].dump(), value[255].dump()});
  } else if (value.is_object()) {
    const std::string start = name.empty() ? name : name + ".";
    for (const auto& item : value.items()) AddCurves(table, start + item.key(), item.value());
  }
}

void PrintRemarks(const AdjustInspection& inspection) {
  if (inspection.remarks.empty()) return;
  PrintLine();
  PrintLine(Styled(Style::kWarning, "remarks"));
  Table table({{"line", Table::Align::kRight}, {"key"}, {"remark"}});
  for (const AdjustRemark& remark : inspection.remarks) {
    table.Add({std::to_string(remark.line), Utf8(remark.key), Utf8(remark.text)});
  }
  table.Print(2);
}

void Print(const std::string& file, AdjustKind kind, const Reading& reading, const AdjustInspection& inspection) {
  using enum Table::Align;
  PrintLine(Styled(Style::kHeading, file) + ": adjust file, kind " + KindName(kind));
  Table values({{"value"}, {"", kRight}});
  AddValues(values, "", reading.values);
  values.Print(2);
  Table curves({{"curve"}, {"first", kRight}, {"middle", kRight}, {"last", kRight}});
  AddCurves(curves, "", reading.values);
  AddCurves(curves, "", reading.curves);
  if (!curves.IsEmpty()) {
    PrintLine();
    curves.Print(2);
  }
  PrintRemarks(inspection);
}

Json ToJson(const std::string& file, const Reading& reading, const AdjustInspection& inspection) {
  Json remarks = Json::array();
  for (const AdjustRemark& remark : inspection.remarks) {
    remarks.push_back({{"line", remark.line}, {"key", Utf8(remark.key)}, {"text", Utf8(remark.text)}});
  }
  Json json = {{"file", file}};
  json["kind"] = inspection.kind ? Json(KindName(*inspection.kind)) : Json(nullptr);
  json["whole"] = reading.whole;
  json["values"] = reading.values;
  json["curves"] = reading.curves;
  json["remarks"] = std::move(remarks);
  return json;
}

int Run(const AdjustOptions& options) {
  const InputFile input(options.file);
  if (!input.Failure().empty()) {
    PrintErrorOf(options.file, input.Failure());
    return kFailure;
  }
  const std::u16string& path = input.Path();
  CError error;
  const std::optional<AdjustInspection> inspection = InspectAdjustFile(path.c_str(), options.kind, error);
  if (!inspection) {
    PrintErrorOf(options.file, MessageOf(error));
    return kFailure;
  }
  Reading reading;
  if (inspection->kind) reading = Read(*inspection->kind, path, *inspection);
  if (options.json) {
    PrintJson(ToJson(options.file, reading, *inspection));
  } else if (inspection->kind) {
    Print(options.file, *inspection->kind, reading, *inspection);
  } else {
    PrintRemarks(*inspection);
  }
  if (reading.whole) return kSuccess;
  PrintErrorOf(options.file, inspection->kind ? MessageOf(reading.error) : "no reader of adjust files reads any key");
  return kFailure;
}

}  // namespace

void AddAdjustCommand(CommandLine& line) {
  Command command = line.AddCommand("adjust", "Show what a reader takes from an adjust file, and what it drops");
  const auto options = std::make_shared<AdjustOptions>();
  command.Add("FILE", &options->file, "A colour, device or special colour adjust file").Required();
  command.AddWords("--kind", options->kind, kKinds, "Read it as this kind, and not as its keys suggest");
  command.AddFlag("--json", options->json, "Write a JSON document");
  command.Example("nvxprofile adjust color.txt");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
