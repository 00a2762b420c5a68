// Comma-separated values.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace nvx::tool {

struct CsvRow {
  std::vector<std::string> cells;
  std::size_t line = 0;
};

// The rows of a text, without empty lines. A field in quotes may hold commas and line ends; a quote in it is written
// twice. Throws TextError for quotes that are not closed.
std::vector<CsvRow> ReadCsv(std::string_view text);

}  // namespace nvx::tool
