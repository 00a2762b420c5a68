#include "json_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <concepts>
#include <cstdint>

namespace nvx::tool {
namespace {

void AppendNumber(std::string& out, std::integral auto number) {
  std::array<char, 24> digits;
  char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  out.append(digits.data(), end);
}

std::string DumpOf(const Json& value) { return value.dump(-1, ' ', false, Json::error_handler_t::replace); }

}  // namespace

void JsonWriter::Name(const std::string& name) {
  StartValue();
  PutText(name);
  out_ += isIndented_ ? ": " : ":";
  isNamed_ = true;
}

void JsonWriter::Value(const Json& value) {
  switch (value.type()) {
    case Json::value_t::object:
      return Object([&] {
        for (const auto& [name, member] : value.get_ref<const Json::object_t&>()) Member(name, member);
      });
    case Json::value_t::array:
      return Array([&] {
        for (const Json& item : value.get_ref<const Json::array_t&>()) Value(item);
      });
    default:
      break;
  }
  StartValue();
  switch (value.type()) {
    case Json::value_t::string:
      return PutText(value.get_ref<const std::string&>());
    case Json::value_t::number_integer:
      return AppendNumber(out_, value.get_ref<const std::int64_t&>());
    case Json::value_t::number_unsigned:
      return AppendNumber(out_, value.get_ref<const std::uint64_t&>());
    default:
      out_ += DumpOf(value);
  }
}

void JsonWriter::Number(std::int64_t value) {
  StartValue();
  AppendNumber(out_, value);
}

void JsonWriter::Open(char bracket) {
  StartValue();
  out_ += bracket;
  if (isIndented_) lineStart_.append(2, ' ');
  ++depth_;
  isFirst_ = true;
}

void JsonWriter::Close(char bracket) {
  if (isIndented_) lineStart_.resize(lineStart_.size() - 2);
  --depth_;
  if (!isFirst_) out_ += lineStart_;
  isFirst_ = false;
  out_ += bracket;
}

void JsonWriter::StartValue() {
  if (isNamed_ || depth_ == 0) {
    isNamed_ = false;
    return;
  }
  if (!isFirst_) out_ += ',';
  isFirst_ = false;
  out_ += lineStart_;
}

void JsonWriter::PutText(const std::string& text) {
  const auto isPlain = [](char c) { return c >= 0x20 && c < 0x7F && c != '"' && c != '\\'; };
  if (std::all_of(text.begin(), text.end(), isPlain)) {
    out_ += '"';
    out_ += text;
    out_ += '"';
  } else {
    out_ += DumpOf(text);
  }
}

std::string JsonText(const Json& json, JsonLayout layout) {
  JsonWriter writer(layout);
  writer.Value(json);
  return writer.Take();
}

}  // namespace nvx::tool
