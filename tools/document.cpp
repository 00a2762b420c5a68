#include "document.h"

#include "clock.h"
#include "files.h"
#include "interruption.h"
#include "loading.h"
#include "paths.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/entry_types.h>
#include <nvxprofile/icc_header.h>
#include <nvxprofile/icm_entry.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/profile_file_icc.h>
#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/profile_file_text.h>
#include <nvxprofile/text_conversion.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <utility>

namespace nvx::tool {
namespace {

using Bytes = std::vector<std::uint8_t>;
namespace fs = std::filesystem;

Bytes BytesOf(CProfileDataEntry& entry) {
  const std::uint8_t* const bytes = entry.Bytes().data();
  return bytes != nullptr ? Bytes(bytes, bytes + entry.GetSize()) : Bytes();
}

bool IsIcc(CProfileDataEntry& entry) { return entry.GetFormatType() == CProfileDataEntry::kFormatIcc; }

// Writes the entry's ICC profile into the folder; gives its path as the document has it.
std::string WriteIccFile(CProfileDataEntry& entry, const DumpedFiles& files) {
  const std::string name = std::string(EntryName(entry.GetUsedType())) + ".icc";
  const fs::path path = PathOf(files.folder) / name;
  WriteFile(TextOf(path), entry.Bytes());
  // With slashes, which every system takes: documents travel.
  const fs::path base = files.documentFolder.empty() ? fs::path(".") : PathOf(files.documentFolder);
  const fs::path shown =
      path.is_absolute()
          ? path
          : fs::absolute(path).lexically_normal().lexically_relative(fs::absolute(base).lexically_normal());
  return GenericTextOf(shown);
}

Json EntryToJson(CProfileDataEntry& entry, const DumpedFiles& files) {
  Json json = {{"usedType", entry.GetUsedType()},
               {"type", std::string(EntryName(entry.GetUsedType()))},
               {"class", std::string(ClassName(entry.GetUsedType()))},
               {"complete", entry.IsComplete()},
               {"optionInfo", entry.GetOptionInfo()},
               {"label", NarrowToJson(entry.GetLabelString())}};
  if (IsIcc(entry) && !files.folder.empty() && entry.GetSize() != 0) {
    json["file"] = WriteIccFile(entry, files);
    return json;
  }
  Json payload = IsIcc(entry) ? Json(nullptr) : PayloadToJson(entry);
  std::size_t padding = 0;
  const bool rebuilds = !payload.is_null() && RebuildsEntry(payload, entry, padding);
  if (!payload.is_null()) json["payload"] = std::move(payload);
  // Bytes stand where no payload says it all; a build takes them and leaves the payload alone.
  if (!rebuilds) json["bytes"] = ToBase64(entry.Bytes().data(), entry.GetSize());
  return json;
}

std::string ReadNamedFile(const Node& node, const std::string& folder) {
  const fs::path path = PathOf(folder) / PathOf(node.Text(4096));
  try {
    return ReadInput(TextOf(path));
  } catch (const std::runtime_error& error) {
    node.Fail(error.what());
  }
}

EntryPointer EntryFromJson(const Node& node, const std::string& folder) {
  const std::uint32_t usedType = UsedTypeFromJson(node);
  EntryPointer entry = MakeEntry(usedType);
  if (!entry) node.Fail("no entry class has the used type " + std::to_string(usedType));
  if (node.Has("file")) {
    const std::string bytes = ReadNamedFile(node.At("file"), folder);
    SetBytes(*entry, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    node.PassOver("payload");
  } else if (node.Has("bytes")) {
    SetBytes(*entry, node.At("bytes").Base64());
    node.PassOver("payload");
  } else if (node.Has("payload")) {
    PayloadFromJson(node.At("payload"), *entry);
  }
  if (IsIcc(*entry) && !node.Has("file") && !node.Has("bytes")) node.Fail(R"(an ICC entry needs a "file" or "bytes")");
  entry->SetComplete(!node.Has("complete") || node.At("complete").Bool());
  if (node.Has("optionInfo")) entry->SetOptionInfo(node.At("optionInfo").U32());
  if (node.Has("label")) {
    entry->SetLabelString(NarrowFromJson(node.At("label"), CProfileDataEntry::kLabelLength - 1).c_str());
  }
  return entry;
}

// Where an entry stands when the document does not say: the routes that loads of the format give it.
std::uint32_t DefaultRoute(int format, std::uint32_t usedType) {
  const EntryType* const type = FindFormatType(format)->hasRoutes ? FindEntryType(usedType) : nullptr;
  return type != nullptr ? type->route : kRouteIccRoot;
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
      static_cast<void>(entries[index].release());
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

std::int64_t SecondsOf(const SYSTEMTIME& time) {
  std::tm parts{};
  parts.tm_year = time.wYear - 1900;
  parts.tm_mon = time.wMonth - 1;
  parts.tm_mday = time.wDay;
  parts.tm_hour = time.wHour;
  parts.tm_min = time.wMinute;
  parts.tm_sec = time.wSecond;
  parts.tm_isdst = -1;
  return std::mktime(&parts);
}

// The times come back as the document has them, unless the environment says what the present is.
void SetTimes(const Node& document, const _tagDeviceProfileInfo& info, CProfileFile& file) {
  if (std::getenv("SOURCE_DATE_EPOCH") != nullptr) return;
  const auto stated = [&](const char* key) { return document.Has("record") && document.At("record").Has(key); };
  const std::int64_t now = PresentTime();
  if (info.LayoutNumber == kTextView) {
    if (info.CreateTime.wYear >= 1970) file.SetSaveTimes(0, SecondsOf(info.CreateTime));
  } else {
    file.SetSaveTimes(stated("CreateTimeValue") ? info.CreateTimeValue : now,
                      stated("UpdateTimeValue") ? info.UpdateTimeValue : now);
  }
}

int FormatFromJson(const Node& node) {
  const std::string key = node.Text(64);
  if (const FormatType* const type = FindFormatType(key)) return type->format;
  std::string keys;
  for (const FormatType& type : FormatTypes()) keys += std::string(keys.empty() ? "" : ", ") + std::string(type.name);
  node.Fail("the format must be one of " + keys);
}

// The numbers of the model beside the record, as far as the format has a place for them.
void SetModelNumbers(const Node& document, int format, CProfileData& data) {
  const auto number = [&](const char* key, bool isKept) {
    const std::uint32_t value = document.U32Or(key, 0);
    if (value != 0 && !isKept) document.At(key).Fail("files of this format do not keep it");
    return value;
  };
  const bool isContainer = format == kContainer || IsTextHeaded(format);
  data.SetTargetType(number("targetType", isContainer));
  data.SetDeviceType(number("deviceType", isContainer));
  data.SetProcessDataType(number("processDataType", false));
}

bool SavePlainIcc(CProfileData& data, const std::u16string& path) {
  auto* const entry = dynamic_cast<CICMEntry*>(data.GetProfileDataEntry(kRouteIccRoot, CProfileDataEntry::kIcm));
  std::uint32_t error = 0;
  return entry != nullptr && entry->Save(path.c_str(), error);
}

template <class File>
bool SaveWith(const Node& document, CProfileData& data, const std::u16string& path, std::uint32_t route) {
  File file;
  SetTimes(document, *data.GetProfileInfo(), file);
  return file.SaveData(path.c_str(), &data, route);
}

// The route of the one container of a format.
std::uint32_t OnlyRoute(const Node& document, CProfileData& data) {
  const std::vector<CProfileRoute*> routes = RoutesOf(data);
  if (routes.size() != 1) document.Fail("a container holds the entries of exactly one route");
  return routes[0]->GetRouteType();
}

bool SaveAs(int format, const Node& document, CProfileData& data, const std::u16string& path) {
  switch (format) {
    case kContainer:
      return SaveWith<CProfileFileQCT>(document, data, path, OnlyRoute(document, data));
    case kText1:
      return SaveWith<CProfileFileQPFv1>(document, data, path, OnlyRoute(document, data));
    case kText2:
      return SaveWith<CProfileFileQPFv2>(document, data, path, 0);
    case kPrinterProfile:
      SetFlagsByRoutes(document, data);
      return SaveWith<CProfileFileQPFv3>(document, data, path, kRouteMain | kRouteReplaceProfile | kRouteCalibration);
    default:
      return SavePlainIcc(data, path);
  }
}

const char* PlaceOfIcc(int format) { return format == kPrinterProfile ? "route 4" : "route 1"; }

// What keeps the model from being saved.
[[noreturn]] void ExplainFailure(const Node& document, int format, CProfileData& data) {
  const _tagDeviceProfileInfo& info = *data.GetProfileInfo();
  const Node entries = document.At("entries");
  if (format == kPrinterProfile || format == kPlainIcc) {
    const std::uint32_t route = format == kPrinterProfile ? kRouteMain : kRouteIccRoot;
    CProfileDataEntry* const icc = data.GetProfileDataEntry(route, CProfileDataEntry::kIcm);
    if (icc == nullptr) entries.Fail(std::string("there must be an entry \"icc\" on ") + PlaceOfIcc(format));
    Diagnosis diagnosis;
    IccDirectory directory;
    if (!ReadIccDirectory(icc->Bytes().data(), icc->GetSize(), directory, &diagnosis) && diagnosis.HasErrors()) {
      entries.Fail("the entry \"icc\" is no ICC profile: " + diagnosis.Findings().front().rule);
    }
  }
  const auto needs = [&](bool flag, std::uint32_t route, const char* key) {
    if (format != kPrinterProfile || !flag || data.IsSpecifiedRoute(route)) return;
    throw DocumentError(std::string("/record/") + key, "there is no entry on route " + std::to_string(route));
  };
  needs(info.HasMaskDownload, kRouteMaskDownload, "HasMaskDownload");
  needs(info.HasLargeParameter, kRouteLargeParameter, "HasLargeParameter");
  needs(info.HasSpecialColor, kRouteSpecialColor, "HasSpecialColor");
  if (format == kText2 && !(data.IsSpecifiedRoute(kRouteIccRoot) && data.IsSpecifiedRoute(kRouteGrayBalance))) {
    entries.Fail("the routes 1 and 2 must both have entries");
  }
  if (IsTextHeaded(format)) document.Fail("a text of the record has a line end or is too long for its line");
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
    if (field == "MediaName" && IsNameOfRecord(item.value(), record.Value())) continue;
    const std::string source = format == kPrinterProfile ? SourceOf(field) : std::string();
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
    if (IsTextHeaded(format) && why.starts_with("conversion table")) return;
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

// Refuses an object with one key twice, of which a parser keeps the last. A walk of its own: a parser with a callback
// looks through all that an array has at the end of each object in it.
class TwinKeys : public nlohmann::json_sax<Json> {
 public:
  bool null() override { return true; }
  bool boolean(bool) override { return true; }
  bool number_integer(Json::number_integer_t) override { return true; }
  bool number_unsigned(Json::number_unsigned_t) override { return true; }
  bool number_float(Json::number_float_t, const std::string&) override { return true; }
  bool string(std::string&) override { return true; }
  bool binary(Json::binary_t&) override { return true; }
  bool start_array(std::size_t) override { return true; }
  bool end_array() override { return true; }
  bool parse_error(std::size_t, const std::string&, const Json::exception&) override { return false; }

  bool start_object(std::size_t) override {
    keys_.emplace_back();
    return true;
  }
  bool end_object() override {
    keys_.pop_back();
    return true;
  }
  bool key(std::string& key) override {
    if (keys_.back().insert(key).second) return true;
    throw DocumentError("\"" + key + "\"", "the key stands twice in one object");
  }

 private:
  std::vector<std::set<std::string>> keys_;
};

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

std::string WhyNotRebuilt(CProfileAccess& access) {
  const bool isEmpty = RoutesOf(*access.GetProfileData()).empty();
  if (access.GetProfileLoadFormat() == kContainer && isEmpty) return "a container without entries";
  if (access.GetProfileLoadFormat() == kText1 && isEmpty) return "a text-headed profile without a container";
  return {};
}

std::string FormatKeyOf(int format) {
  const FormatType* const type = FindFormatType(format);
  return std::string(type != nullptr ? type->name : "container");
}

Json ProfileToDocument(CProfileAccess& access, const DumpedFiles& files) {
  CProfileData& data = *access.GetProfileData();
  Json document = {{"nvxprofile", kDocumentVersion}, {"format", FormatKeyOf(access.GetProfileLoadFormat())}};
  document["record"] = RecordToJson(*access.GetProfileInfo());
  document["targetType"] = data.GetTargetType();
  document["deviceType"] = data.GetDeviceType();
  document["processDataType"] = data.GetProcessDataType();

  Json list = Json::array();
  bool more = data.GetEntryStartPos();
  while (more) list.push_back(EntryToJson(*data.GetNextEntry(more), files));
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
  try {
    Json document = Json::parse(text);
    TwinKeys twins;
    Json::sax_parse(text, &twins);
    return document;
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

std::vector<std::uint8_t> BuildProfile(const Json& document, const std::string& folder, const std::string& name) {
  ReadLog log;
  const Node root(document, "", &log);
  root.At("nvxprofile").Integer(kDocumentVersion, kDocumentVersion);
  const int format = FormatFromJson(root.At("format"));
  const std::vector<Node> nodes = root.At("entries").Items();
  std::vector<EntryPointer> entries;
  for (const Node& node : nodes) entries.push_back(EntryFromJson(node, folder));
  CheckTypesAreUnique(nodes, entries);

  CProfileData data;
  _tagDeviceProfileInfo& info = *data.GetProfileInfo();
  if (IsTextHeaded(format)) info.LayoutNumber = kTextView;
  if (format == kPrinterProfile) info.LayoutNumber = kBinaryView;
  if (root.Has("record")) RecordFromJson(root.At("record"), data);
  SetModelNumbers(root, format, data);
  PlaceEntries(root, std::move(entries), format, data);
  root.RefuseUnread();

  const WorkFolder work;
  const std::string path = work.File(name);
  if (!SaveAs(format, root, data, PathToWide(path))) ExplainFailure(root, format, data);
  CheckWhatWasBuilt(root, format, data, path);
  const std::string bytes = ReadInput(path);
  return {bytes.begin(), bytes.end()};
}

}  // namespace nvx::tool
