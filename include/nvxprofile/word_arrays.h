// Arrays of signed 32-bit words, the store of large parameters and special colour information.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace nvx {

// At most two growable arrays with their lengths beside them. Reading a word that is not there gives 0, storing to one
// does nothing; no operation leaves the arrays.
class WordArrays {
 public:
  static constexpr std::size_t kMostArrays = 2;

  explicit WordArrays(std::size_t count) : count_(count) {}

  std::size_t Count() const { return count_; }

  // Makes or drops arrays at the end; new ones are empty.
  void SetCount(std::size_t count) {
    for (std::size_t array = count; array < count_; ++array) Resize(array, 0);
    count_ = count;
  }

  // Words already there, up to the new length, are kept; new ones are 0.
  void Resize(std::size_t array, std::uint32_t words) {
    arrays_[array].resize(words);
    lengths_[array] = static_cast<std::int32_t>(words);
  }

  // Empty for an array that is not there.
  std::span<std::int32_t> Words(std::int64_t array) {
    return IsIn(count_, array) ? std::span(arrays_[static_cast<std::size_t>(array)]) : std::span<std::int32_t>();
  }
  std::span<const std::int32_t> Words(std::int64_t array) const {
    return IsIn(count_, array) ? std::span(arrays_[static_cast<std::size_t>(array)]) : std::span<const std::int32_t>();
  }

  // 0 for a word that is not there.
  std::int32_t Get(std::int64_t array, std::int64_t index) const {
    const auto words = Words(array);
    return IsIn(words.size(), index) ? words[static_cast<std::size_t>(index)] : 0;
  }

  // False, with nothing stored, for a word that is not there.
  bool Set(std::int64_t array, std::int64_t index, std::int32_t value) {
    const auto words = Words(array);
    if (!IsIn(words.size(), index)) return false;
    words[static_cast<std::size_t>(index)] = value;
    return true;
  }

  // First word of an array; null for an empty one and for one that is not there.
  std::int32_t* First(std::int64_t array) {
    const auto words = Words(array);
    return words.empty() ? nullptr : words.data();
  }

  // Lengths in words, one for each array; null without arrays. A report for callers: nothing here relies on it.
  std::int32_t* Lengths() { return count_ != 0 ? lengths_.data() : nullptr; }

 private:
  static bool IsIn(std::size_t size, std::int64_t index) {
    return index >= 0 && static_cast<std::uint64_t>(index) < size;
  }

  std::size_t count_;
  std::array<std::int32_t, kMostArrays> lengths_{};
  std::array<std::vector<std::int32_t>, kMostArrays> arrays_;
};

}  // namespace nvx
