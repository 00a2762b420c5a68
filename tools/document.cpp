#include "document.h"

#include "console.h"
#include "files.h"
#include "loading.h"
#include "paths.h"
#include "record_json.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/icc_header.h>
#include <nvxprofile/icm_entry.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/profile_file_icc.h>
#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/profile_file_text.h>
#include <nvxprofile/text_conversion.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <utility>

namespace nvx::tool {
namespace {

using EntryPointer = std::unique_ptr<CProfileDataEntry>;
using Bytes = std::vector<std::uint8_t>;

struct FormatKey {
  int format;
  const char* key;
};

// Names of the formats in documents.
constexpr std::array<FormatKey, 5> kFormats{
    {{1, "container"}, {2, "text-1"}, {3, "text-2"}, {4, "printer-profile"}, {6, "icc"}}};

EntryPointer MakeEntry(std::uint32_t usedType) {
  return EntryPointer(CProfileDataEntry::CreateDataEntry(static_cast<CProfileDataEntry::UsedType>(usedType)));
}

Bytes BytesOf(CProfileDataEntry& entry) {
  const std::uint8_t* const bytes = entry.GetRefBuffer();
  return bytes != nullptr ? Bytes(bytes, bytes + entry.GetSize()) : Bytes();
}

void SetBytes(CProfileDataEntry& entry, const Bytes& bytes) {
  std::uint8_t* const buffer = entry.GetBuffer(static_cast<std::uint32_t>(bytes.size()));
  if (buffer != nullptr) std::memcpy(buffer, bytes.data(), bytes.size());
  entry.BufferToData();
}

bool IsIcc(CProfileDataEntry& entry) { return entry.GetFormatType() == CProfileDataEntry::kFormatIcc; }

std::string WriteIccFile(CProfileDataEntry& entry, const std::string& folder) {
  const std::string name = std::string(EntryName(entry.GetUsedType())) + ".icc";
  // With a slash, which every system takes: documents travel.
  const std::string path = folder + (folder.ends_with('/') || folder.ends_with('\\') ? "" : "/") + name;
  WriteOutput(path, {entry.GetRefBuffer(), entry.GetSize()});
  return path;
}

Json EntryToJson(CProfileDataEntry& entry, const std::string& filesFolder) {
  Json json = {{"usedType", entry.GetUsedType()},
               {"type", std::string(EntryName(entry.GetUsedType()))},
               {"class", std::string(ClassName(entry.GetUsedType()))},
               {"complete", entry.IsComplete()},
               {"optionInfo", entry.GetOptionInfo()},
               {"label", NarrowToJson(entry.GetLabelString())}};
  if (IsIcc(entry) && !filesFolder.empty()) {
    json["file"] = WriteIccFile(entry, filesFolder);
    return json;
  }
  Json payload = IsIcc(entry) ? Json(nullptr) : PayloadToJson(entry);
  std::size_t padding = 0;
  const bool rebuilds = !payload.is_null() && RebuildsEntry(payload, entry, padding);
  if (!payload.is_null()) json["payload"] = std::move(payload);
  // Bytes stand where no payload says it all; a build takes them and leaves the payload alone.
  if (!rebuilds) json["bytes"] = ToBase64(entry.GetRefBuffer(), entry.GetSize());
  return json;
}

// A document comes from anywhere: what it names must be a file, not a device that never ends.
Bytes ReadFile(const Node& node, const std::string& folder) {
  const std::filesystem::path path = PathOf(folder) / PathOf(node.Text(4096));
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) node.Fail(TextOf(path) + " is no file");
  std::ifstream file(path, std::ios::binary);
  if (!file) node.Fail("the file " + TextOf(path) + " cannot be opened");
  return Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

EntryPointer EntryFromJson(const Node& node, const std::string& folder) {
  const std::uint32_t usedType = UsedTypeFromJson(node);
  EntryPointer entry = MakeEntry(usedType);
  if (!entry) node.Fail("no entry class has the used type " + std::to_string(usedType));
  if (node.Has("file")) {
    SetBytes(*entry, ReadFile(node.At("file"), folder));
    node.PassOver("payload");
  } else if (node.Has("bytes")) {
    SetBytes(*entry, node.At("bytes").Base64());
    node.PassOver("payload");
  } else if (node.Has("payload")) {
    PayloadFromJson(node.At("payload"), *entry);
  }
  if (IsIcc(*entry) && entry->GetSize() == 0) node.Fail("an ICC entry needs a \"file\" or \"bytes\"");
  entry->SetComplete(!node.Has("complete") || node.At("complete").Bool());
  if (node.Has("optionInfo")) entry->SetOptionInfo(node.At("optionInfo").U32());
  if (node.Has("label")) {
    entry->SetLabelString(NarrowFromJson(node.At("label"), CProfileDataEntry::kLabelLength - 1).c_str());
  }
  return entry;
}

// Where an entry stands when the document does not say: the routes that loads of the format give it.
std::uint32_t DefaultRoute(int format, std::uint32_t usedType) {
  if (format != 4) return kRouteIccRoot;
  switch (usedType) {
    case CProfileDataEntry::kReplaceProfile:
      return kRouteReplaceProfile;
    case CProfileDataEntry::kCalibrationHistory:
      return kRouteCalibration;
    case CProfileDataEntry::kMaskDownload:
    case CProfileDataEntry::kMaskDownloadIncludePattern:
      return kRouteMaskDownload;
    case CProfileDataEntry::kLargeParameter:
      return kRouteLargeParameter;
    case CProfileDataEntry::kSpecialColorInfo:
      return kRouteSpecialColor;
    default:
      return kRouteMain;
  }
}

void CheckTypesAreUnique(const std::vector<Node>& nodes, const std::vector<EntryPointer>& entries) {
  std::set<std::uint32_t> types;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (!types.insert(entries[i]->GetUsedType()).second) nodes[i].Fail("a profile holds one entry of a used type");
  }
}

// The model takes entries over in the order of the document, whatever the order of the routes.
void PlaceEntries(const Node& document, std::vector<EntryPointer> entries, int format, CProfileData& data) {
  std::vector<CProfileDataEntry*> placed;
  for (const EntryPointer& entry : entries) placed.push_back(entry.get());
  if (!document.Has("routes")) {
    for (EntryPointer& entry : entries) {
      const std::uint32_t route = DefaultRoute(format, entry->GetUsedType());
      data.SetProfileDataEntry(entry.release(), route);
    }
    return;
  }
  for (const Node& route : document.At("routes").Items()) {
    const std::uint32_t number = route.At("route").U32();
    for (const Node& item : route.At("entries").Items()) {
      if (placed.empty()) item.Fail("there are no entries");
      const auto index = static_cast<std::size_t>(item.Integer(0, static_cast<std::int64_t>(placed.size()) - 1));
      entries[index].release();
      data.SetProfileDataEntry(placed[index], number);
    }
  }
}

// Flags that a save of the current generation goes by follow the routes, unless the document says otherwise.
void SetFlagsByRoutes(const Node& document, CProfileData& data) {
  _tagDeviceProfileInfo& info = *data.GetProfileInfo();
  const auto stated = [&](const char* key) { return document.Has("record") && document.At("record").Has(key); };
  if (!stated("HasMaskDownload")) info.HasMaskDownload = data.IsSpecifiedRoute(kRouteMaskDownload);
  if (!stated("HasLargeParameter")) info.HasLargeParameter = data.IsSpecifiedRoute(kRouteLargeParameter);
  if (!stated("HasSpecialColor")) info.HasSpecialColor = data.IsSpecifiedRoute(kRouteSpecialColor);
}

// The time that the save shall take for the present, so that the record comes back as the document has it.
void SetClock(const _tagDeviceProfileInfo& info) {
  if (std::getenv("SOURCE_DATE_EPOCH") != nullptr) return;
  std::int64_t seconds = info.UpdateTimeValue;
  if (info.LayoutNumber == 1 && info.CreateTime.wYear >= 1970) {
    std::tm parts{};
    parts.tm_year = info.CreateTime.wYear - 1900;
    parts.tm_mon = info.CreateTime.wMonth - 1;
    parts.tm_mday = info.CreateTime.wDay;
    parts.tm_hour = info.CreateTime.wHour;
    parts.tm_min = info.CreateTime.wMinute;
    parts.tm_sec = info.CreateTime.wSecond;
    parts.tm_isdst = -1;
    seconds = std::mktime(&parts);
  }
  if (seconds > 0) SetVariable("SOURCE_DATE_EPOCH", std::to_string(seconds));
}

int FormatFromJson(const Node& node) {
  const std::string key = node.Text(64);
  for (const FormatKey& format : kFormats) {
    if (format.key == key) return format.format;
  }
  std::string keys;
  for (const FormatKey& format : kFormats) keys += std::string(keys.empty() ? "" : ", ") + format.key;
  node.Fail("the format must be one of " + keys);
}

// The numbers of the model beside the record, as far as the format has a place for them.
void SetModelNumbers(const Node& document, int format, CProfileData& data) {
  const auto number = [&](const char* key, bool isKept) {
    const std::uint32_t value = document.U32Or(key, 0);
    if (value != 0 && !isKept) document.At(key).Fail("files of this format do not keep it");
    return value;
  };
  const bool isContainer = format == 1 || format == 2 || format == 3;
  data.SetTargetType(number("targetType", isContainer));
  data.SetDeviceType(number("deviceType", isContainer));
  data.SetProcessDataType(number("processDataType", false));
}

bool SavePlainIcc(CProfileData& data, const std::u16string& path) {
  auto* const entry = dynamic_cast<CICMEntry*>(data.GetProfileDataEntry(kRouteIccRoot, CProfileDataEntry::kIcm));
  std::uint32_t error = 0;
  return entry != nullptr && entry->Save(path.c_str(), error);
}

bool SaveContainer(const Node& document, CProfileData& data, const std::u16string& path) {
  const std::vector<CProfileRoute*> routes = RoutesOf(data);
  if (routes.size() != 1) document.Fail("a container holds the entries of exactly one route");
  return CProfileFileQCT().SaveData(path.c_str(), &data, routes[0]->GetRouteType());
}

bool SaveAs(int format, const Node& document, CProfileData& data, const std::u16string& path) {
  switch (format) {
    case 1:
      return SaveContainer(document, data, path);
    case 2: {
      const std::vector<CProfileRoute*> routes = RoutesOf(data);
      if (routes.empty()) document.Fail("the profile has no route");
      return CProfileFileQPFv1().SaveData(path.c_str(), &data, routes[0]->GetRouteType());
    }
    case 3:
      return CProfileFileQPFv2().SaveData(path.c_str(), &data, 0);
    case 4:
      SetFlagsByRoutes(document, data);
      return CProfileFileQPFv3().SaveData(path.c_str(), &data, kRouteMain | kRouteReplaceProfile | kRouteCalibration);
    default:
      return SavePlainIcc(data, path);
  }
}

const char* PlaceOfIcc(int format) { return format == 4 ? "route 4" : "route 1"; }

// What keeps the model from being saved.
[[noreturn]] void ExplainFailure(const Node& document, int format, CProfileData& data) {
  const _tagDeviceProfileInfo& info = *data.GetProfileInfo();
  const Node entries = document.At("entries");
  if (format == 4 || format == 6) {
    const std::uint32_t route = format == 4 ? kRouteMain : kRouteIccRoot;
    CProfileDataEntry* const icc = data.GetProfileDataEntry(route, CProfileDataEntry::kIcm);
    if (icc == nullptr) entries.Fail(std::string("there must be an entry \"icc\" on ") + PlaceOfIcc(format));
    Diagnosis diagnosis;
    IccDirectory directory;
    if (!ReadIccDirectory(icc->GetRefBuffer(), icc->GetSize(), directory, &diagnosis) && diagnosis.HasErrors()) {
      entries.Fail("the entry \"icc\" is no ICC profile: " + diagnosis.Findings().front().rule);
    }
  }
  const auto needs = [&](bool flag, std::uint32_t route, const char* key) {
    if (format != 4 || !flag || data.IsSpecifiedRoute(route)) return;
    throw DocumentError(std::string("/record/") + key, "there is no entry on route " + std::to_string(route));
  };
  needs(info.HasMaskDownload, kRouteMaskDownload, "HasMaskDownload");
  needs(info.HasLargeParameter, kRouteLargeParameter, "HasLargeParameter");
  needs(info.HasSpecialColor, kRouteSpecialColor, "HasSpecialColor");
  if (format == 3 && !(data.IsSpecifiedRoute(kRouteIccRoot) && data.IsSpecifiedRoute(kRouteGrayBalance))) {
    entries.Fail("the routes 1 and 2 must both have entries");
  }
  if (format == 2 || format == 3) document.Fail("a text of the record has a line end or is too long for its line");
  document.Fail("the profile cannot be saved as the document says, or the temporary folder is full");
}

// Fields of the record that a save or a load works out anew, and those that callers alone look at.
bool IsWorkedOut(const std::string& field) {
  static const std::set<std::string> kFields{
      "FileName",       "FullPath",        "ProfileMajorVersion", "ProfileMinorVersion", "RenderingScan",
      "RenderingFeed",  "CreateTime",      "UpdateTime",          "UpdateTimeValue",     "HasMaskDownload",
      "HasOutputBlock", "HasSpecialColor", "HasLargeParameter",   "WaveFormParam",       "OutputFourthValue",
      "OutputCodeA",    "OutputCodeB",     "OutputText",          "SaveVersion5",        "SeparateWayCode"};
  return kFields.contains(field);
}

// The name of the medium depends on the reader's language: each name of the record is right.
bool IsNameOfRecord(const Json& name, const Json& record) {
  const Json text = record.value("Text", Json::object());
  for (const char* const key : {"Media_Label", "Media_Eng", "Media_Jpn"}) {
    if (text.value(key, Json()) == name) return true;
  }
  const Json binary = record.value("Binary", Json::object());
  const Json list = binary.value("MediaInfo", Json::array());
  return binary.value("DefaultMediaName", Json()) == name ||
         std::any_of(list.begin(), list.end(), [&](const Json& item) { return item["Name"] == name; });
}

// The name of the field that a load works another one out of.
std::string SourceOf(const std::string& field) {
  static const std::map<std::string, std::string> kSources{{"MediaName", "DefaultMediaName and MediaInfo"},
                                                           {"ModelCode", "ModelNumber"},
                                                           {"ModelSubCode", "ModelSubNumber"},
                                                           {"InternalCode", "InternalNumber"},
                                                           {"MediaCode", "MediaNumber"},
                                                           {"RevisionCode", "StoredRevisionCode"}};
  const auto found = kSources.find(field);
  return found != kSources.end() ? found->second : std::string();
}

// Every field that the document gives and that a save does not work out anew comes back.
void CheckRecord(const Node& record, int format, const Json& loaded) {
  for (const auto& item : record.Value().items()) {
    const std::string& field = item.key();
    if (field == "Text" || field == "Binary" || IsWorkedOut(field) || item.value() == loaded.value(field, Json())) {
      continue;
    }
    const bool isNow = field == "CreateTimeValue" && item.value() == 0;
    if (isNow || (field == "MediaName" && IsNameOfRecord(item.value(), record.Value()))) continue;
    const std::string source = format == 4 ? SourceOf(field) : std::string();
    record.At(field.c_str())
        .Fail(source.empty() ? "files of this format do not keep it, or work it out of other values"
                             : "the file keeps " + source + " of \"Binary\" in its place");
  }
}

void CheckWhatWasBuilt(const Node& document, int format, CProfileData& data, const std::string& path) {
  CProfileAccess access;
  CError error;
  if (!access.Init(PathToWide(path).c_str(), &error)) {
    const std::string why = WhyNotLoaded(PathToWide(path));
    // A profile of the older generation may be made where there is no table to load it with.
    if ((format == 2 || format == 3) && why.starts_with("conversion table")) return;
    document.Fail("the profile would not load under this name: " + why);
  }
  for (const Node& node : document.At("entries").Items()) {
    const std::uint32_t usedType = UsedTypeFromJson(node);
    CProfileDataEntry* const entry = data.GetProfileDataEntryFromList(usedType);
    const bool isEmpty = entry == nullptr || entry->GetSize() == 0;
    if (!isEmpty && access.GetProfileData()->GetProfileDataEntryFromList(usedType) == nullptr) {
      node.Fail("files of this format have no place for the entry on its route");
    }
  }
  if (document.Has("record")) CheckRecord(document.At("record"), format, RecordToJson(*access.GetProfileInfo()));
}

}  // namespace

Json EntryToDocument(CProfileDataEntry& entry) { return EntryToJson(entry, {}); }

bool RebuildsEntry(const Json& payload, CProfileDataEntry& entry, std::size_t& padding) {
  constexpr std::size_t kMostPadding = 3;
  if (payload.is_null()) return false;
  const EntryPointer rebuilt = MakeEntry(entry.GetUsedType());
  try {
    PayloadFromJson(Node(payload, ""), *rebuilt);
  } catch (const DocumentError&) {
    return false;
  }
  const Bytes wanted = BytesOf(entry);
  const Bytes made = BytesOf(*rebuilt);
  if (made.size() > wanted.size() || wanted.size() - made.size() > kMostPadding) return false;
  padding = wanted.size() - made.size();
  const auto end = wanted.begin() + static_cast<std::ptrdiff_t>(made.size());
  return std::equal(made.begin(), made.end(), wanted.begin()) &&
         std::all_of(end, wanted.end(), [](std::uint8_t byte) { return byte == 0; });
}

std::string FormatKeyOf(int format) {
  const auto found =
      std::find_if(kFormats.begin(), kFormats.end(), [&](const FormatKey& key) { return key.format == format; });
  return found != kFormats.end() ? found->key : "container";
}

Json ProfileToDocument(CProfileAccess& access, const std::string& filesFolder) {
  CProfileData& data = *access.GetProfileData();
  Json document = {{"nvxprofile", kDocumentVersion}, {"format", FormatKeyOf(access.GetProfileLoadFormat())}};
  document["record"] = RecordToJson(*access.GetProfileInfo());
  document["targetType"] = data.GetTargetType();
  document["deviceType"] = data.GetDeviceType();
  document["processDataType"] = data.GetProcessDataType();

  Json list = Json::array();
  bool more = data.GetEntryStartPos();
  while (more) list.push_back(EntryToJson(*data.GetNextEntry(more), filesFolder));
  document["entries"] = std::move(list);
  document["routes"] = RoutesToDocument(data);
  return document;
}

Json RoutesToDocument(CProfileData& data) {
  std::vector<CProfileDataEntry*> entries;
  bool more = data.GetEntryStartPos();
  while (more) entries.push_back(data.GetNextEntry(more));
  Json routes = Json::array();
  for (CProfileRoute* const route : RoutesOf(data)) {
    Json indices = Json::array();
    for (const CProfileDataEntry* const entry : EntriesOf(*route)) {
      indices.push_back(std::find(entries.begin(), entries.end(), entry) - entries.begin());
    }
    routes.push_back({{"route", route->GetRouteType()}, {"entries", std::move(indices)}});
  }
  return routes;
}

Json ParseDocument(const std::string& text) {
  // Of two members with one key the parser would keep the last.
  std::vector<std::set<std::string>> keys;
  const auto watch = [&](int, Json::parse_event_t event, Json& parsed) {
    if (event == Json::parse_event_t::object_start) keys.emplace_back();
    if (event == Json::parse_event_t::object_end) keys.pop_back();
    if (event == Json::parse_event_t::key && !keys.back().insert(parsed.get<std::string>()).second) {
      throw DocumentError("\"" + parsed.get<std::string>() + "\"", "the key stands twice in one object");
    }
    return true;
  };
  try {
    return Json::parse(text, watch);
  } catch (const Json::parse_error& error) {
    // "[json.exception.parse_error.101] parse error at line 1, column 2: what is wrong"
    const std::string message = error.what();
    const std::size_t line = message.find("line ");
    const std::size_t colon = message.find(": ", line == message.npos ? 0 : line);
    if (line == message.npos || colon == message.npos) throw DocumentError("", "is no JSON document");
    throw DocumentError(message.substr(line, colon - line), "is no JSON: " + message.substr(colon + 2));
  } catch (const Json::exception&) {
    throw DocumentError("", "is no JSON document");
  }
}

std::vector<std::uint8_t> BuildProfile(const Json& json, const std::string& folder, const std::string& name) {
  ReadLog log;
  const Node document(json, "", &log);
  document.At("nvxprofile").Integer(kDocumentVersion, kDocumentVersion);
  const int format = FormatFromJson(document.At("format"));
  const std::vector<Node> nodes = document.At("entries").Items();
  std::vector<EntryPointer> entries;
  for (const Node& node : nodes) entries.push_back(EntryFromJson(node, folder));
  CheckTypesAreUnique(nodes, entries);

  CProfileData data;
  _tagDeviceProfileInfo& info = *data.GetProfileInfo();
  if (format == 2 || format == 3) info.LayoutNumber = 1;
  if (format == 4) info.LayoutNumber = 3;
  if (document.Has("record")) RecordFromJson(document.At("record"), data);
  SetModelNumbers(document, format, data);
  PlaceEntries(document, std::move(entries), format, data);
  document.RefuseUnread();
  SetClock(info);

  const WorkFolder work(TemporaryFolder());
  const std::string path = work.File(name);
  if (!SaveAs(format, document, data, PathToWide(path))) ExplainFailure(document, format, data);
  CheckWhatWasBuilt(document, format, data, path);
  const std::string bytes = ReadInput(path);
  return {bytes.begin(), bytes.end()};
}

}  // namespace nvx::tool
