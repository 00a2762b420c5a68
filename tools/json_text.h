// JSON documents as text.
#pragma once

#include "payload.h"

#include <string>

namespace nvx::tool {

enum class JsonLayout {
  kLine,      // without a blank
  kIndented,  // a line for each value, two blanks for each level
};

// The same text as that of the library that holds the document, some four times as fast: a listing of profiles is
// thousands of short names and numbers. Bytes that are no UTF-8 become U+FFFD.
std::string JsonText(const Json& json, JsonLayout layout);

}  // namespace nvx::tool
