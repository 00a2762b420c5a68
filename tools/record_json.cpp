#include "record_json.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <string>
#include <type_traits>

namespace nvx::tool {
namespace {

// Calls field(name, reference) for each plain field of the record, in its order.
template <class Info, class Field>
void ForEachField(Info& info, Field field) {
  field("FileName", info.FileName);
  field("ModelCode", info.ModelCode);
  field("ModelSubCode", info.ModelSubCode);
  field("InternalCode", info.InternalCode);
  field("ScanResolution", info.ScanResolution);
  field("FeedResolution", info.FeedResolution);
  field("RenderingScan", info.RenderingScan);
  field("RenderingFeed", info.RenderingFeed);
  field("Expand", info.Expand);
  field("ColorsetCode", info.ColorsetCode);
  field("InkTypeCode", info.InkTypeCode);
  field("DotType", info.DotType);
  field("InkMakerCode", info.InkMakerCode);
  field("InkVersion", info.InkVersion);
  field("MediaCode", info.MediaCode);
  field("MediaName", info.MediaName);
  field("RevisionCode", info.RevisionCode);
  field("DatabaseKey", info.DatabaseKey);
  field("HalftoneCode", info.HalftoneCode);
  field("SeparateWayCode", info.SeparateWayCode);
  field("ProfileMajorVersion", info.ProfileMajorVersion);
  field("ProfileMinorVersion", info.ProfileMinorVersion);
  field("PrinterComment", info.PrinterComment);
  field("CreateTime", info.CreateTime);
  field("CreateTimeValue", info.CreateTimeValue);
  field("UpdateTime", info.UpdateTime);
  field("UpdateTimeValue", info.UpdateTimeValue);
  field("LayoutNumber", info.LayoutNumber);
  field("Unused", info.Unused);
  field("HasMaskDownload", info.HasMaskDownload);
  field("HasOutputBlock", info.HasOutputBlock);
  field("HasLargeParameter", info.HasLargeParameter);
  field("HasSpecialColor", info.HasSpecialColor);
  field("WaveFormParam", info.WaveFormParam);
  field("OutputFourthValue", info.OutputFourthValue);
  field("OutputCodeA", info.OutputCodeA);
  field("OutputCodeB", info.OutputCodeB);
  field("OutputThirdValue", info.OutputThirdValue);
  field("OutputText", info.OutputText);
  field("SaveVersion5", info.SaveVersion5);
  field("ListKeys", info.ListKeys);
  field("FullPath", info.FullPath);
}

template <class View, class Field>
void ForEachTextField(View& view, Field field) {
  field("Printer_Label", view.Printer_Label);
  field("InkSet_Label", view.InkSet_Label);
  field("Media_Code", view.Media_Code);
  field("Media_Label", view.Media_Label);
  field("Media_Eng", view.Media_Eng);
  field("Media_Jpn", view.Media_Jpn);
  field("Dpi_Code", view.Dpi_Code);
  field("Pass_Support", view.Pass_Support);
  field("Pass_Code", view.Pass_Code);
}

template <class View, class Field>
void ForEachBinaryField(View& view, Field field) {
  field("ModelNumber", view.ModelNumber);
  field("ModelSubNumber", view.ModelSubNumber);
  field("InternalNumber", view.InternalNumber);
  field("MediaNumber", view.MediaNumber);
  field("DefaultMediaName", view.DefaultMediaName);
  field("CreateModule", view.CreateModule);
  field("MakerText", view.MakerText);
  field("StoredRevisionCode", view.StoredRevisionCode);
}

template <class Time, class Field>
void ForEachTimeField(Time& time, Field field) {
  field("wYear", time.wYear);
  field("wMonth", time.wMonth);
  field("wDayOfWeek", time.wDayOfWeek);
  field("wDay", time.wDay);
  field("wHour", time.wHour);
  field("wMinute", time.wMinute);
  field("wSecond", time.wSecond);
  field("wMilliseconds", time.wMilliseconds);
}

template <class Char, std::size_t N>
std::basic_string<Char> TextOf(const Char (&text)[N]) {
  return {text, std::find(text, text + N, Char{})};
}

template <class T>
Json ToJson(const T& value) {
  return value;
}
template <std::size_t N>
Json ToJson(const char16_t (&text)[N]) {
  return WideToJson(TextOf(text));
}
template <std::size_t N>
Json ToJson(const char (&text)[N]) {
  return NarrowToJson(TextOf(text));
}
template <class T, std::size_t N>
Json ToJson(const T (&values)[N]) {
  Json list = Json::array();
  for (const T& value : values) list.push_back(ToJson(value));
  return list;
}
Json ToJson(const SYSTEMTIME& time) {
  Json json;
  ForEachTimeField(time, [&](const char* name, std::uint16_t value) { json[name] = value; });
  return json;
}

template <class T>
void FromJson(const Node& node, T& value) {
  using Limits = std::numeric_limits<T>;
  value =
      static_cast<T>(node.Integer(static_cast<std::int64_t>(Limits::min()), static_cast<std::int64_t>(Limits::max())));
}
void FromJson(const Node& node, bool& value) { value = node.Bool(); }
template <class Char, std::size_t N>
void TextFromJson(const std::basic_string<Char>& text, Char (&target)[N]) {
  std::fill(std::copy(text.begin(), text.end(), target), target + N, Char{});
}
template <std::size_t N>
void FromJson(const Node& node, char16_t (&text)[N]) {
  TextFromJson(WideFromJson(node, N - 1), text);
}
template <std::size_t N>
void FromJson(const Node& node, char (&text)[N]) {
  TextFromJson(NarrowFromJson(node, N - 1), text);
}
template <class T, std::size_t N>
void FromJson(const Node& node, T (&values)[N]) {
  const std::vector<Node> items = node.Items();
  if (items.size() > N) node.Fail("the list is longer than " + std::to_string(N));
  for (std::size_t i = 0; i < items.size(); ++i) FromJson(items[i], values[i]);
}
void FromJson(const Node& node, SYSTEMTIME& time) {
  ForEachTimeField(time, [&](const char* name, std::uint16_t& value) {
    if (node.Has(name)) FromJson(node.At(name), value);
  });
}

auto Filling(const Node& node) {
  return [&node](const char* name, auto& field) {
    if (node.Has(name)) FromJson(node.At(name), field);
  };
}

void MediaInfoFromJson(const Node& node, CProfileData& data) {
  const std::vector<Node> items = node.Items();
  std::vector<tagMedia> media(items.size());
  for (std::size_t i = 0; i < items.size(); ++i) {
    FromJson(items[i].At("Language"), media[i].Language);
    FromJson(items[i].At("Name"), media[i].Name);
  }
  data.SetMediaInfo(media);
}

}  // namespace

Json RecordToJson(const _tagDeviceProfileInfo& info) {
  Json json;
  ForEachField(info, [&](const char* name, const auto& value) { json[name] = ToJson(value); });
  if (info.LayoutNumber == 1) {
    Json& view = json["Text"];
    ForEachTextField(info.Text, [&](const char* name, const auto& value) { view[name] = ToJson(value); });
  }
  if (info.LayoutNumber == 3) {
    Json& view = json["Binary"];
    ForEachBinaryField(info.Binary, [&](const char* name, const auto& value) { view[name] = ToJson(value); });
    Json media = Json::array();
    for (std::uint32_t i = 0; info.Binary.MediaInfo != nullptr && i < info.Binary.MediaInfoCount; ++i) {
      const tagMedia& item = info.Binary.MediaInfo[i];
      media.push_back({{"Language", item.Language}, {"Name", ToJson(item.Name)}});
    }
    view["MediaInfo"] = std::move(media);
  }
  return json;
}

void RecordFromJson(const Node& node, CProfileData& data) {
  _tagDeviceProfileInfo& info = *data.GetProfileInfo();
  ForEachField(info, Filling(node));
  if (info.LayoutNumber == 1 && node.Has("Text")) ForEachTextField(info.Text, Filling(node.At("Text")));
  if (info.LayoutNumber == 3 && node.Has("Binary")) {
    const Node view = node.At("Binary");
    ForEachBinaryField(info.Binary, Filling(view));
    if (view.Has("MediaInfo")) MediaInfoFromJson(view.At("MediaInfo"), data);
  }
}

}  // namespace nvx::tool
