// How a document writes each kind of field, and reads it.
#include "json_fields.h"

#include "loading.h"

#include <nvxprofile/entry_types.h>
#include <nvxprofile/fields.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace nvx::tool {
namespace {

// Makes a tree by the calls that a JsonWriter takes.
class JsonTree {
 public:
  explicit JsonTree(Json& root) : root_(root) {}

  void BeginObject() { parents_.push_back(&Put(Json::object())); }
  void EndObject() { parents_.pop_back(); }
  void BeginArray() { parents_.push_back(&Put(Json::array())); }
  void EndArray() { parents_.pop_back(); }
  void Name(const char* name) { name_ = name; }
  void Value(Json value) { Put(std::move(value)); }
  void Number(std::int64_t value) { Put(value); }

 private:
  Json& Put(Json value) {
    if (parents_.empty()) return root_ = std::move(value);
    Json& parent = *parents_.back();
    if (parent.is_object()) return parent.emplace(name_, std::move(value)).first.value();
    return parent.emplace_back(std::move(value));
  }

  Json& root_;
  std::vector<Json*> parents_;  // objects and arrays that are open; none of them grows but the last
  const char* name_ = "";
};

// The buffer is what a file holds and what every query reads, so that documents tell of the buffer.
bool IsRead(CProfileDataEntry& entry) {
  const EntryType* const type = FindEntryType(entry.GetUsedType());
  return type != nullptr && type->visit != nullptr && entry.GetSize() != 0 &&
         (entry.GetPayloadState() == PayloadState::kWhole || entry.BufferToData());
}

template <class Out>
class JsonSink final : public FieldSink {
 public:
  JsonSink(Out& out, Detail detail) : out_(out), detail_(detail) {}

  void Number(const Field& field, std::int64_t value) override {
    Name(field);
    out_.Number(value);
  }
  void Flag(const Field& field, bool value) override { Put(field, value); }
  void Text(const Field& field, std::string_view value) override { Put(field, NarrowToJson(std::string(value))); }
  void WideText(const Field& field, std::u16string_view value) override {
    Put(field, WideToJson(std::u16string(value)));
  }
  void Bytes(const Field& field, std::span<const std::uint8_t> value) override {
    if (IsSummarized(field)) return PutSize(field, "bytes", value.size());
    Put(field, ToBase64(value.data(), value.size()));
  }
  void Numbers(const Field& field, const NumberRun& values) override {
    std::visit(
        [&](const auto& run) {
          if (IsSummarized(field)) return PutSize(field, "count", run.size());
          Name(field);
          out_.BeginArray();
          for (const auto number : run) out_.Number(number);
          out_.EndArray();
        },
        values);
  }
  void BeginGroup(const Field& field) override {
    Name(field);
    out_.BeginObject();
  }
  void EndGroup() override { out_.EndObject(); }
  void BeginList(const Field& field, std::size_t) override {
    Name(field);
    out_.BeginArray();
  }
  void EndList() override { out_.EndArray(); }
  void EntryType(const Field& field, std::uint32_t usedType) override {
    Number(field, usedType);
    Put({"type"}, EntryName(usedType));
    Put({"class"}, ClassName(usedType));
  }
  void Payload(const Field& field, CProfileDataEntry& entry) override {
    if (!IsRead(entry)) return Bytes({.name = "bytes", .isBulk = true}, entry.Bytes());
    BeginGroup(field);
    TellFields(entry, *this);
    EndGroup();
  }

 private:
  // Items of a list have none.
  void Name(const Field& field) {
    if (*field.name != 0) out_.Name(field.name);
  }
  void Put(const Field& field, Json value) {
    Name(field);
    out_.Value(std::move(value));
  }
  void PutSize(const Field& field, const char* unit, std::size_t size) {
    BeginGroup(field);
    Number({unit}, static_cast<std::int64_t>(size));
    EndGroup();
  }
  bool IsSummarized(const Field& field) const { return field.isBulk && detail_ == Detail::kSizes; }

  Out& out_;
  Detail detail_;
};

// An object of all that tell(sink) tells.
template <class Out, class Tell>
void WriteObject(Out& out, Detail detail, Tell tell) {
  JsonSink sink(out, detail);
  out.BeginObject();
  tell(sink);
  out.EndObject();
}

// Gives the fields of a document. Throws DocumentError.
class JsonSource final : public FieldSource {
 public:
  explicit JsonSource(const Node& node) { parents_.push_back({node, 0}); }

  std::int64_t Number(const Field& field, std::int64_t present) override;
  bool Flag(const Field& field, bool present) override;
  std::string Text(const Field& field, std::string_view present) override;
  std::u16string WideText(const Field& field, std::u16string_view present) override;
  std::vector<std::uint8_t> Bytes(const Field& field, std::span<const std::uint8_t> present) override;
  std::vector<std::int64_t> Numbers(const Field& field, const NumberRun& present) override;
  bool BeginGroup(const Field& field) override;
  void EndGroup() override { parents_.pop_back(); }
  std::optional<std::size_t> BeginList(const Field& field) override;
  void EndList() override { parents_.pop_back(); }
  std::uint32_t EntryType(const Field& field, std::uint32_t present) override;
  void Payload(const Field& field, CProfileDataEntry& entry) override;
  [[noreturn]] void Refuse(const std::string& place, const std::string& why) override;

 private:
  // A group or list that is open, and how many items of the list were taken.
  struct Parent {
    Node node;
    std::size_t taken;
  };

  bool IsMissing(const Field& field) const;
  Node At(const Field& field);

  std::vector<Parent> parents_;
};

bool JsonSource::IsMissing(const Field& field) const {
  return field.presence == Presence::kOptional && !parents_.back().node.Has(field.name);
}

Node JsonSource::At(const Field& field) {
  Parent& parent = parents_.back();
  return *field.name != 0 ? parent.node.At(field.name) : parent.node.Item(parent.taken++);
}

std::int64_t JsonSource::Number(const Field& field, std::int64_t present) {
  return IsMissing(field) ? present : At(field).Integer(field.values.least, field.values.greatest);
}

bool JsonSource::Flag(const Field& field, bool present) { return IsMissing(field) ? present : At(field).Bool(); }

std::string JsonSource::Text(const Field& field, std::string_view present) {
  return IsMissing(field) ? std::string(present) : NarrowFromJson(At(field), SIZE_MAX);
}

std::u16string JsonSource::WideText(const Field& field, std::u16string_view present) {
  return IsMissing(field) ? std::u16string(present) : WideFromJson(At(field), SIZE_MAX);
}

std::vector<std::uint8_t> JsonSource::Bytes(const Field& field, std::span<const std::uint8_t> present) {
  return IsMissing(field) ? std::vector<std::uint8_t>(present.begin(), present.end()) : At(field).Base64();
}

std::vector<std::int64_t> JsonSource::Numbers(const Field& field, const NumberRun& present) {
  if (IsMissing(field)) {
    return std::visit([](const auto& run) { return std::vector<std::int64_t>(run.begin(), run.end()); }, present);
  }
  std::vector<std::int64_t> numbers;
  for (const Node& item : At(field).Items()) numbers.push_back(item.Integer(field.values.least, field.values.greatest));
  return numbers;
}

bool JsonSource::BeginGroup(const Field& field) {
  if (IsMissing(field)) return false;
  parents_.push_back({At(field), 0});
  return true;
}

std::optional<std::size_t> JsonSource::BeginList(const Field& field) {
  if (IsMissing(field)) return std::nullopt;
  parents_.push_back({At(field), 0});
  return parents_.back().node.Items().size();
}

// An entry has its type by number or by name.
std::uint32_t JsonSource::EntryType(const Field&, std::uint32_t) { return UsedTypeFromJson(parents_.back().node); }

void JsonSource::Payload(const Field& field, CProfileDataEntry& entry) {
  const Node& node = parents_.back().node;
  if (node.Has("bytes")) {
    SetBytes(entry, node.At("bytes").Base64());
    node.PassOver(field.name);
  } else if (node.Has(field.name)) {
    PayloadFromJson(node.At(field.name), entry);
  }
}

void JsonSource::Refuse(const std::string& place, const std::string& why) {
  const Parent& parent = parents_.back();
  std::string pointer = parent.node.Place();
  if (parent.taken != 0) pointer += "/" + std::to_string(parent.taken - 1);
  if (!place.empty() && place.front() != '/') pointer += '/';
  throw DocumentError(pointer + place, why);
}

}  // namespace

void WritePayload(JsonWriter& out, const char* name, CProfileDataEntry& entry, Detail detail) {
  if (!IsRead(entry)) return;
  out.Name(name);
  WriteObject(out, detail, [&](FieldSink& sink) { TellFields(entry, sink); });
}

void WriteRecord(JsonWriter& out, const _tagDeviceProfileInfo& info) {
  WriteObject(out, Detail::kWhole, [&](FieldSink& sink) { TellFields(info, sink); });
}

Json PayloadToJson(CProfileDataEntry& entry, Detail detail) {
  if (!IsRead(entry)) return nullptr;
  Json json;
  JsonTree tree(json);
  WriteObject(tree, detail, [&](FieldSink& sink) { TellFields(entry, sink); });
  return json;
}

void PayloadFromJson(const Node& node, CProfileDataEntry& entry) {
  JsonSource source(node);
  if (!FillFields(entry, source)) node.Fail("entries of this type have no payload");
}

Json RecordToJson(const _tagDeviceProfileInfo& info) {
  Json json;
  JsonTree tree(json);
  WriteObject(tree, Detail::kWhole, [&](FieldSink& sink) { TellFields(info, sink); });
  return json;
}

void RecordFromJson(const Node& node, CProfileData& data) {
  JsonSource source(node);
  FillRecord(data, source);
}

}  // namespace nvx::tool
