// The syntax of adjust files, on bytes: lines, keys and values, numbers. docs/formats/adjust.md states the rules.
#pragma once

#include "platform/file_system.h"

#include <nvxprofile/file.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace nvx::adjust {

inline constexpr std::size_t kMaxLines = 100;
inline constexpr std::size_t kCurveLength = 256;

// Cuts bytes, which come in pieces of any size, into lines. CR and LF both end a line; byte 0x1A ends the input.
class LineCutter {
 public:
  // Calls take(line, number) for each closed line that is not empty, until it gives false. The number counts lines as
  // an editor does, from 1. False once no more bytes are wanted.
  template <class Take>
  bool Feed(std::string_view bytes, Take&& take) {
    while (!bytes.empty()) {
      const std::size_t length = std::min(bytes.find_first_of("\r\n\x1A"), bytes.size());
      rest_ += bytes.substr(0, length);
      if (length == bytes.size()) return true;
      const char end = bytes[length];
      bytes.remove_prefix(length + 1);
      if (end == '\x1A') {
        endMark_ = true;
        return false;
      }
      if (!CloseLine(end, take)) return false;
    }
    return true;
  }

  // What stands behind the last line end, up to where the input ended; it is no line.
  std::string_view Rest() const { return rest_; }
  std::size_t LineNumber() const { return number_; }
  // The input ended at a byte 0x1A.
  bool HasEndMark() const { return endMark_; }

 private:
  template <class Take>
  bool CloseLine(char end, Take& take) {
    const bool secondHalf = lastEnd_ == '\r' && end == '\n' && rest_.empty();
    lastEnd_ = end;
    if (secondHalf) return true;
    const bool more = rest_.empty() || take(std::string_view(rest_), number_);
    rest_.clear();
    ++number_;
    return more;
  }

  std::string rest_;
  std::size_t number_ = 1;
  char lastEnd_ = 0;
  bool endMark_ = false;
};

// Runs a file through the cutter, reading no further than it wants. False, with the error number left in
// platform::LastError, if the file cannot be opened.
template <class Take>
bool CutFile(std::u16string_view path, LineCutter& cutter, Take&& take) {
  const platform::ScopedFile file(platform::OpenFile(path, kGenericRead, platform::kShareReadAndWrite, kOpenExisting));
  if (!file.IsOpen()) return false;
  std::array<char, 16384> piece;
  std::size_t length = piece.size();
  while (length == piece.size()) {
    length = platform::ReadFile(file.Handle(), piece.data(), piece.size());
    if (!cutter.Feed(std::string_view(piece.data(), length), take)) break;
  }
  return true;
}

inline bool IsComment(std::string_view line) { return line == "#"; }

struct KeyValue {
  std::string_view key;
  std::string_view value;
};

// A line without "=" is key and value both.
inline KeyValue Split(std::string_view line) {
  const std::size_t place = line.find('=');
  if (place == line.npos) return {line, line};
  return {line.substr(0, place), line.substr(place + 1)};
}

struct Number {
  int value = 0;
  bool plain = true;  // the text is a number and nothing else, and the value is that number
};
Number ParseNumber(std::string_view text);

// Calls visit(item) for the items of a list until it gives false. Even an empty text has one item.
template <class Visit>
void ForEachItem(std::string_view text, Visit&& visit) {
  while (true) {
    const std::size_t comma = text.find(',');
    if (!visit(text.substr(0, comma)) || comma == text.npos) return;
    text.remove_prefix(comma + 1);
  }
}

}  // namespace nvx::adjust
