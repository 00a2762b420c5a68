// The fields of payloads and of the information record, one by one, in order and by name: for whoever shows, stores,
// compares or makes them without knowing each class. docs/profile_document.md lists the names.
//
// A sink is told what a payload says; a source says what a payload becomes. Fields have no other structure than this:
// a group holds named fields, a list holds fields without a name, which are groups or runs of numbers or texts.
#pragma once

#include <nvxprofile/export.h>
#include <nvxprofile/profile_entry.h>
#include <nvxprofile/profile_info.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

class CProfileData;

namespace nvx {

// Whether a source must have a field.
enum class Presence {
  kNeeded,
  kOptional,   // without it the field keeps the value that it has
  kSometimes,  // told of some payloads alone, as the fields before it say; needed for those
};

// From the least to the greatest, both included.
struct FieldRange {
  std::int64_t least = std::numeric_limits<std::int64_t>::min();
  std::int64_t greatest = std::numeric_limits<std::int64_t>::max();
};

// What is known of a field beside its value.
struct Field {
  const char* name = "";                  // empty for an item of a list; valid for ever
  Presence presence = Presence::kNeeded;  // in a source
  FieldRange values = {};                 // of a number, and of each number of a run
  FieldRange count = {0};                 // bytes, numbers or items; bytes of narrow text, characters of wide text
  bool isBulk = false;                    // may be long, and is of use to programs alone: a summary gives its length
};

// Numbers in the width that they are kept in. They belong to the payload.
using NumberRun = std::variant<std::span<const std::uint8_t>, std::span<const std::uint16_t>,
                               std::span<const std::uint32_t>, std::span<const std::int32_t>>;

// Takes fields. What it is given is valid until it returns. It may throw; the exception comes out of TellFields.
class NVX_EXPORT FieldSink {
 public:
  FieldSink() = default;
  FieldSink(const FieldSink&) = delete;
  FieldSink& operator=(const FieldSink&) = delete;
  virtual ~FieldSink();

  // A whole number.
  virtual void Number(const Field& field, std::int64_t value) = 0;
  // Yes or no.
  virtual void Flag(const Field& field, bool value) = 0;
  // Text in the ANSI code page.
  virtual void Text(const Field& field, std::string_view value) = 0;
  // Text in UTF-16.
  virtual void WideText(const Field& field, std::u16string_view value) = 0;
  // Bytes that nobody here looks into.
  virtual void Bytes(const Field& field, std::span<const std::uint8_t> value) = 0;
  // A run of numbers.
  virtual void Numbers(const Field& field, const NumberRun& values) = 0;
  // The fields up to the matching EndGroup belong to a group.
  virtual void BeginGroup(const Field& field) = 0;
  virtual void EndGroup() = 0;
  // As many items follow, each a field without a name.
  virtual void BeginList(const Field& field, std::size_t count) = 0;
  virtual void EndList() = 0;
  // The type of an entry inside of this one, a number of nvx::EntryTypes.
  virtual void EntryType(const Field& field, std::uint32_t usedType) = 0;
  // The bytes or the payload of that entry, as the sink sees fit.
  virtual void Payload(const Field& field, CProfileDataEntry& entry) = 0;
};

// Gives fields. It is asked by name, and for some fields of a group out of order or twice. Of a field that is optional
// and missing it gives `present` back. It may throw; the exception comes out of FillFields.
class NVX_EXPORT FieldSource {
 public:
  FieldSource() = default;
  FieldSource(const FieldSource&) = delete;
  FieldSource& operator=(const FieldSource&) = delete;
  virtual ~FieldSource();

  // A whole number.
  virtual std::int64_t Number(const Field& field, std::int64_t present) = 0;
  // Yes or no.
  virtual bool Flag(const Field& field, bool present) = 0;
  // Text in the ANSI code page.
  virtual std::string Text(const Field& field, std::string_view present) = 0;
  // Text in UTF-16.
  virtual std::u16string WideText(const Field& field, std::u16string_view present) = 0;
  // Bytes that nobody here looks into.
  virtual std::vector<std::uint8_t> Bytes(const Field& field, std::span<const std::uint8_t> present) = 0;
  // A run of numbers.
  virtual std::vector<std::int64_t> Numbers(const Field& field, const NumberRun& present) = 0;
  // False for an optional group that is missing: it is not entered, and does not end.
  virtual bool BeginGroup(const Field& field) = 0;
  virtual void EndGroup() = 0;
  // The number of items; nothing for an optional list that is missing, as for a group.
  virtual std::optional<std::size_t> BeginList(const Field& field) = 0;
  virtual void EndList() = 0;
  // The type of an entry inside of this one.
  virtual std::uint32_t EntryType(const Field& field, std::uint32_t present) = 0;
  // Gives the entry its bytes or its payload.
  virtual void Payload(const Field& field, CProfileDataEntry& entry) = 0;
  // What was given cannot be taken: throws. The place is the name of a field of the group that is open, followed by
  // /INDEX where an item of a run is meant, and empty for that group or list itself.
  [[noreturn]] virtual void Refuse(const std::string& place, const std::string& why) = 0;
};

// Tells the payload of an entry as it is; nothing is parsed, and nothing of the entry changes, but of what the sink
// does itself with the entries inside. Any number of threads may do this at once. False for an entry without fields: an
// ICC profile, and a type or class that no row of nvx::EntryTypes has.
NVX_EXPORT bool TellFields(const CProfileDataEntry& entry, FieldSink& sink);

// Makes the payload of an entry what the source says, and its buffer from that. Numbers, lengths and counts are checked
// against the ranges of their fields. False, with nothing asked, as for TellFields. A buffer that is unread or was read
// in part is refused before anything is asked. After any other exception the payload holds what had come until then;
// the buffer is always as it was.
NVX_EXPORT bool FillFields(CProfileDataEntry& entry, FieldSource& source);

// The same for an information record, with the view that its LayoutNumber names. When it is filled all fields are
// optional; the media names of the profile are replaced as a whole.
NVX_EXPORT void TellFields(const _tagDeviceProfileInfo& record, FieldSink& sink);
// Fills the record of a profile.
NVX_EXPORT void FillRecord(CProfileData& data, FieldSource& source);

}  // namespace nvx
