#include "document.h"

#include "console.h"
#include "loading.h"
#include "record_json.h"

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

// True if the payload in the document rebuilds the entry's bytes. The zeros that fill up a private tag of a file are
// not the entry's.
bool Rebuilds(const Json& payload, CProfileDataEntry& entry) {
  constexpr std::size_t kPadding = 3;
  const EntryPointer rebuilt = MakeEntry(entry.GetUsedType());
  try {
    PayloadFromJson(Node(payload, ""), *rebuilt);
  } catch (const DocumentError&) {
    return false;
  }
  const Bytes wanted = BytesOf(entry);
  const Bytes made = BytesOf(*rebuilt);
  if (made.size() > wanted.size() || wanted.size() - made.size() > kPadding) return false;
  const auto end = wanted.begin() + static_cast<std::ptrdiff_t>(made.size());
  return std::equal(made.begin(), made.end(), wanted.begin()) &&
         std::all_of(end, wanted.end(), [](std::uint8_t byte) { return byte == 0; });
}

std::string WriteIccFile(CProfileDataEntry& entry, const std::string& folder) {
  const std::string name = std::string(EntryName(entry.GetUsedType())) + ".icc";
  const std::filesystem::path path = std::filesystem::path(folder) / name;
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(reinterpret_cast<const char*>(entry.GetRefBuffer()), entry.GetSize());
  if (!file.flush()) throw std::runtime_error(path.string() + ": cannot be written");
  return path.string();
}

Json EntryToJson(CProfileDataEntry& entry, const std::string& filesFolder) {
  Json json = {{"usedType", entry.GetUsedType()},
               {"class", std::string(ClassName(entry.GetUsedType()))},
               {"complete", entry.IsComplete()},
               {"optionInfo", entry.GetOptionInfo()},
               {"label", NarrowToJson(entry.GetLabelString())}};
  if (IsIcc(entry) && !filesFolder.empty()) {
    json["file"] = WriteIccFile(entry, filesFolder);
    return json;
  }
  Json payload = IsIcc(entry) ? Json(nullptr) : PayloadToJson(entry);
  const bool rebuilds = !payload.is_null() && Rebuilds(payload, entry);
  if (!payload.is_null()) json["payload"] = std::move(payload);
  // Bytes stand where no payload says it all; a build takes them and leaves the payload alone.
  if (!rebuilds) json["bytes"] = ToBase64(entry.GetRefBuffer(), entry.GetSize());
  return json;
}

// A document comes from anywhere: what it names must be a file, not a device that never ends.
Bytes ReadFile(const Node& node, const std::string& folder) {
  const std::filesystem::path path = std::filesystem::path(folder) / node.Text(4096);
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) node.Fail(path.string() + " is no file");
  std::ifstream file(path, std::ios::binary);
  if (!file) node.Fail("the file " + path.string() + " cannot be opened");
  return Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

std::uint32_t UsedTypeFromJson(const Node& node) {
  if (node.Has("usedType")) return node.At("usedType").U32();
  const Node type = node.At("type");
  const std::uint32_t usedType = UsedTypeByName(type.Text(64));
  if (usedType == 0) type.Fail("no entry has that name");
  return usedType;
}

EntryPointer EntryFromJson(const Node& node, const std::string& folder) {
  const std::uint32_t usedType = UsedTypeFromJson(node);
  EntryPointer entry = MakeEntry(usedType);
  if (!entry) node.Fail("no entry class has the used type " + std::to_string(usedType));
  if (node.Has("file")) {
    SetBytes(*entry, ReadFile(node.At("file"), folder));
  } else if (node.Has("bytes")) {
    SetBytes(*entry, node.At("bytes").Base64());
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
  if (seconds > 0) SetVariable("SOURCE_DATE_EPOCH", std::to_string(seconds).c_str());
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

}  // namespace

Json ProfileToDocument(CProfileAccess& access, const std::string& filesFolder) {
  CProfileData& data = *access.GetProfileData();
  const auto format = std::find_if(kFormats.begin(), kFormats.end(),
                                   [&](const FormatKey& key) { return key.format == access.GetProfileLoadFormat(); });
  Json document = {{"nvxprofile", kDocumentVersion}, {"format", format != kFormats.end() ? format->key : "container"}};
  document["record"] = RecordToJson(*access.GetProfileInfo());
  document["targetType"] = data.GetTargetType();
  document["deviceType"] = data.GetDeviceType();
  document["processDataType"] = data.GetProcessDataType();

  std::vector<CProfileDataEntry*> entries;
  Json list = Json::array();
  bool more = data.GetEntryStartPos();
  while (more) {
    entries.push_back(data.GetNextEntry(more));
    list.push_back(EntryToJson(*entries.back(), filesFolder));
  }
  document["entries"] = std::move(list);

  Json routes = Json::array();
  for (CProfileRoute* const route : RoutesOf(data)) {
    Json indices = Json::array();
    for (const CProfileDataEntry* const entry : EntriesOf(*route)) {
      indices.push_back(std::find(entries.begin(), entries.end(), entry) - entries.begin());
    }
    routes.push_back({{"route", route->GetRouteType()}, {"entries", std::move(indices)}});
  }
  document["routes"] = std::move(routes);
  return document;
}

void BuildProfile(const Json& json, const std::string& folder, const std::string& path) {
  const Node document(json, "");
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
  if (document.Has("targetType")) data.SetTargetType(document.At("targetType").U32());
  if (document.Has("deviceType")) data.SetDeviceType(document.At("deviceType").U32());
  if (document.Has("processDataType")) data.SetProcessDataType(document.At("processDataType").U32());
  PlaceEntries(document, std::move(entries), format, data);
  SetClock(info);
  if (!SaveAs(format, document, data, Utf8ToWide(path))) {
    throw std::runtime_error(path + ": cannot be written as the document says");
  }
}

}  // namespace nvx::tool
