// JSON as text.
#pragma once

#include "payload.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace nvx::tool {

enum class JsonLayout {
  kLine,      // without a blank
  kIndented,  // a line for each value, two blanks for each level
};

// Writes a document value by value, so that one of which most is known on the way need not be held as a tree. The text
// is that of the library that holds trees, and made some four times as fast: a listing of profiles is thousands of
// short names and numbers. Bytes that are no UTF-8 become U+FFFD.
class JsonWriter {
 public:
  explicit JsonWriter(JsonLayout layout)
      : isIndented_(layout == JsonLayout::kIndented), lineStart_(isIndented_ ? "\n" : "") {}

  void BeginObject() { Open('{'); }
  void EndObject() { Close('}'); }
  void BeginArray() { Open('['); }
  void EndArray() { Close(']'); }
  // The same, with all that fill() adds between.
  template <class Fill>
  void Object(Fill fill) {
    BeginObject();
    fill();
    EndObject();
  }
  template <class Fill>
  void Array(Fill fill) {
    BeginArray();
    fill();
    EndArray();
  }

  // The name of the next value, a member of the object.
  void Name(const std::string& name);
  void Value(const Json& value);
  void Number(std::int64_t value);
  void Member(const std::string& name, const Json& value) {
    Name(name);
    Value(value);
  }

  // What was written, once.
  std::string Take() { return std::move(out_); }

 private:
  void Open(char bracket);
  void Close(char bracket);
  void StartValue();
  void PutText(const std::string& text);

  std::string out_;
  bool isIndented_;
  std::string lineStart_;  // the end of a line and the blanks of the next, as deep as the list that is open
  std::size_t depth_ = 0;
  bool isFirst_ = true;   // nothing stands in the list that is open
  bool isNamed_ = false;  // the name of the next value does
};

std::string JsonText(const Json& json, JsonLayout layout);

}  // namespace nvx::tool
