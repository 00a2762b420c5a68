// Wide text as Windows takes it. Both kinds of unit hold UTF-16 in two bytes.
#pragma once

#include <string>
#include <string_view>

namespace nvx::platform {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

inline const wchar_t* Native(const char16_t* text) { return reinterpret_cast<const wchar_t*>(text); }
inline std::u16string_view Units(std::wstring_view text) {
  return {reinterpret_cast<const char16_t*>(text.data()), text.size()};
}
inline std::wstring NativeText(std::u16string_view text) { return {Native(text.data()), text.size()}; }

}  // namespace nvx::platform
