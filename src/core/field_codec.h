// Descriptions of fields that serve both ways. A payload is described by one function that takes a FieldCodec, names
// its fields in order, and does not ask which way they go but where objects have to be made:
//
//   void Describe(FieldCodec& codec, CExample& example) {
//     codec.Number({"count"}, example, &CExample::GetCount, &CExample::SetCount);
//     codec.Text({.name = "name", .count = {0, 63}}, example, &CExample::GetName, &CExample::SetName);
//   }
#pragma once

#include "core/text.h"

#include <nvxprofile/fields.h>
#include <nvxprofile/system_time.h>

#include <algorithm>
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
  void Number(Field field, T& value) {
    Narrow<T>(field.values);
    if (sink_ != nullptr) return sink_->Number(field, static_cast<std::int64_t>(value));
    const std::int64_t given = source_->Number(field, static_cast<std::int64_t>(value));
    CheckNumber(field.name, field.values, given);
    value = static_cast<T>(given);
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
    const char* const present = (object.*get)();
    if (sink_ != nullptr) return sink_->Text(field, present);
    (object.*set)(GivenText(field, present).c_str());
  }

  // A member of a structure, by its type. Text has room up to a terminator, unless the field allows less.
  template <class T>
  requires std::is_integral_v<T>
  void Member(const Field& field, T& value) { Number(field, value); }
  void Member(const Field& field, bool& value) { Flag(field, value); }
  template <std::size_t N>
  void Member(Field field, char (&text)[N]) {
    field.count.greatest = std::min<std::int64_t>(field.count.greatest, N - 1);
    const std::string_view present = FieldText(text);
    if (sink_ != nullptr) return sink_->Text(field, present);
    const std::string given = GivenText(field, present);
    std::fill(std::copy(given.begin(), given.end(), text), text + N, '\0');
  }
  template <std::size_t N>
  void Member(Field field, char16_t (&text)[N]) {
    field.count.greatest = std::min<std::int64_t>(field.count.greatest, N - 1);
    const std::u16string_view present = FieldText(text);
    if (sink_ != nullptr) return sink_->WideText(field, present);
    const std::u16string given = source_->WideText(field, present);
    CheckText(field, given.size(), " characters");
    std::fill(std::copy(given.begin(), given.end(), text), text + N, u'\0');
  }
  template <class T, std::size_t N>
  requires(std::is_integral_v<T> && sizeof(T) == sizeof(std::int32_t)) void Member(const Field& field,
                                                                                   T (&numbers)[N]) {
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
    if (sink_ != nullptr) return Tell(field, std::span<const T>(room));
    const std::vector<std::int64_t> given = GivenNumbers<T>(field, std::span<const T>(room));
    CheckCount(field.name, inRoom, given.size(), " numbers");
    std::transform(given.begin(), given.end(), room.begin(), [](std::int64_t value) { return static_cast<T>(value); });
  }
  // As many numbers as there are.
  template <class T>
  void Numbers(const Field& field, std::vector<T>& numbers) {
    if (sink_ != nullptr) return Tell(field, std::span<const T>(numbers));
    const std::vector<std::int64_t> given = GivenNumbers<T>(field, std::span<const T>(numbers));
    numbers.clear();
    std::transform(given.begin(), given.end(), std::back_inserter(numbers),
                   [](std::int64_t value) { return static_cast<T>(value); });
  }
  template <class T>
  void Tell(Field field, std::span<const T> numbers) {
    Narrow<T>(field.values);
    sink_->Numbers(field, numbers);
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
    const std::optional<std::size_t> count = source_->BeginList(field);
    if (!count) return false;
    CheckCount("", field.count, *count, " items");
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
  template <class T>
  static void Narrow(FieldRange& range) {
    range.least = std::max(range.least, RangeOf<T>().least);
    range.greatest = std::min(range.greatest, RangeOf<T>().greatest);
  }

  template <class T>
  std::vector<std::int64_t> GivenNumbers(Field field, std::span<const T> present) {
    Narrow<T>(field.values);
    std::vector<std::int64_t> given = source_->Numbers(field, present);
    CheckCount(field.name, field.count, given.size(), " numbers");
    for (std::size_t i = 0; i < given.size(); ++i) {
      CheckNumber(field.name + ("/" + std::to_string(i)), field.values, given[i]);
    }
    return given;
  }

  std::string GivenText(const Field& field, std::string_view present) {
    std::string given = source_->Text(field, present);
    CheckText(field, given.size(), " bytes");
    return given;
  }

  void CheckNumber(const std::string& place, const FieldRange& range, std::int64_t value);
  // The unit is what is counted, with a blank before it.
  void CheckCount(const char* place, const FieldRange& range, std::size_t count, const char* unit);
  void CheckText(const Field& field, std::size_t length, const char* unit);

  FieldSink* sink_ = nullptr;
  FieldSource* source_ = nullptr;
};

}  // namespace nvx
