// CGATS text (ISO 28178), in which measuring and calibration tools exchange their tables.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nvx::tool {

// A text that does not say what it should; what() starts with the line.
class TextError : public std::runtime_error {
 public:
  TextError(std::size_t line, const std::string& why)
      : std::runtime_error("line " + std::to_string(line) + ": " + why) {}
};

struct CgatsTable {
  struct Row {
    std::vector<std::string> cells;  // as many as there are fields
    std::size_t line = 0;
  };

  std::string kind;  // the word that opens the table, "CAL"
  std::size_t line = 0;
  std::vector<std::pair<std::string, std::string>> keywords;  // without the quotes
  std::vector<std::string> fields;
  std::size_t fieldsLine = 0;
  std::vector<Row> rows;

  // Null for a keyword that the table does not have.
  const std::string* Find(std::string_view keyword) const;
};

// The tables of a text, one at least. Throws TextError.
std::vector<CgatsTable> ReadCgats(std::string_view text);

// The text of the tables; lines take no part.
std::string WriteCgats(const std::vector<CgatsTable>& tables);

}  // namespace nvx::tool
