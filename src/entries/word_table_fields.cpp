#include "entries/entry_fields.h"

namespace nvx {

GivenArrays DescribeWordArrays(FieldCodec& codec, const WordArrays& told, std::size_t count) {
  std::vector<std::span<const std::int32_t>> words;
  for (std::size_t i = 0; i < told.Count(); ++i) {
    words.push_back(told.Words(static_cast<std::int64_t>(i)));
  }
  GivenArrays given;
  const auto wanted = static_cast<std::int64_t>(count);
  codec.List(
      {.name = "parameters", .count = {wanted, wanted}}, words,
      [&](std::span<const std::int32_t> array) { codec.Tell({}, array); },
      [&](std::size_t) { codec.Numbers({}, given.emplace_back()); });
  return given;
}

void SetWords(WordArrays& arrays, const GivenArrays& given) {
  for (std::size_t i = 0; i < given.size(); ++i) {
    const auto words = arrays.Words(static_cast<std::int64_t>(i));
    std::copy(given[i].begin(), given[i].end(), words.begin());
  }
}

}  // namespace nvx
