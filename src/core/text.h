// Text in fields of fixed size: always cut to the field, always terminated.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace nvx {

// Text of a zero-terminated pointer; null counts as empty.
template <class Char>
std::basic_string_view<Char> TextOf(const Char* text) {
  return text != nullptr ? std::basic_string_view<Char>(text) : std::basic_string_view<Char>();
}

// Text of a field up to its first zero, or the whole field.
template <class Char, std::size_t N>
std::basic_string_view<Char> FieldText(const Char (&field)[N]) {
  return {field, static_cast<std::size_t>(std::find(field, field + N, Char{}) - field)};
}

// Copies text into room for `size` characters, cut, terminated and zero behind. The text may lie inside the target.
template <class Char>
void CopyText(Char* target, std::size_t size, std::basic_string_view<Char> text) {
  const std::size_t length = std::min(text.size(), size - 1);
  std::char_traits<Char>::move(target, text.data(), length);
  std::fill(target + length, target + size, Char{});
}

template <class Char, std::size_t N>
void CopyText(Char (&target)[N], std::basic_string_view<Char> text) {
  CopyText(target, N, text);
}

template <class Char, std::size_t N>
void CopyText(Char (&target)[N], const std::basic_string<Char>& text) {
  CopyText(target, N, std::basic_string_view<Char>(text));
}

// Copies text and terminator to a caller's room, and nothing behind them.
template <class Char>
void CopyOut(Char* out, std::basic_string_view<Char> text) {
  *std::copy(text.begin(), text.end(), out) = Char{};
}

// The beginning of a text that a field of `size` characters holds with its terminator, without half of a pair.
inline std::u16string_view Fitting(std::u16string_view text, std::size_t size) {
  const std::u16string_view fitting = text.substr(0, size - 1);
  const bool halfPair =
      fitting.size() < text.size() && !fitting.empty() && fitting.back() >= 0xD800 && fitting.back() < 0xDC00;
  return fitting.substr(0, fitting.size() - (halfPair ? 1 : 0));
}

// ASCII as wide text, for numbers and fixed texts.
inline std::u16string Widen(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

}  // namespace nvx
