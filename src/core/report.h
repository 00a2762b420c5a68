// Wording of failures for the callers' error record.
#pragma once

#include <nvxprofile/error.h>

#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>

namespace nvx {

// Fills %s and %d of a message with the arguments in turn. Text of arguments is taken as it is, never as a format.
class Message {
 public:
  explicit Message(std::u16string_view format) : rest_(format) {}
  Message& Put(std::u16string_view text);
  Message& Put(std::int32_t number);
  std::u16string Take();

 private:
  void CopyToPlace();

  std::u16string text_;
  std::u16string_view rest_;
};

// Stores a failure with system code 0 and gives false. `comment` is a fixed text.
inline bool Fail(CError* error, std::uint32_t reason, const char* source, int line, const char16_t* comment) {
  error->SetErrorW(0, reason, source, line, comment);
  return false;
}

inline bool Fail(CError* error, std::uint32_t reason, const char* source, int line, Message& message) {
  error->SetFormattedErrorW(0, reason, source, line, message.Take());
  return false;
}

}  // namespace nvx
