// The JSON Schema of documents says of payloads and of the record what the library tells of their fields. With
// NVXPROFILE_WRITE_PAGES set the test writes that into the schema and keeps the rest.
#include <nvxprofile/entry_types.h>
#include <nvxprofile/fields.h>
#include <nvxprofile/profile_data.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using nvx::Field;
using nvx::FieldRange;
using Json = nlohmann::ordered_json;

enum class Kind { kNumber, kFlag, kText, kBytes, kNumbers, kGroup, kList, kEntryType, kPayload };

// All that was ever asked of a field, with the widest ranges.
struct Asked {
  Kind kind = Kind::kGroup;
  Field field;
  std::vector<std::unique_ptr<Asked>> parts;  // fields of a group, the item of a list
};

enum class Choice { kPresent, kLeast, kGreatest };

// Writes down what is asked. Values are chosen one way or another, so that several visits come by everything that is
// told sometimes; a visit that ends early has come by something.
class Questions : public nvx::FieldSource {
 public:
  Questions(Asked& whole, Choice choice) : choice_(choice) { open_.push_back(&whole); }

  std::int64_t Number(const Field& field, std::int64_t present) override {
    Ask(Kind::kNumber, field);
    if (choice_ == Choice::kLeast) return field.values.least;
    if (choice_ == Choice::kGreatest) return field.values.greatest;
    return std::clamp(present, field.values.least, field.values.greatest);
  }
  bool Flag(const Field& field, bool present) override {
    Ask(Kind::kFlag, field);
    return present;
  }
  std::string Text(const Field& field, std::string_view present) override {
    Ask(Kind::kText, field);
    return std::string(present);
  }
  std::u16string WideText(const Field& field, std::u16string_view present) override {
    Ask(Kind::kText, field);
    return std::u16string(present);
  }
  std::vector<std::uint8_t> Bytes(const Field& field, std::span<const std::uint8_t>) override {
    Ask(Kind::kBytes, field);
    return std::vector<std::uint8_t>(static_cast<std::size_t>(field.count.least));
  }
  std::vector<std::int64_t> Numbers(const Field& field, const nvx::NumberRun&) override {
    Ask(Kind::kNumbers, field);
    return std::vector<std::int64_t>(static_cast<std::size_t>(field.count.least));
  }
  bool BeginGroup(const Field& field) override {
    open_.push_back(&Ask(Kind::kGroup, field));
    return true;
  }
  void EndGroup() override { open_.pop_back(); }
  std::optional<std::size_t> BeginList(const Field& field) override {
    open_.push_back(&Ask(Kind::kList, field));
    return static_cast<std::size_t>(std::max<std::int64_t>(field.count.least, 1));
  }
  void EndList() override { open_.pop_back(); }
  std::uint32_t EntryType(const Field& field, std::uint32_t) override {
    Ask(Kind::kEntryType, field);
    return CProfileDataEntry::kCalibrationContainer;
  }
  void Payload(const Field& field, CProfileDataEntry&) override { Ask(Kind::kPayload, field); }
  void Refuse(const std::string& place, const std::string& why) override {
    throw std::runtime_error(place + ": " + why);
  }

 private:
  Asked& Ask(Kind kind, const Field& field) {
    auto& parts = open_.back()->parts;
    const auto found = std::find_if(parts.begin(), parts.end(),
                                    [&](const auto& part) { return std::string_view(part->field.name) == field.name; });
    if (found == parts.end()) return *parts.emplace_back(new Asked{kind, field, {}});
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
  Asked whole;
  for (const Choice choice : {Choice::kPresent, Choice::kLeast, Choice::kGreatest}) {
    Questions questions(whole, choice);
    try {
      visit(questions);
    } catch (const std::runtime_error&) {  // the values do not go together
    }
  }
  return whole;
}

Json Reference(const char* name) { return {{"$ref", std::string("#/definitions/") + name}}; }

Json NumberSchema(const FieldRange& range) {
  constexpr std::int64_t kU32 = 0xFFFFFFFF;
  if (range.least == 0 && range.greatest == 0xFF) return Reference("u8");
  if (range.least == 0 && range.greatest == 0xFFFF) return Reference("u16");
  if (range.least == 0 && range.greatest == kU32) return Reference("u32");
  if (range.least == INT32_MIN && range.greatest == INT32_MAX) return Reference("i32");
  if (range.least == INT64_MIN && range.greatest == INT64_MAX) return Reference("i64");
  return {{"type", "integer"}, {"minimum", range.least}, {"maximum", range.greatest}};
}

Json ListSchema(const FieldRange& count, Json items) {
  Json schema = {{"type", "array"}};
  if (count.least > 0) schema["minItems"] = count.least;
  if (count.greatest != INT64_MAX) schema["maxItems"] = count.greatest;
  schema["items"] = std::move(items);
  return schema;
}

Json SchemaOf(const Asked& asked);

Json GroupSchema(const Asked& group) {
  Json schema = {{"type", "object"}};
  Json required = Json::array();
  Json properties = Json::object();
  for (const auto& part : group.parts) {
    const char* const name = part->field.name;
    if (part->kind == Kind::kEntryType) {
      // By number or by name.
      schema["anyOf"] = {{{"required", {"usedType"}}}, {{"required", {"type"}}}};
      properties[name] = {{"type", "integer"}, {"minimum", 1}, {"maximum", nvx::EntryTypes().back().usedType}};
      properties["type"] = properties["class"] = {{"type", "string"}};
      continue;
    }
    properties[name] = SchemaOf(*part);
    if (part->kind == Kind::kPayload) properties["bytes"] = Reference("base64");
    if (part->field.presence == nvx::Presence::kNeeded) required.push_back(name);
  }
  if (!required.empty()) schema["required"] = std::move(required);
  schema["additionalProperties"] = false;
  schema["properties"] = std::move(properties);
  return schema;
}

Json SchemaOf(const Asked& asked) {
  switch (asked.kind) {
    case Kind::kNumber:
      return NumberSchema(asked.field.values);
    case Kind::kFlag:
      return Reference("bool");
    case Kind::kText:
      return Reference("text");
    case Kind::kBytes:
      return Reference("base64");
    case Kind::kNumbers:
      return ListSchema(asked.field.count, NumberSchema(asked.field.values));
    case Kind::kList:
      return ListSchema(asked.field.count, SchemaOf(*asked.parts.at(0)));
    case Kind::kPayload:
      return Reference("payload");
    default:
      return GroupSchema(asked);
  }
}

Json PayloadSchema() {
  Json kinds = Json::array();
  for (const nvx::EntryType& type : nvx::EntryTypes()) {
    const Asked asked = Explore([&](Questions& questions) {
      const std::unique_ptr<CProfileDataEntry> entry(type.create());
      nvx::FillFields(*entry, questions);
    });
    Json schema = GroupSchema(asked);
    const bool isNew = std::find(kinds.begin(), kinds.end(), schema) == kinds.end();
    if (!asked.parts.empty() && isNew) kinds.push_back(std::move(schema));
  }
  return {{"anyOf", std::move(kinds)}};
}

Json RecordSchema() {
  return GroupSchema(Explore([](Questions& questions) {
    for (const std::uint32_t layout : {nvx::kTextView, nvx::kBinaryView}) {
      CProfileData data;
      data.GetProfileInfo()->LayoutNumber = layout;
      nvx::FillRecord(data, questions);
    }
  }));
}

// What fits into a line of 120 characters stands on one.
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

TEST(Schema, SaysWhatTheFieldsSay) {
  const std::string path = NVXPROFILE_SOURCE_FOLDER "/docs/profile_document.schema.json";
  std::stringstream text;
  text << std::ifstream(path).rdbuf();
  Json schema = Json::parse(text.str());
  schema["definitions"]["record"] = RecordSchema();
  schema["definitions"]["payload"] = PayloadSchema();
  schema["properties"]["format"]["enum"] = Json::array();
  for (const nvx::FormatType& type : nvx::FormatTypes()) schema["properties"]["format"]["enum"].push_back(type.name);
  const std::string expected = TextOf(schema, 0, true) + "\n";
  if (std::getenv("NVXPROFILE_WRITE_PAGES") != nullptr) {
    std::ofstream(path) << expected;
  } else {
    EXPECT_EQ(text.str(), expected);
  }
}

}  // namespace
