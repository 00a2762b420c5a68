#include "csv.h"

#include "cgats.h"

#include <algorithm>

namespace nvx::tool {
namespace {

class CsvReader {
 public:
  explicit CsvReader(std::string_view text) : rest_(text) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (rest_.starts_with(kByteOrderMark)) rest_.remove_prefix(kByteOrderMark.size());
  }

  std::vector<CsvRow> Rows() {
    std::vector<CsvRow> rows;
    while (!rest_.empty()) {
      CsvRow row{{}, line_};
      do row.cells.push_back(TakeField());
      while (Take(','));
      Take('\r');
      if (!Take('\n') && !rest_.empty()) throw TextError(line_, "a comma is expected behind a quoted field");
      ++line_;
      if (row.cells.size() > 1 || !row.cells.front().empty()) rows.push_back(std::move(row));
    }
    return rows;
  }

 private:
  bool Take(char c) {
    if (!rest_.starts_with(c)) return false;
    rest_.remove_prefix(1);
    return true;
  }

  std::string TakeField() {
    if (rest_.starts_with('"')) return TakeQuoted();
    const std::string_view field = rest_.substr(0, rest_.find_first_of(",\r\n"));
    rest_.remove_prefix(field.size());
    return std::string(field);
  }

  std::string TakeQuoted() {
    std::string field;
    const std::size_t start = line_;
    do {
      const std::size_t end = rest_.find('"', 1);
      if (end == rest_.npos) throw TextError(start, "a quote is not closed");
      field += rest_.substr(0, end);
      rest_.remove_prefix(end + 1);
    } while (rest_.starts_with('"'));
    line_ += static_cast<std::size_t>(std::count(field.begin(), field.end(), '\n'));
    return field.substr(1);
  }

  std::string_view rest_;
  std::size_t line_ = 1;
};

}  // namespace

std::vector<CsvRow> ReadCsv(std::string_view text) { return CsvReader(text).Rows(); }

}  // namespace nvx::tool
