#include "core/field_codec.h"

#include <exception>

namespace nvx {

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
