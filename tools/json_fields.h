// Fields as JSON, both ways: how a document writes each kind of field.
#pragma once

#include "json_text.h"
#include "payload.h"

#include <nvxprofile/fields.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nvx::tool {

// Members of the object that the writer has open: the payload of an entry under that name, if it has one, and the
// fields of a record. What PayloadToJson and RecordToJson give, written as it is told.
void WritePayload(JsonWriter& out, const char* name, CProfileDataEntry& entry, Detail detail);
void WriteRecord(JsonWriter& out, const _tagDeviceProfileInfo& info);

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

}  // namespace nvx::tool
