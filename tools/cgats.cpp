#include "cgats.h"
#include "numbers.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace nvx::tool {
namespace {

using Words = std::vector<std::string>;

// Gives the words of one line after the other: bare ones, and quoted ones without their quotes. A # starts a comment.
class Lines {
 public:
  explicit Lines(std::string_view text) : rest_(text) {}

  // The next line that has words; false at the end.
  bool Next(Words& words) {
    words.clear();
    while (words.empty() && !rest_.empty()) {
      const std::size_t end = rest_.find_first_of("\r\n");
      const std::string_view line = rest_.substr(0, end);
      ++number_;
      Split(line, words);
      rest_.remove_prefix(line.size());
      if (rest_.starts_with("\r\n")) {
        rest_.remove_prefix(2);
      } else if (!rest_.empty()) {
        rest_.remove_prefix(1);
      }
    }
    return !words.empty();
  }

  std::size_t Number() const { return number_; }
  [[noreturn]] void Fail(const std::string& why) const { throw TextError(number_, why); }

 private:
  void Split(std::string_view line, Words& words) const {
    while (true) {
      line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
      if (line.empty() || line.front() == '#') return;
      if (line.front() == '"') {
        words.push_back(TakeQuoted(line));
      } else {
        words.emplace_back(line.substr(0, line.find_first_of(" \t")));
        line.remove_prefix(words.back().size());
      }
    }
  }

  // A quote inside of quotes is written twice.
  std::string TakeQuoted(std::string_view& line) const {
    std::string word;
    do {
      const std::size_t end = line.find('"', 1);
      if (end == line.npos) Fail("a quote is not closed");
      word += line.substr(0, end);
      line.remove_prefix(end + 1);
    } while (line.starts_with('"'));
    return word.substr(1);
  }

  std::string_view rest_;
  std::size_t number_ = 0;
};

class CgatsReader {
 public:
  explicit CgatsReader(std::string_view text) : lines_(text) {}

  std::vector<CgatsTable> Tables() {
    std::vector<CgatsTable> tables;
    while (lines_.Next(words_)) tables.push_back(Table());
    if (tables.empty()) lines_.Fail("there is no table");
    return tables;
  }

 private:
  CgatsTable Table() {
    CgatsTable table;
    if (words_.size() != 1) lines_.Fail("a table starts with a word that tells its kind");
    table.kind = words_.front();
    table.line = lines_.Number();
    std::size_t sets = 0;
    std::size_t fields = 0;
    while (true) {
      Advance("BEGIN_DATA");
      const std::string& keyword = words_.front();
      if (keyword == "BEGIN_DATA") break;
      if (keyword == "BEGIN_DATA_FORMAT") {
        ReadFields(table);
      } else if (keyword == "NUMBER_OF_SETS") {
        sets = Count();
      } else if (keyword == "NUMBER_OF_FIELDS") {
        fields = Count();
      } else if (words_.size() == 2) {
        table.keywords.emplace_back(keyword, words_[1]);
      } else {
        lines_.Fail(fmt::format("one value is expected behind {}", keyword));
      }
    }
    if (table.fields.empty()) lines_.Fail("no BEGIN_DATA_FORMAT stands before the data");
    if (fields != table.fields.size()) {
      lines_.Fail(fmt::format("NUMBER_OF_FIELDS says {}, and {} are named", fields, table.fields.size()));
    }
    ReadRows(table);
    if (sets != table.rows.size()) {
      lines_.Fail(fmt::format("NUMBER_OF_SETS says {}, and {} are there", sets, table.rows.size()));
    }
    return table;
  }

  void Advance(const char* wanted) {
    if (!lines_.Next(words_)) lines_.Fail(fmt::format("the text ends before {}", wanted));
  }

  std::size_t Count() const {
    const auto count = NumberOf<std::size_t>(words_.size() == 2 ? words_[1] : std::string());
    if (!count) lines_.Fail(fmt::format("a number is expected behind {}", words_.front()));
    return *count;
  }

  void ReadFields(CgatsTable& table) {
    table.fieldsLine = lines_.Number() + 1;
    while (true) {
      Advance("END_DATA_FORMAT");
      if (words_.front() == "END_DATA_FORMAT") return;
      table.fields.insert(table.fields.end(), words_.begin(), words_.end());
    }
  }

  void ReadRows(CgatsTable& table) {
    while (true) {
      Advance("END_DATA");
      if (words_.front() == "END_DATA") return;
      if (words_.size() != table.fields.size()) {
        lines_.Fail(fmt::format("{} values stand where {} fields are", words_.size(), table.fields.size()));
      }
      table.rows.push_back({std::move(words_), lines_.Number()});
    }
  }

  Lines lines_;
  Words words_;
};

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) quoted += c == '"' ? "\"\"" : c == '\n' || c == '\r' ? " " : std::string(1, c);
  return quoted + '"';
}

}  // namespace

const std::string* CgatsTable::Find(std::string_view keyword) const {
  const auto found =
      std::find_if(keywords.begin(), keywords.end(), [=](const auto& item) { return item.first == keyword; });
  return found != keywords.end() ? &found->second : nullptr;
}

std::vector<CgatsTable> ReadCgats(std::string_view text) { return CgatsReader(text).Tables(); }

std::string WriteCgats(const std::vector<CgatsTable>& tables) {
  std::string text;
  for (const CgatsTable& table : tables) {
    text += fmt::format("{}{}\n\n", text.empty() ? "" : "\n", table.kind);
    for (const auto& [keyword, value] : table.keywords) text += fmt::format("{} {}\n", keyword, Quoted(value));
    text += fmt::format("\nNUMBER_OF_FIELDS {}\nBEGIN_DATA_FORMAT\n{}\nEND_DATA_FORMAT\n", table.fields.size(),
                        fmt::join(table.fields, " "));
    text += fmt::format("\nNUMBER_OF_SETS {}\nBEGIN_DATA\n", table.rows.size());
    for (const CgatsTable::Row& row : table.rows) text += fmt::format("{}\n", fmt::join(row.cells, " "));
    text += "END_DATA\n";
  }
  return text;
}

}  // namespace nvx::tool
