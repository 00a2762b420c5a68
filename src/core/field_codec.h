// Descriptions of fields that serve both ways. A payload is described by one function that takes a FieldCodec, names
// its fields in order, and does not ask which way they go but where objects have to be made:
//
//   void Describe(FieldCodec& codec, CExample& example) {
//     codec.Number({"count"}, example, &CExample::GetCount, &CExample::SetCount);
//     codec.Text({.name = "name", .count = {0, 63}}, example, &CExample::GetName, &CExample::SetName);
//   }
#pragma once

#include <nvxprofile/fields.h>
#include <nvxprofile/system_time.h>

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

namespace nvx {

inline constexpr FieldRange kOneByte = {0, 0xFF};

template <class T>
constexpr FieldRange RangeOf() {
  if constexpr (std::is_same_v<T, std::int64_t>) return {};
  return {static_cast<std::int64_t>(std::numeric_limits<T>::min()),
          static_cast<std::int64_t>(std::numeric_limits<T>::max())};
}

class FieldCodec {
 public:
  explicit FieldCodec(FieldSink& sink) : sink_(&sink) {}
  explicit FieldCodec(FieldSource& source) : source_(&source) {}

  // Whether the payload is made of what a source gives. Only then does anything of it change.
  bool Fills() const { return source_ != nullptr; }

  // The payload of an entry, opened to changes only where it is filled.
  template <class Entry, class Payload>
  Payload& PayloadOf(Entry& entry, Payload* (Entry::*open)(), const Payload* (Entry::*look)() const) const {
    return Fills() ? *(entry.*open)() : const_cast<Payload&>(*(entry.*look)());
  }

  // Numbers of any width. A range that the field does not narrow is that of the type.
  template <class T>
  void Number(const Field& field, T& value) {
    const std::int64_t given = Number(field, RangeOf<T>(), static_cast<std::int64_t>(value));
    if (Fills()) value = static_cast<T>(given);
  }
  template <class Object, class Get, class Set>
  void Number(const Field& field, Object& object, Get get, Set set) {
    auto value = (object.*get)();
    Number(field, value);
    if (Fills()) (object.*set)(value);
  }

  void Flag(const Field& field, bool& value) {
    if (sink_ != nullptr) return sink_->Flag(field, value);
    value = source_->Flag(field, value);
  }

  // Text of the length that the field states.
  template <class Object, class Get, class Set>
  void Text(const Field& field, Object& object, Get get, Set set) {
    const std::string text = Text(field, (object.*get)());
    if (Fills()) (object.*set)(text.c_str());
  }

  // A member of a structure, by its type. Text has room up to a terminator, unless the field allows less.
  template <std::integral T>
  void Member(const Field& field, T& value) {
    Number(field, value);
  }
  void Member(const Field& field, bool& value) { Flag(field, value); }
  template <std::size_t N>
  void Member(const Field& field, char (&text)[N]) {
    TextIn(field, std::span<char>(text));
  }
  template <std::size_t N>
  void Member(const Field& field, char16_t (&text)[N]) {
    TextIn(field, std::span<char16_t>(text));
  }
  template <std::integral T, std::size_t N>
  void Member(const Field& field, T (&numbers)[N]) {
    Numbers(field, std::span<T>(numbers));
  }
  template <std::size_t N, std::size_t M>
  void Member(Field field, char16_t (&texts)[N][M]) {
    field.count = {0, N};
    List(
        field, std::span(texts), [&](char16_t(&text)[M]) { Member({}, text); },
        [&](std::size_t index) { Member({}, texts[index]); });
  }
  void Member(const Field& field, SYSTEMTIME& time);

  // Numbers in a room, which may be smaller than what the field allows, and of which the first may be given alone.
  template <class T>
  void Numbers(Field field, std::span<T> room) {
    const FieldRange inRoom = {0, static_cast<std::int64_t>(room.size())};
    if (field.count.greatest == FieldRange().greatest) field.count = inRoom;
    const std::vector<std::int64_t> given = Numbers(field, RangeOf<T>(), std::span<const T>(room));
    CheckCount(field.name, inRoom, given.size(), " numbers");
    std::transform(given.begin(), given.end(), room.begin(), [](std::int64_t value) { return static_cast<T>(value); });
  }
  // As many numbers as there are.
  template <class T>
  void Numbers(const Field& field, std::vector<T>& numbers) {
    const std::vector<std::int64_t> given = Numbers(field, RangeOf<T>(), std::span<const T>(numbers));
    if (Fills()) numbers.resize(given.size());
    std::transform(given.begin(), given.end(), numbers.begin(),
                   [](std::int64_t value) { return static_cast<T>(value); });
  }
  template <class T>
  void Tell(const Field& field, std::span<const T> numbers) {
    Numbers(field, RangeOf<T>(), numbers);
  }

  // Tells the bytes, or gives those of the source.
  std::vector<std::uint8_t> Bytes(const Field& field, std::span<const std::uint8_t> present);

  // Calls body() between the ends of a group, unless an optional one is missing.
  template <class Body>
  void Group(const Field& field, Body body) {
    if (sink_ != nullptr) {
      sink_->BeginGroup(field);
      body();
      sink_->EndGroup();
    } else if (source_->BeginGroup(field)) {
      body();
      source_->EndGroup();
    }
  }

  // Calls tell(item) for each item, or make(index) for each that the source has. False if the source has no such list.
  template <class Items, class TellItem, class Make>
  bool List(const Field& field, const Items& items, TellItem tell, Make make) {
    if (sink_ != nullptr) {
      sink_->BeginList(field, static_cast<std::size_t>(std::distance(items.begin(), items.end())));
      for (auto&& item : items) tell(item);
      sink_->EndList();
      return true;
    }
    const std::optional<std::size_t> count = BeginList(field);
    if (!count) return false;
    for (std::size_t i = 0; i < *count; ++i) make(i);
    source_->EndList();
    return true;
  }
  // The same for groups.
  template <class Items, class TellItem, class Make>
  bool Groups(const Field& field, const Items& items, TellItem tell, Make make) {
    return List(
        field, items, [&](auto&& item) { Group({}, [&] { tell(item); }); },
        [&](std::size_t index) { Group({}, [&] { make(index); }); });
  }

  void EntryType(const Field& field, std::uint32_t& usedType) {
    if (sink_ != nullptr) return sink_->EntryType(field, usedType);
    usedType = source_->EntryType(field, usedType);
  }
  void Payload(const Field& field, CProfileDataEntry& entry) {
    sink_ != nullptr ? sink_->Payload(field, entry) : source_->Payload(field, entry);
  }

  // Makes the buffer of an entry that was filled, or says why it cannot be made.
  void Rebuild(CProfileDataEntry& entry, const char* why) {
    if (Fills() && !entry.DataToBuffer()) Refuse("", why);
  }

  [[noreturn]] void Refuse(const std::string& place, const std::string& why);

 private:
  // What a source gives, checked; what is present, told to a sink and given back. The type has a range of its own.
  std::int64_t Number(Field field, const FieldRange& type, std::int64_t present);
  std::string Text(const Field& field, std::string_view present);
  // Empty with a sink.
  std::vector<std::int64_t> Numbers(Field field, const FieldRange& type, const NumberRun& present);
  // Text in its room, with zeros behind it.
  void TextIn(Field field, std::span<char> room);
  void TextIn(Field field, std::span<char16_t> room);
  std::optional<std::size_t> BeginList(const Field& field);

  void CheckNumber(const std::string& place, const FieldRange& range, std::int64_t value);
  // The unit is what is counted, with a blank before it.
  void CheckCount(const char* place, const FieldRange& range, std::size_t count, const char* unit);
  void CheckText(const Field& field, std::size_t length, const char* unit);

  FieldSink* sink_ = nullptr;
  FieldSource* source_ = nullptr;
};

}  // namespace nvx
