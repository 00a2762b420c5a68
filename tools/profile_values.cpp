#include "profile_values.h"

#include "document.h"
#include "files.h"
#include "loading.h"
#include "numbers.h"

#include <nvxprofile/media_property.h>
#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace nvx::tool {
namespace {

struct MediaName {
  const char* name;
  std::uint32_t block;
};

// Short names of the settings of a medium.
constexpr std::array<MediaName, 11> kMediaNames{{{"correct", kMediaCorrect},
                                                 {"heater", kMediaHeater},
                                                 {"wave", kMediaWave},
                                                 {"feed-speed", kMediaFeedSpeed},
                                                 {"wave-form", kMediaWaveForm},
                                                 {"dot-size", kMediaDotSize},
                                                 {"pass-density", kMediaPassDensity},
                                                 {"pass-mask", kMediaPassMask},
                                                 {"uv-mode", kMediaUvMode},
                                                 {"top-blower", kMediaTopBlower},
                                                 {"feed-direction", kMediaFeedDirection}}};

// Fields that a load works out of another one.
constexpr std::array<std::pair<const char*, const char*>, 7> kDerived{{{"ModelCode", "Binary/ModelNumber"},
                                                                       {"ModelSubCode", "Binary/ModelSubNumber"},
                                                                       {"InternalCode", "Binary/InternalNumber"},
                                                                       {"MediaCode", "Binary/MediaNumber"},
                                                                       {"RevisionCode", "Binary/StoredRevisionCode"},
                                                                       {"CreateTime", "CreateTimeValue"},
                                                                       {"UpdateTime", "UpdateTimeValue"}}};

Tokens Split(std::string_view text) {
  Tokens tokens;
  while (true) {
    const std::size_t slash = text.find('/');
    tokens.emplace_back(text.substr(0, slash));
    if (slash == text.npos) return tokens;
    text.remove_prefix(slash + 1);
  }
}

void ReplaceAll(std::string& text, std::string_view from, std::string_view to) {
  for (std::size_t i = text.find(from); i != text.npos; i = text.find(from, i + to.size())) {
    text.replace(i, from.size(), to);
  }
}

// A token of a JSON pointer has ~1 for a slash and ~0 for a tilde.
std::string Unescaped(std::string token) {
  ReplaceAll(token, "~1", "/");
  ReplaceAll(token, "~0", "~");
  return token;
}

std::string Escaped(std::string token) {
  ReplaceAll(token, "~", "~0");
  ReplaceAll(token, "/", "~1");
  return token;
}

std::string PointerOf(const Tokens& tokens) {
  std::string pointer;
  for (const std::string& token : tokens) pointer += "/" + Escaped(token);
  return pointer;
}

std::string KeysOf(const Json& object) {
  std::vector<std::string> keys;
  for (const auto& item : object.items()) keys.push_back(item.key());
  return fmt::format("{}", fmt::join(keys, ", "));
}

// The value that the tokens lead to from `json`, which stands at `place`.
Json& Walk(Json& json, std::string place, const Tokens& tokens) {
  Json* value = &json;
  for (const std::string& token : tokens) {
    if (value->is_object()) {
      const auto found = value->find(token);
      if (found == value->end()) {
        throw DocumentError(place, fmt::format("there is no \"{}\" here, but {}", token, KeysOf(*value)));
      }
      value = &*found;
    } else if (value->is_array()) {
      const auto index = NumberOf<std::size_t>(token);
      if (!index || *index >= value->size()) {
        throw DocumentError(place, fmt::format("there is no item \"{}\" here, but 0 to {}", token,
                                               static_cast<std::ptrdiff_t>(value->size()) - 1));
      }
      value = &(*value)[*index];
    } else {
      throw DocumentError(place, fmt::format("there is nothing below it, and so no \"{}\"", token));
    }
    place += "/" + Escaped(token);
  }
  return *value;
}

// Position of the first item of the list that fits; an error at `place` if none does.
template <class Fits>
std::string IndexOf(const Json& list, const std::string& place, const std::string& what, Fits fits) {
  for (std::size_t i = 0; list.is_array() && i < list.size(); ++i) {
    if (fits(list[i])) return std::to_string(i);
  }
  throw DocumentError(place, "there is no " + what);
}

// A text that does not convert stands as an object.
bool IsText(const Json& value) {
  return value.is_string() ||
         (value.is_object() && value.size() == 1 && (value.contains("base64") || value.contains("utf16")));
}

Json ValueOf(const std::string& place, const Json& present, const std::string& text) {
  if (present.is_boolean()) {
    if (text != "true" && text != "false") throw DocumentError(place, "true or false is expected, and not " + text);
    return text == "true";
  }
  if (present.is_number()) {
    if (const auto number = NumberOf<std::int64_t>(text)) return *number;
    throw DocumentError(place, "a whole number is expected, and not \"" + text + "\"");
  }
  if (IsText(present)) {
    Json json = text.starts_with('{') ? Json::parse(text, nullptr, false) : Json();
    return json.is_object() && IsText(json) ? json : Json(text);
  }
  Json json = Json::parse(text, nullptr, false);
  if (json.is_discarded() || json.type() != present.type()) {
    throw DocumentError(place, fmt::format("{} is expected as JSON", present.is_array() ? "a list" : "an object"));
  }
  return json;
}

bool IsHeaderField(const std::string& token) {
  return token == "complete" || token == "optionInfo" || token == "label";
}

std::string HintFor(const std::string& place) {
  for (const auto& [field, source] : kDerived) {
    if (place == std::string("/record/") + field) return fmt::format("; it follows from record/{}", source);
  }
  return {};
}

}  // namespace

ProfileValues::ProfileValues(const std::string& file) {
  const InputFile input(file);
  if (!input.Failure().empty()) throw std::runtime_error(input.Failure());
  Load(input.Path());
}

ProfileValues::ProfileValues(const std::u16string& path) { Load(path); }

void ProfileValues::Load(const std::u16string& path) {
  CError error;
  Diagnosis diagnosis;
  if (!access_.Init(path.c_str(), &error)) throw std::runtime_error(WhyNotLoaded(path));
  if (!edit_.Open(path.c_str(), &diagnosis)) throw std::runtime_error("its entry tables do not hold");
  bool more = access_.GetProfileData()->GetEntryStartPos();
  while (more) types_.push_back(access_.GetProfileData()->GetNextEntry(more)->GetUsedType());
  record_ = RecordToJson(*access_.GetProfileInfo());
  CProfileData& data = *access_.GetProfileData();
  rest_ = {{"nvxprofile", kDocumentVersion},
           {"format", FormatKeyOf(access_.GetProfileLoadFormat())},
           {"targetType", data.GetTargetType()},
           {"deviceType", data.GetDeviceType()},
           {"processDataType", data.GetProcessDataType()},
           {"routes", RoutesToDocument(data)}};
}

ProfileValues::Target ProfileValues::Resolve(const std::string& path) {
  if (!path.starts_with('/')) return ResolveShortName(path, Split(path));
  Tokens tokens = Split(path.substr(1));
  for (std::string& token : tokens) token = Unescaped(std::move(token));
  return ResolvePointer(std::move(tokens));
}

ProfileValues::Target ProfileValues::ResolvePointer(Tokens tokens) const {
  if (tokens.front() == "record") return {Part::kRecord, 0, {tokens.begin() + 1, tokens.end()}};
  if (tokens.front() != "entries") return {Part::kRest, 0, std::move(tokens)};
  const auto index = tokens.size() > 1 ? NumberOf<std::size_t>(tokens[1]) : std::nullopt;
  if (!index || *index >= types_.size()) {
    throw DocumentError("/entries", fmt::format("the position of an entry is expected, 0 to {}",
                                                static_cast<std::ptrdiff_t>(types_.size()) - 1));
  }
  return {Part::kEntry, types_[*index], {tokens.begin() + 2, tokens.end()}};
}

ProfileValues::Target ProfileValues::ResolveShortName(const std::string& path, Tokens tokens) {
  const std::string first = std::exchange(tokens.front(), {});
  tokens.erase(tokens.begin());
  if (first == "record") {
    for (const char* const view : {"Binary", "Text"}) {
      const bool isInView = !tokens.empty() && !record_.contains(tokens.front()) && record_.contains(view) &&
                            record_[view].contains(tokens.front());
      if (isInView) tokens.insert(tokens.begin(), view);
    }
    return {Part::kRecord, 0, std::move(tokens)};
  }
  std::uint32_t usedType = first == "media" ? CProfileDataEntry::kMediaProperty : UsedTypeByName(first);
  if (usedType == CProfileDataEntry::kCalibrationContainer) {
    // The calibrations stand in the history.
    usedType = CProfileDataEntry::kCalibrationHistory;
    tokens.insert(tokens.begin(), "calibration");
  }
  if (std::find(types_.begin(), types_.end(), usedType) == types_.end()) {
    std::vector<std::string> names{"record"};
    for (const std::uint32_t type : types_) names.emplace_back(EntryName(type));
    throw DocumentError(
        path, fmt::format("\"{}\" is nothing that the profile has; it has {}", first, fmt::join(names, ", ")));
  }
  return {Part::kEntry, usedType, ResolveInside(usedType, std::move(tokens))};
}

namespace {

// The way to a part of a payload: what stands for the first tokens, and how many those are.
struct Way {
  Tokens inside;
  std::size_t used = 0;
};

std::optional<Way> WayToSetting(const Json& payload, const std::string& place, const Tokens& tokens) {
  for (const MediaName& media : kMediaNames) {
    if (tokens.front() != media.name) continue;
    const std::string index =
        IndexOf(payload.value("mediaProperties", Json()), place, "setting \"" + tokens.front() + "\"",
                [&](const Json& block) { return block["usedType"] == media.block; });
    return Way{{"mediaProperties", index, "parameters"}, 1};
  }
  return std::nullopt;
}

std::optional<Way> WayToCurve(const Json& payload, const std::string& place, const Tokens& tokens) {
  if (tokens.front() != "ink" || tokens.size() < 2 || !payload.contains("curves")) return std::nullopt;
  const bool withExtend = tokens.size() > 3 && tokens[2] == "extend";
  const auto ink = NumberOf<std::uint32_t>(tokens[1]);
  const auto extend = withExtend ? NumberOf<std::uint32_t>(tokens[3]) : std::nullopt;
  const std::string what = "curve of ink " + tokens[1] + (withExtend ? " with ExtendInfo " + tokens[3] : "");
  const std::string index = IndexOf(payload["curves"], place, what, [&](const Json& curve) {
    return ink && curve["inkID"] == *ink && (!withExtend || (extend && curve["extendInfo"] == *extend));
  });
  return Way{{"curves", index}, withExtend ? std::size_t{4} : std::size_t{2}};
}

std::optional<Way> WayToCalibration(const Json& payload, const std::string& place, const Tokens& tokens) {
  if (tokens.front() != "calibration" || tokens.size() < 2 || !payload.contains("entries")) return std::nullopt;
  const auto code = NumberOf<std::uint32_t>(tokens[1]);
  const std::string index =
      IndexOf(payload["entries"], place, "calibration with the code " + tokens[1], [&](const Json& child) {
        return code && child["usedType"] == CProfileDataEntry::kCalibrationContainer && child["optionInfo"] == *code;
      });
  Way way{{"entries", index}, 2};
  if (tokens.size() > 2 && (tokens[2] == "name" || tokens[2] == "value" || tokens[2] == "time")) {
    way.inside.emplace_back("containerData");
  }
  return way;
}

}  // namespace

Tokens ProfileValues::ResolveInside(std::uint32_t usedType, Tokens tokens) {
  if (tokens.empty() || (tokens.size() == 1 && IsHeaderField(tokens.front()))) return tokens;
  const Target entry{Part::kEntry, usedType, {}};
  const Json& payload = PartOf(entry).value("payload", Json());
  const std::string place = PlaceOf(entry);
  std::optional<Way> way;
  if (usedType == CProfileDataEntry::kMediaProperty) way = WayToSetting(payload, place, tokens);
  if (!way) way = WayToCurve(payload, place, tokens);
  if (!way) way = WayToCalibration(payload, place, tokens);
  Tokens inside{"payload"};
  const std::size_t used = way ? way->used : 0;
  if (way) inside.insert(inside.end(), way->inside.begin(), way->inside.end());
  inside.insert(inside.end(), tokens.begin() + static_cast<std::ptrdiff_t>(used), tokens.end());
  return inside;
}

std::string ProfileValues::PlaceOf(const Target& target) const {
  if (target.part == Part::kRecord) return "/record" + PointerOf(target.inside);
  if (target.part == Part::kRest) return PointerOf(target.inside);
  const auto index = std::find(types_.begin(), types_.end(), target.usedType) - types_.begin();
  return fmt::format("/entries/{}{}", index, PointerOf(target.inside));
}

Json& ProfileValues::PartOf(const Target& target) {
  if (target.part == Part::kRecord) return record_;
  if (target.part == Part::kRest) return rest_;
  const auto [place, isNew] = entries_.try_emplace(target.usedType);
  if (isNew) place->second = EntryAsStored(target.usedType);
  return place->second;
}

Json ProfileValues::EntryAsStored(std::uint32_t usedType) {
  CProfileDataEntry& loaded = *access_.GetProfileData()->GetProfileDataEntryFromList(usedType);
  const auto bytes = edit_.EntryBytes(usedType);
  if (!bytes) return EntryToDocument(loaded);
  const std::unique_ptr<CProfileDataEntry> entry = MakeEntry(usedType);
  SetBytes(*entry, *bytes);
  entry->SetComplete(loaded.IsComplete());
  entry->SetOptionInfo(loaded.GetOptionInfo());
  entry->SetLabelString(loaded.GetLabelString());
  return EntryToDocument(*entry);
}

Json& ProfileValues::ValueAt(const Target& target) {
  Target whole = target;
  whole.inside.clear();
  return Walk(PartOf(target), PlaceOf(whole), target.inside);
}

Json ProfileValues::Get(const std::string& path) { return ValueAt(Resolve(path)); }

void ProfileValues::Set(const std::string& path, const std::string& text) {
  const Target target = Resolve(path);
  SetJson(path, ValueOf(PlaceOf(target), ValueAt(target), text));
}

void ProfileValues::SetJson(const std::string& path, Json value) {
  Target target = Resolve(path);
  if (target.part == Part::kRecord && target.inside == Tokens{"MediaName"}) target = SourceOfMediaName(value);
  const std::string place = PlaceOf(target);
  Json& present = ValueAt(target);
  if (target.inside.empty() || target.part == Part::kRest) throw DocumentError(place, "cannot be set");
  if (present == value) return;
  if (target.part == Part::kEntry) {
    const bool isPayload = target.inside.size() > 1 && target.inside.front() == "payload";
    if (!isPayload && !IsHeaderField(target.inside.front())) throw DocumentError(place, "cannot be set");
    changedEntries_.insert(target.usedType);
  } else {
    const bool isView = target.inside.front() == "Binary" || target.inside.front() == "Text";
    if (isView && target.inside.size() < 2) throw DocumentError(place, "cannot be set as a whole");
    changedFields_.insert({target.inside.begin(), target.inside.begin() + (isView ? 2 : 1)});
  }
  changes_.push_back({place, present, value});
  present = std::move(value);
}

ProfileValues::Target ProfileValues::SourceOfMediaName(const Json& wanted) {
  if (!record_.contains("Binary")) return {Part::kRecord, 0, {"MediaName"}};
  CProfileData trial;
  trial.GetProfileInfo()->LayoutNumber = kBinaryView;
  trial.GetProfileInfo()->Binary = {};
  const Json& view = record_["Binary"];
  for (std::size_t i = 0; i < view["MediaInfo"].size(); ++i) {
    Json changed = {{"Binary", view}};
    changed["Binary"]["MediaInfo"][i]["Name"] = wanted;
    RecordFromJson(Node(changed, "/record"), trial);
    CProfileFileQPFv3().SetupMediaFileToData(trial.GetProfileInfo());
    if (RecordToJson(*trial.GetProfileInfo())["MediaName"] == wanted) {
      return {Part::kRecord, 0, {"Binary", "MediaInfo", std::to_string(i), "Name"}};
    }
  }
  return {Part::kRecord, 0, {"Binary", "DefaultMediaName"}};
}

void ProfileValues::StoreRecord() {
  if (changedFields_.empty()) return;
  if (edit_.GetFormat() != kPrinterProfile) {
    throw DocumentError("/record", IsTextHeaded(edit_.GetFormat())
                                       ? "the record of a text-headed profile follows from its text and the conversion "
                                         "table; convert makes a profile whose record can be set"
                                       : "the file keeps no record");
  }
  Json fields = Json::object();
  for (const Tokens& field : changedFields_) {
    (field.size() == 1 ? fields[field[0]] : fields[field[0]][field[1]]) = Walk(record_, "/record", field);
  }
  RecordFromJson(Node(fields, "/record"), edit_.Headers());
  if (!edit_.StoreHeaders()) throw DocumentError("/record", "cannot be stored");
}

void ProfileValues::StoreEntry(std::uint32_t usedType) {
  const Json& entry = entries_.at(usedType);
  const std::string place = PlaceOf({Part::kEntry, usedType, {}});
  const Json before = EntryAsStored(usedType);
  if (before.value("payload", Json()) != entry.value("payload", Json())) StorePayload(usedType, entry["payload"]);
  std::optional<StoredEntryHeader> header = edit_.EntryHeader(usedType);
  const bool isChanged = std::any_of(before.items().begin(), before.items().end(), [&](const auto& item) {
    return IsHeaderField(item.key()) && item.value() != entry[item.key()];
  });
  if (!isChanged) return;
  if (!header) throw DocumentError(place, "the file keeps neither flags nor label for this entry");
  const Node node(entry, place);
  header->complete = node.At("complete").Bool();
  header->optionInfo = node.At("optionInfo").U32();
  header->label = NarrowFromJson(node.At("label"), CProfileDataEntry::kLabelLength - 1);
  if (!edit_.SetEntryHeader(usedType, *header)) throw DocumentError(place, "cannot be stored");
}

void ProfileValues::StorePayload(std::uint32_t usedType, const Json& payload) {
  const std::string place = PlaceOf({Part::kEntry, usedType, {"payload"}});
  const auto bytes = edit_.EntryBytes(usedType);
  const std::unique_ptr<CProfileDataEntry> stored = MakeEntry(usedType);
  if (bytes) SetBytes(*stored, *bytes);
  std::size_t padding = 0;
  if (!bytes || !RebuildsEntry(PayloadToJson(*stored), *stored, padding)) {
    throw DocumentError(place, "the entry holds more than its payload tells, which a change would lose");
  }
  const std::unique_ptr<CProfileDataEntry> made = MakeEntry(usedType);
  PayloadFromJson(Node(payload, place), *made);
  std::vector<std::uint8_t> image(made->GetSize() + padding);
  std::copy_n(made->Bytes().data(), made->GetSize(), image.begin());
  if (edit_.SetEntryBytes(usedType, image)) return;
  throw DocumentError(place, IsTextHeaded(edit_.GetFormat())
                                 ? "an entry of a text-headed profile cannot change its size in place"
                                 : "cannot be stored");
}

std::vector<std::uint8_t> ProfileValues::Image(const std::u16string& describedAs) {
  StoreRecord();
  for (const std::uint32_t usedType : changedEntries_) StoreEntry(usedType);
  if (!describedAs.empty() && !edit_.SetDescription(describedAs.c_str())) {
    throw DocumentError("", "the ICC profile cannot be described by the name of the file");
  }
  // What a load does not give back the file does not keep.
  const HeldBytes held(edit_.Image());
  ProfileValues again(held.Path());
  for (const Change& change : changes_) {
    if (again.Get(change.place) == Get(change.place)) continue;
    throw DocumentError(change.place, "the file does not keep it" + HintFor(change.place));
  }
  return edit_.Image();
}

}  // namespace nvx::tool
