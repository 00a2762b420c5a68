// Fields written down, and played back into another entry.
#pragma once

#include <nvxprofile/fields.h>

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace nvx::test {

using ByteList = std::vector<std::uint8_t>;
using NumberList = std::vector<std::int64_t>;
using Value = std::variant<std::int64_t, bool, std::string, std::u16string, ByteList, NumberList, std::size_t>;

// Fields by their place, "curves/0/inkID", and the same in their order.
struct Told {
  std::map<std::string, Value> values;
  std::vector<std::string> places;
};

inline NumberList NumbersOf(const NumberRun& run) {
  return std::visit([](const auto& numbers) { return NumberList(numbers.begin(), numbers.end()); }, run);
}

// A sink or source that knows where it is. Items of a list have numbers for names.
template <class Base>
class Visit : public Base {
 public:
  void EndGroup() override { open_.pop_back(); }
  void EndList() override { open_.pop_back(); }

 protected:
  std::string PlaceOf(const Field& field) {
    std::string name = field.name;
    if (name.empty()) name = std::to_string(open_.back().items++);
    return open_.empty() ? name : Here() + "/" + name;
  }
  void Enter(const std::string& place) { open_.push_back({place}); }
  std::string Here() const { return open_.empty() ? "" : open_.back().place; }

 private:
  struct Level {
    std::string place;
    std::size_t items = 0;
  };
  std::vector<Level> open_;
};

class Recorder : public Visit<FieldSink> {
 public:
  void Number(const Field& field, std::int64_t value) override { Put(field, value); }
  void Flag(const Field& field, bool value) override { Put(field, value); }
  void Text(const Field& field, std::string_view value) override { Put(field, std::string(value)); }
  void WideText(const Field& field, std::u16string_view value) override { Put(field, std::u16string(value)); }
  void Bytes(const Field& field, std::span<const std::uint8_t> value) override {
    Put(field, ByteList(value.begin(), value.end()));
  }
  void Numbers(const Field& field, const NumberRun& values) override { Put(field, NumbersOf(values)); }
  void BeginGroup(const Field& field) override { Enter(Put(field, true)); }
  void BeginList(const Field& field, std::size_t count) override { Enter(Put(field, count)); }
  void EntryType(const Field& field, std::uint32_t usedType) override { Number(field, usedType); }
  void Payload(const Field& field, CProfileDataEntry& entry) override { Bytes(field, entry.Bytes()); }

  Told told;

 private:
  std::string Put(const Field& field, Value value) {
    const std::string place = PlaceOf(field);
    if (!told.values.emplace(place, std::move(value)).second) throw std::logic_error(place + " is told twice");
    return told.places.emplace_back(place);
  }
};

class Player : public Visit<FieldSource> {
 public:
  explicit Player(const Told& told) : told_(told) {}

  std::int64_t Number(const Field& field, std::int64_t present) override { return Get(field, present); }
  bool Flag(const Field& field, bool present) override { return Get(field, present); }
  std::string Text(const Field& field, std::string_view present) override { return Get(field, std::string(present)); }
  std::u16string WideText(const Field& field, std::u16string_view present) override {
    return Get(field, std::u16string(present));
  }
  ByteList Bytes(const Field& field, std::span<const std::uint8_t> present) override {
    return Get(field, ByteList(present.begin(), present.end()));
  }
  NumberList Numbers(const Field& field, const NumberRun& present) override { return Get(field, NumbersOf(present)); }
  bool BeginGroup(const Field& field) override {
    const std::string place = PlaceOf(field);
    const bool isThere = field.presence != Presence::kOptional || told_.values.contains(place);
    if (isThere) Enter(place);
    return isThere;
  }
  std::optional<std::size_t> BeginList(const Field& field) override {
    const std::string place = PlaceOf(field);
    if (!told_.values.contains(place)) return std::nullopt;
    Enter(place);
    return std::get<std::size_t>(told_.values.at(place));
  }
  std::uint32_t EntryType(const Field& field, std::uint32_t present) override {
    return static_cast<std::uint32_t>(Number(field, present));
  }
  void Payload(const Field& field, CProfileDataEntry& entry) override {
    const ByteList bytes = Bytes(field, {});
    std::copy(bytes.begin(), bytes.end(), entry.GetBuffer(static_cast<std::uint32_t>(bytes.size())));
    entry.BufferToData();
  }
  [[noreturn]] void Refuse(const std::string& place, const std::string& why) override {
    throw std::runtime_error(Here() + "|" + place + ": " + why);
  }

 private:
  template <class T>
  T Get(const Field& field, T present) {
    const std::string place = PlaceOf(field);
    const auto found = told_.values.find(place);
    if (found != told_.values.end()) return std::get<T>(found->second);
    if (field.presence != Presence::kOptional) throw std::runtime_error(place + " is missing");
    return present;
  }

  const Told& told_;
};

}  // namespace nvx::test
