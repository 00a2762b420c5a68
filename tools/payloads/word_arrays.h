// Word arrays as JSON: one array of numbers for each.
#pragma once

#include "payload.h"

#include <nvxprofile/word_arrays.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace nvx::tool {

inline Json WordArraysToJson(const WordArrays& arrays) {
  Json json = Json::array();
  for (std::size_t i = 0; i < arrays.Count(); ++i) {
    Json words = Json::array();
    for (const std::int32_t word : arrays.Words(static_cast<std::int64_t>(i))) words.push_back(word);
    json.push_back(std::move(words));
  }
  return json;
}

// The node's arrays, `count` of them. Throws DocumentError.
inline std::vector<std::vector<std::int32_t>> WordArraysFromJson(const Node& node, std::size_t count) {
  std::vector<std::vector<std::int32_t>> arrays;
  for (const Node& item : node.Items()) {
    std::vector<std::int32_t>& words = arrays.emplace_back();
    for (const Node& word : item.Items()) words.push_back(word.I32());
  }
  if (arrays.size() != count) node.Fail("the number of arrays must be " + std::to_string(count));
  return arrays;
}

// Stores the words; the table has arrays of these lengths already.
template <class Table>
void SetWords(Table& table, const std::vector<std::vector<std::int32_t>>& arrays) {
  for (std::size_t i = 0; i < arrays.size(); ++i) {
    const auto words = table.Arrays().Words(static_cast<std::int64_t>(i));
    std::copy(arrays[i].begin(), arrays[i].end(), words.begin());
  }
}

}  // namespace nvx::tool
