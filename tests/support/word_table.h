// The tables of words that are looked up by printing condition: large parameters and special colours.
#pragma once

#include <cstdint>
#include <limits>
#include <vector>

namespace nvx::test {

using Words = std::vector<std::int32_t>;

constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kGreatest = std::numeric_limits<std::int32_t>::max();

template <class Table>
Words ArrayOf(Table& table, std::int32_t array) {
  const auto words = table.Arrays().Words(array);
  return Words(words.begin(), words.end());
}

// Gives the table its patterns and all words of both arrays.
template <class Table>
void FillTable(Table& table, std::int32_t patterns, const Words& first, const Words& second) {
  table.SetPatternCount(patterns);
  for (std::size_t i = 0; i < first.size(); ++i) table.SetParameter(static_cast<std::int32_t>(i), first[i], 0);
  for (std::size_t i = 0; i < second.size(); ++i) table.SetParameter(static_cast<std::int32_t>(i), second[i], 1);
}

}  // namespace nvx::test
