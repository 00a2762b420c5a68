// nvxprofile media: the device settings of the medium that a profile is made for.
#include "command.h"
#include "loading.h"
#include "terminal.h"

#include <nvxprofile/media_property.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

struct MediaOptions {
  std::string file;
  bool json = false;
};

struct Setting {
  std::uint32_t usedType;
  const char* key;
  const char* name;
};

constexpr std::array<Setting, 11> kSettings{{
    {kMediaCorrect, "mediaCorrect", "media correction"},
    {kMediaHeater, "heaterTemperature", "heater temperatures"},
    {kMediaWave, "waveParam", "wave"},
    {kMediaFeedSpeed, "mediaFeedSpeed", "media feed speed"},
    {kMediaWaveForm, "waveFormParam", "wave form"},
    {kMediaDotSize, "dotSize", "dot sizes"},
    {kMediaPassDensity, "passDensity", "pass density"},
    {kMediaPassMask, "maskParameters", "pass mask parameters"},
    {kMediaUvMode, "uvModeRecommend", "UV mode"},
    {kMediaTopBlower, "topBlowerParam", "top blower"},
    {kMediaFeedDirection, "feedDirectionParam", "feed direction"},
}};

const Setting* Find(std::uint32_t usedType) {
  for (const Setting& setting : kSettings) {
    if (setting.usedType == usedType) return &setting;
  }
  return nullptr;
}

std::vector<std::int32_t> ValuesOf(CMediaPropertyDataEntry& block) {
  return {block.GetRefBuffer(), block.GetRefBuffer() + block.GetParameterMax()};
}

Json SettingsToJson(CMediaPropertyData& data) {
  Json settings = Json::object();
  for (const Setting& setting : kSettings) {
    if (CMediaPropertyDataEntry* const block = data.Find(setting.usedType)) settings[setting.key] = ValuesOf(*block);
  }
  return settings;
}

void PrintSettings(CMediaPropertyData& data) {
  Table table({{"setting"}, {"type", Table::Align::kRight}, {"values"}});
  bool more = data.GetHeadPosition();
  while (more) {
    CMediaPropertyDataEntry& block = *data.GetNext(more);
    const Setting* const setting = Find(block.GetUsedType());
    table.Add({setting != nullptr ? setting->name : "unknown", std::to_string(block.GetUsedType()),
               fmt::format("{}", fmt::join(ValuesOf(block), " "))});
  }
  table.Print();
}

int Run(const MediaOptions& options) {
  CProfileAccess access;
  if (!LoadProfile(options.file, access)) return kFailure;
  auto* const entry = dynamic_cast<CMediaPropertyEntry*>(
      access.GetProfileData()->GetProfileDataEntryFromList(CProfileDataEntry::kMediaProperty));
  if (entry == nullptr) {
    // The library has the words.
    CError error;
    std::int32_t value = 0;
    access.GetMediaCorrect(value, &error);
    PrintErrorOf(options.file, MessageOf(error));
    return kFailure;
  }
  if (!entry->BufferToData()) {
    PrintErrorOf(options.file, "the media property set of the profile cannot be read");
    return kFailure;
  }
  if (options.json) {
    PrintJson({{"file", options.file},
               {"settings", SettingsToJson(*entry->GetMediaPropertyData())},
               {"payload", PayloadToJson(*entry)}});
  } else {
    PrintSettings(*entry->GetMediaPropertyData());
  }
  return kSuccess;
}

}  // namespace

void AddMediaCommand(CommandLine& line) {
  Command command = line.AddCommand("media", "List heater, feed, wave, dot, UV and blower settings");
  const auto options = std::make_shared<MediaOptions>();
  command.Add("FILE", &options->file, "Profile of any format").Required();
  command.AddFlag("--json", options->json, "Write a JSON document");
  command.Example("nvxprofile media glossy.icc");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
