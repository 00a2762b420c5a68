// Broken-down time, as the information records hold it.
#pragma once

#include <cstdint>

// Windows has this structure already, and a program may use both.
#if defined(_WIN32)

#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#if defined(_M_X64) && !defined(_AMD64_)
#define _AMD64_
#endif

#include <windef.h>

#include <minwinbase.h>

#else

// A date and a time of day, in the local zone.
struct _SYSTEMTIME {
  std::uint16_t wYear = 0;
  std::uint16_t wMonth = 0;  // 1 to 12
  std::uint16_t wDayOfWeek = 0;
  std::uint16_t wDay = 0;
  std::uint16_t wHour = 0;
  std::uint16_t wMinute = 0;
  std::uint16_t wSecond = 0;
  std::uint16_t wMilliseconds = 0;
};

// The name that the records use.
using SYSTEMTIME = _SYSTEMTIME;

#endif
