#include "core/field_codec.h"

#include <exception>

namespace nvx {
namespace {

void Narrow(FieldRange& range, const FieldRange& other) {
  range = {std::max(range.least, other.least), std::min(range.greatest, other.greatest)};
}

// A terminator takes room, too.
template <class Char>
void FitInto(std::span<Char> room, FieldRange& count) {
  Narrow(count, {0, static_cast<std::int64_t>(room.size()) - 1});
}

template <class Char>
std::basic_string_view<Char> TextOf(std::span<Char> room) {
  return {room.data(), static_cast<std::size_t>(std::find(room.begin(), room.end(), Char{}) - room.begin())};
}

template <class Char>
void Store(const std::basic_string<Char>& text, std::span<Char> room) {
  std::fill(std::copy(text.begin(), text.end(), room.begin()), room.end(), Char{});
}

}  // namespace

FieldSink::~FieldSink() = default;
FieldSource::~FieldSource() = default;

void FieldCodec::Member(const Field& field, SYSTEMTIME& time) {
  Group(field, [&] {
    Member({"wYear", field.presence}, time.wYear);
    Member({"wMonth", field.presence}, time.wMonth);
    Member({"wDayOfWeek", field.presence}, time.wDayOfWeek);
    Member({"wDay", field.presence}, time.wDay);
    Member({"wHour", field.presence}, time.wHour);
    Member({"wMinute", field.presence}, time.wMinute);
    Member({"wSecond", field.presence}, time.wSecond);
    Member({"wMilliseconds", field.presence}, time.wMilliseconds);
  });
}

std::vector<std::uint8_t> FieldCodec::Bytes(const Field& field, std::span<const std::uint8_t> present) {
  if (sink_ != nullptr) {
    sink_->Bytes(field, present);
    return {};
  }
  std::vector<std::uint8_t> given = source_->Bytes(field, present);
  CheckCount(field.name, field.count, given.size(), " bytes");
  return given;
}

std::int64_t FieldCodec::Number(Field field, const FieldRange& type, std::int64_t present) {
  Narrow(field.values, type);
  if (sink_ != nullptr) {
    sink_->Number(field, present);
    return present;
  }
  const std::int64_t given = source_->Number(field, present);
  CheckNumber(field.name, field.values, given);
  return given;
}

std::string FieldCodec::Text(const Field& field, std::string_view present) {
  if (sink_ != nullptr) {
    sink_->Text(field, present);
    return {};
  }
  std::string given = source_->Text(field, present);
  CheckText(field, given.size(), " bytes");
  return given;
}

std::vector<std::int64_t> FieldCodec::Numbers(Field field, const FieldRange& type, const NumberRun& present) {
  Narrow(field.values, type);
  if (sink_ != nullptr) {
    sink_->Numbers(field, present);
    return {};
  }
  std::vector<std::int64_t> given = source_->Numbers(field, present);
  CheckCount(field.name, field.count, given.size(), " numbers");
  for (std::size_t i = 0; i < given.size(); ++i) {
    CheckNumber(field.name + ("/" + std::to_string(i)), field.values, given[i]);
  }
  return given;
}

void FieldCodec::TextIn(Field field, std::span<char> room) {
  FitInto(room, field.count);
  const std::string given = Text(field, TextOf(room));
  if (Fills()) Store(given, room);
}

void FieldCodec::TextIn(Field field, std::span<char16_t> room) {
  FitInto(room, field.count);
  if (sink_ != nullptr) return sink_->WideText(field, TextOf(room));
  const std::u16string given = source_->WideText(field, TextOf(room));
  CheckText(field, given.size(), " characters");
  Store(given, room);
}

std::optional<std::size_t> FieldCodec::BeginList(const Field& field) {
  const std::optional<std::size_t> count = source_->BeginList(field);
  if (count) CheckCount("", field.count, *count, " items");
  return count;
}

void FieldCodec::Refuse(const std::string& place, const std::string& why) {
  source_->Refuse(place, why);
  std::terminate();  // a source that returns although it must not
}

void FieldCodec::CheckNumber(const std::string& place, const FieldRange& range, std::int64_t value) {
  if (value >= range.least && value <= range.greatest) return;
  Refuse(place,
         "the number must lie between " + std::to_string(range.least) + " and " + std::to_string(range.greatest));
}

void FieldCodec::CheckCount(const char* place, const FieldRange& range, std::size_t count, const char* unit) {
  if (count < static_cast<std::uint64_t>(range.least)) {
    const char* const bound = range.least == range.greatest ? "" : "at least ";
    Refuse(place, bound + std::to_string(range.least) + unit + " are expected");
  }
  if (count > static_cast<std::uint64_t>(range.greatest)) {
    const char* const bound = range.least == range.greatest ? "" : "at most ";
    Refuse(place, bound + std::to_string(range.greatest) + unit + " are expected");
  }
}

void FieldCodec::CheckText(const Field& field, std::size_t length, const char* unit) {
  if (length <= static_cast<std::uint64_t>(field.count.greatest)) return;
  Refuse(field.name, "the text is longer than " + std::to_string(field.count.greatest) + unit);
}

}  // namespace nvx
