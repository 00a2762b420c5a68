#include "json_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <concepts>
#include <string_view>

namespace nvx::tool {
namespace {

class JsonTextWriter {
 public:
  explicit JsonTextWriter(JsonLayout layout)
      : isIndented_(layout == JsonLayout::kIndented), lineStart_(isIndented_ ? "\n" : "") {}

  void Put(const Json& value) {
    switch (value.type()) {
      case Json::value_t::object:
        return PutList('{', value.get_ref<const Json::object_t&>(), '}', [this](const auto& member) {
          PutText(member.first);
          out_ += isIndented_ ? ": " : ":";
          Put(member.second);
        });
      case Json::value_t::array:
        return PutList('[', value.get_ref<const Json::array_t&>(), ']', [this](const Json& item) { Put(item); });
      case Json::value_t::string:
        return PutText(value.get_ref<const std::string&>());
      case Json::value_t::number_integer:
        return PutNumber(value.get<std::int64_t>());
      case Json::value_t::number_unsigned:
        return PutNumber(value.get<std::uint64_t>());
      default:
        out_ += DumpOf(value);
    }
  }

  std::string Take() { return std::move(out_); }

 private:
  template <class Items, class PutItem>
  void PutList(char open, const Items& items, char close, PutItem putItem) {
    out_ += open;
    if (isIndented_) lineStart_.append(2, ' ');
    bool isFirst = true;
    for (const auto& item : items) {
      if (!isFirst) out_ += ',';
      isFirst = false;
      out_ += lineStart_;
      putItem(item);
    }
    if (isIndented_) lineStart_.resize(lineStart_.size() - 2);
    if (!isFirst) out_ += lineStart_;
    out_ += close;
  }

  void PutNumber(std::integral auto number) {
    std::array<char, 24> digits;
    char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    out_.append(digits.data(), end);
  }

  void PutText(const std::string& text) {
    const auto isPlain = [](char c) { return c >= 0x20 && c < 0x7F && c != '"' && c != '\\'; };
    if (!std::all_of(text.begin(), text.end(), isPlain)) {
      out_ += DumpOf(text);
      return;
    }
    out_ += '"';
    out_ += text;
    out_ += '"';
  }

  static std::string DumpOf(const Json& value) { return value.dump(-1, ' ', false, Json::error_handler_t::replace); }

  std::string out_;
  bool isIndented_;
  std::string lineStart_;  // the end of a line and the blanks of the next, as deep as the list that is open
};

}  // namespace

std::string JsonText(const Json& json, JsonLayout layout) {
  JsonTextWriter writer(layout);
  writer.Put(json);
  return writer.Take();
}

}  // namespace nvx::tool
