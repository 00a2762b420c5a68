#include "document_schema.h"

#include <nvxprofile/entry_types.h>
#include <nvxprofile/fields.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>

namespace nvx::tool {
namespace {

// All that was ever asked of a field, with the widest ranges.
struct Asked {
  Field field;
  Json (*schemaOf)(const Asked&);
  std::vector<std::unique_ptr<Asked>> parts = {};  // fields of a group, the item of a list
};

Json Reference(const char* name) { return {{"$ref", std::string("#/definitions/") + name}}; }

template <const char* kName>
Json Named(const Asked&) {
  return Reference(kName);
}

constexpr char kBool[] = "bool";
constexpr char kText[] = "text";
constexpr char kBase64[] = "base64";
constexpr char kPayload[] = "payload";

Json NumberSchema(const Asked& asked) {
  const FieldRange& range = asked.field.values;
  const auto isAll = [&](auto sample) {
    using Limits = std::numeric_limits<decltype(sample)>;
    return range.least == Limits::min() && range.greatest == Limits::max();
  };
  if (isAll(std::uint8_t{})) return Reference("u8");
  if (isAll(std::uint16_t{})) return Reference("u16");
  if (isAll(std::uint32_t{})) return Reference("u32");
  if (isAll(std::int32_t{})) return Reference("i32");
  if (isAll(std::int64_t{})) return Reference("i64");
  return {{"type", "integer"}, {"minimum", range.least}, {"maximum", range.greatest}};
}

Json ArraySchema(const FieldRange& count, Json items) {
  Json schema = {{"type", "array"}};
  if (count.least > 0) schema["minItems"] = count.least;
  if (count.greatest != FieldRange().greatest) schema["maxItems"] = count.greatest;
  schema["items"] = std::move(items);
  return schema;
}

Json NumbersSchema(const Asked& asked) { return ArraySchema(asked.field.count, NumberSchema(asked)); }

Json ListSchema(const Asked& asked) {
  const Asked& item = *asked.parts.at(0);
  return ArraySchema(asked.field.count, item.schemaOf(item));
}

Json EntryTypeSchema(const Asked&) {
  return {{"type", "integer"}, {"minimum", 1}, {"maximum", EntryTypes().back().usedType}};
}

Json GroupSchema(const Asked& group) {
  Json schema = {{"type", "object"}};
  Json required = Json::array();
  Json properties = Json::object();
  for (const auto& part : group.parts) {
    const char* const name = part->field.name;
    properties[name] = part->schemaOf(*part);
    if (part->schemaOf == EntryTypeSchema) {
      // By number or by name.
      schema["anyOf"] = {{{"required", {"usedType"}}}, {{"required", {"type"}}}};
      properties["type"] = properties["class"] = {{"type", "string"}};
    } else if (part->field.presence == Presence::kNeeded) {
      required.push_back(name);
    }
    if (part->schemaOf == Named<kPayload>) properties["bytes"] = Reference("base64");
  }
  if (!required.empty()) schema["required"] = std::move(required);
  schema["additionalProperties"] = false;
  schema["properties"] = std::move(properties);
  return schema;
}

enum class Choice { kPresent, kLeast, kGreatest };

// Writes down what is asked. Values are chosen one way or another, so that several visits come by everything that is
// told sometimes; a visit that ends early has come by something.
class Questions : public FieldSource {
 public:
  Questions(Asked& whole, Choice choice) : open_{&whole}, choice_(choice) {}

  std::int64_t Number(const Field& field, std::int64_t present) override {
    Ask(field, NumberSchema);
    if (choice_ == Choice::kLeast) return field.values.least;
    if (choice_ == Choice::kGreatest) return field.values.greatest;
    return std::clamp(present, field.values.least, field.values.greatest);
  }
  bool Flag(const Field& field, bool present) override {
    Ask(field, Named<kBool>);
    return present;
  }
  std::string Text(const Field& field, std::string_view present) override {
    Ask(field, Named<kText>);
    return std::string(present);
  }
  std::u16string WideText(const Field& field, std::u16string_view present) override {
    Ask(field, Named<kText>);
    return std::u16string(present);
  }
  std::vector<std::uint8_t> Bytes(const Field& field, std::span<const std::uint8_t>) override {
    Ask(field, Named<kBase64>);
    return std::vector<std::uint8_t>(static_cast<std::size_t>(field.count.least));
  }
  std::vector<std::int64_t> Numbers(const Field& field, const NumberRun&) override {
    Ask(field, NumbersSchema);
    return std::vector<std::int64_t>(static_cast<std::size_t>(field.count.least));
  }
  bool BeginGroup(const Field& field) override {
    open_.push_back(&Ask(field, GroupSchema));
    return true;
  }
  void EndGroup() override { open_.pop_back(); }
  std::optional<std::size_t> BeginList(const Field& field) override {
    open_.push_back(&Ask(field, ListSchema));
    return static_cast<std::size_t>(std::max<std::int64_t>(field.count.least, 1));
  }
  void EndList() override { open_.pop_back(); }
  std::uint32_t EntryType(const Field& field, std::uint32_t) override {
    Ask(field, EntryTypeSchema);
    return CProfileDataEntry::kCalibrationContainer;
  }
  void Payload(const Field& field, CProfileDataEntry&) override { Ask(field, Named<kPayload>); }
  void Refuse(const std::string& place, const std::string& why) override { throw DocumentError(place, why); }

 private:
  Asked& Ask(const Field& field, Json (*schemaOf)(const Asked&)) {
    auto& parts = open_.back()->parts;
    const auto found = std::find_if(parts.begin(), parts.end(),
                                    [&](const auto& part) { return std::string_view(part->field.name) == field.name; });
    if (found == parts.end()) return *parts.emplace_back(new Asked{field, schemaOf});
    Widen((*found)->field.values, field.values);
    Widen((*found)->field.count, field.count);
    return **found;
  }
  static void Widen(FieldRange& range, const FieldRange& other) {
    range = {std::min(range.least, other.least), std::max(range.greatest, other.greatest)};
  }

  std::vector<Asked*> open_;
  Choice choice_;
};

template <class Visit>
Asked Explore(Visit visit) {
  Asked whole{{}, GroupSchema};
  for (const Choice choice : {Choice::kPresent, Choice::kLeast, Choice::kGreatest}) {
    Questions questions(whole, choice);
    try {
      visit(questions);
    } catch (const DocumentError&) {  // the values do not go together
    }
  }
  return whole;
}

Json PayloadSchema() {
  Json kinds = Json::array();
  for (const nvx::EntryType& type : EntryTypes()) {
    const Asked asked = Explore([&](Questions& questions) {
      const std::unique_ptr<CProfileDataEntry> entry(type.create());
      FillFields(*entry, questions);
    });
    Json schema = GroupSchema(asked);
    const bool isNew = std::find(kinds.begin(), kinds.end(), schema) == kinds.end();
    if (!asked.parts.empty() && isNew) kinds.push_back(std::move(schema));
  }
  return {{"anyOf", std::move(kinds)}};
}

Json RecordSchema() {
  return GroupSchema(Explore([](Questions& questions) {
    for (const std::uint32_t layout : {kTextView, kBinaryView}) {
      CProfileData data;
      data.GetProfileInfo()->LayoutNumber = layout;
      FillRecord(data, questions);
    }
  }));
}

std::string TextOf(const Json& json, std::size_t depth, bool isSplit) {
  if (!json.is_structured() || json.empty()) return json.dump();
  const std::string blanks(2 * depth, ' ');
  std::string text;
  for (const auto& item : json.items()) {
    text += text.empty() ? "" : isSplit ? "," : ", ";
    if (isSplit) text += "\n  " + blanks;
    const std::string name = json.is_object() ? Json(item.key()).dump() + ": " : "";
    const std::string line = name + TextOf(item.value(), depth + 1, false);
    const bool fits = !isSplit || 2 * depth + line.size() < 117;
    text += fits ? line : name + TextOf(item.value(), depth + 1, true);
  }
  if (isSplit) text += "\n" + blanks;
  return json.is_object() ? "{" + text + "}" : "[" + text + "]";
}

}  // namespace

Json UpdatedSchema(Json schema) {
  schema["definitions"]["record"] = RecordSchema();
  schema["definitions"]["payload"] = PayloadSchema();
  Json formats = Json::array();
  for (const FormatType& type : FormatTypes()) formats.push_back(type.name);
  schema["properties"]["format"]["enum"] = std::move(formats);
  return schema;
}

std::string SchemaText(const Json& schema) { return TextOf(schema, 0, true) + "\n"; }

}  // namespace nvx::tool
