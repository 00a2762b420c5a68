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

// Stores a failure with system code 0 and gives false. `comment` is a fixed text. The line is that of the caller, who
// passes on that of his own caller if he only words the failure. (std::source_location is unknown to clang 14.)
inline bool Fail(CError* error, std::uint32_t reason, const char* source, const char16_t* comment,
                 int line = __builtin_LINE()) {
  error->SetErrorW(0, reason, source, line, comment);
  return false;
}

inline bool Fail(CError* error, std::uint32_t reason, const char* source, Message& message,
                 int line = __builtin_LINE()) {
  error->SetFormattedErrorW(0, reason, source, line, message.Take());
  return false;
}

}  // namespace nvx
