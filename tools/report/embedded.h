// What the build embeds into the tool: the files of page/ and the charting library. embed.cmake writes the definitions.
#pragma once

#include <string_view>

namespace nvx::tool {

// A file's text, and its SHA-256 in hexadecimal.
struct Embedded {
  std::string_view text;
  std::string_view sha256;
};

extern const Embedded kPageTemplate;
extern const Embedded kPageStyle;
extern const Embedded kPageScript;
extern const Embedded kChartLibrary;  // empty if the build did not find it

}  // namespace nvx::tool
