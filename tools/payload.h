// Payloads and the information record as JSON, both ways, by the fields that the library tells of them. Keys are the
// names of the fields.
#pragma once

#include <nvxprofile/profile_data.h>
#include <nvxprofile/profile_entry.h>

#include <nlohmann/json.hpp>

#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <unordered_set>
#include <vector>

namespace nvx::tool {

// Keeps keys in the order of writing.
using Json = nlohmann::ordered_json;

// A document that cannot be built from: what() says why, Place() is the JSON pointer of the culprit.
class DocumentError : public std::runtime_error {
 public:
  DocumentError(std::string place, const std::string& why) : std::runtime_error(why), place_(std::move(place)) {}
  const std::string& Place() const { return place_; }

 private:
  std::string place_;
};

// What of a document was read, so that members which nobody asked for can be refused.
struct ReadLog {
  std::unordered_set<const Json*> members;
  std::unordered_set<const Json*> passedOver;  // with all that is below them
};

// A value of a document together with the JSON pointer at which it stands, so that every complaint names its place.
class Node {
 public:
  // With a log, which must outlive the node, the members that are read through it and its children go there.
  Node(const Json& value, std::string place, ReadLog* log = nullptr)
      : value_(&value), place_(std::move(place)), log_(log) {}

  const Json& Value() const { return *value_; }
  const std::string& Place() const { return place_; }
  bool Has(const char* key) const;
  Node At(const char* key) const;  // DocumentError if this is no object or has no such key
  // Takes a member with all below it for read: it is there for people, or something else says the same.
  void PassOver(const char* key) const;
  // DocumentError at the first member of the log's document that was not read.
  void RefuseUnread() const;
  std::vector<Node> Items() const;     // DocumentError if this is no array
  Node Item(std::size_t index) const;  // of an array that has it
  std::int64_t Integer(std::int64_t least, std::int64_t greatest) const;
  std::uint32_t U32() const { return static_cast<std::uint32_t>(Integer(0, 0xFFFFFFFFLL)); }
  std::int32_t I32() const { return static_cast<std::int32_t>(Integer(-0x80000000LL, 0x7FFFFFFFLL)); }
  // The number of a key that may be missing.
  std::uint32_t U32Or(const char* key, std::uint32_t missing) const { return Has(key) ? At(key).U32() : missing; }
  bool Bool() const;
  std::string Text(std::size_t longest) const;  // bytes of narrow text
  std::vector<std::uint8_t> Base64() const;
  [[noreturn]] void Fail(const std::string& why) const;

 private:
  const Json* value_;
  std::string place_;
  ReadLog* log_;
};

// How much of a payload is told: all of it, or of bytes and samples no more than how many there are.
enum class Detail { kWhole, kSizes };

// The payload of an entry; null for entries without one and for those whose payload did not parse.
Json PayloadToJson(CProfileDataEntry& entry, Detail detail = Detail::kWhole);

// Fills the payload of an entry of the right type and rebuilds the entry's buffer. Throws DocumentError.
void PayloadFromJson(const Node& node, CProfileDataEntry& entry);

// The plain fields of the record, and the view that its LayoutNumber names.
Json RecordToJson(const _tagDeviceProfileInfo& info);

// Fills what the node has: the view of the layout number that holds by then, the media names as a whole. Throws
// DocumentError.
void RecordFromJson(const Node& node, CProfileData& data);

using EntryPointer = std::unique_ptr<CProfileDataEntry>;

// An entry of that type without bytes; null for a type without a class.
EntryPointer MakeEntry(std::uint32_t usedType);

// Makes the bytes the entry's buffer and parses them.
void SetBytes(CProfileDataEntry& entry, std::span<const std::uint8_t> bytes);

// The entry type that an object names by "usedType" or by "type"; both must mean the same. Passes over its "class".
std::uint32_t UsedTypeFromJson(const Node& node);

// Narrow payload text is ANSI code page text in files and UTF-8 in documents; bytes that do not convert to and fro
// unchanged travel as {"base64": "..."}.
Json NarrowToJson(const std::string& text);
std::string NarrowFromJson(const Node& node, std::size_t longest);
Json WideToJson(const std::u16string& text);
std::u16string WideFromJson(const Node& node, std::size_t longest);
std::string ToBase64(const std::uint8_t* bytes, std::size_t size);

}  // namespace nvx::tool
