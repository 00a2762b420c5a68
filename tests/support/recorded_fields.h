// Fields written down, and played back into another entry.
#pragma once

#include <nvxprofile/fields.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
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

// Where a visit is. Items of a list have numbers for names.
class Place {
 public:
  std::string Of(const Field& field) {
    std::string name = field.name;
    if (name.empty()) name = std::to_string(items_.back()++);
    return path_.empty() ? name : path_.back() + "/" + name;
  }
  void Enter(const std::string& place) {
    path_.push_back(place);
    items_.push_back(0);
  }
  void Leave() {
    path_.pop_back();
    items_.pop_back();
  }
  std::string Here() const { return path_.empty() ? "" : path_.back(); }

 private:
  std::vector<std::string> path_;
  std::vector<std::size_t> items_;
};

inline NumberList NumbersOf(const NumberRun& run) {
  return std::visit([](const auto& numbers) { return NumberList(numbers.begin(), numbers.end()); }, run);
}

class Recorder : public FieldSink {
 public:
  void Number(const Field& field, std::int64_t value) override { Put(field, value); }
  void Flag(const Field& field, bool value) override { Put(field, value); }
  void Text(const Field& field, std::string_view value) override { Put(field, std::string(value)); }
  void WideText(const Field& field, std::u16string_view value) override { Put(field, std::u16string(value)); }
  void Bytes(const Field& field, std::span<const std::uint8_t> value) override {
    Put(field, ByteList(value.begin(), value.end()));
  }
  void Numbers(const Field& field, const NumberRun& values) override { Put(field, NumbersOf(values)); }
  void BeginGroup(const Field& field) override { place_.Enter(Put(field, true)); }
  void EndGroup() override { place_.Leave(); }
  void BeginList(const Field& field, std::size_t count) override { place_.Enter(Put(field, count)); }
  void EndList() override { place_.Leave(); }
  void EntryType(const Field& field, std::uint32_t usedType) override { Put(field, std::int64_t{usedType}); }
  void Payload(const Field& field, CProfileDataEntry& entry) override {
    Put(field, ByteList(entry.Bytes().begin(), entry.Bytes().end()));
  }

  Told told;

 private:
  std::string Put(const Field& field, Value value) {
    const std::string place = place_.Of(field);
    if (!told.values.emplace(place, std::move(value)).second) throw std::logic_error(place + " is told twice");
    told.places.push_back(place);
    return place;
  }

  Place place_;
};

class Player : public FieldSource {
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
    const std::string place = place_.Of(field);
    if (field.presence == Presence::kOptional && !told_.values.contains(place)) return false;
    place_.Enter(place);
    return true;
  }
  void EndGroup() override { place_.Leave(); }
  std::optional<std::size_t> BeginList(const Field& field) override {
    const std::string place = place_.Of(field);
    const auto found = told_.values.find(place);
    if (found == told_.values.end()) return std::nullopt;
    place_.Enter(place);
    return std::get<std::size_t>(found->second);
  }
  void EndList() override { place_.Leave(); }
  std::uint32_t EntryType(const Field& field, std::uint32_t) override {
    return static_cast<std::uint32_t>(Get(field, std::int64_t{0}));
  }
  void Payload(const Field& field, CProfileDataEntry& entry) override {
    const ByteList bytes = Get(field, ByteList());
    if (std::uint8_t* const buffer = entry.GetBuffer(static_cast<std::uint32_t>(bytes.size()))) {
      std::copy(bytes.begin(), bytes.end(), buffer);
    }
    entry.BufferToData();
  }
  [[noreturn]] void Refuse(const std::string& place, const std::string& why) override {
    throw std::runtime_error(place_.Here() + "|" + place + ": " + why);
  }

 private:
  template <class T>
  T Get(const Field& field, T present) {
    const std::string place = place_.Of(field);
    const auto found = told_.values.find(place);
    if (found != told_.values.end()) return std::get<T>(found->second);
    if (field.presence != Presence::kOptional) throw std::runtime_error(place + " is missing");
    return present;
  }

  const Told& told_;
  Place place_;
};

}  // namespace nvx::test
