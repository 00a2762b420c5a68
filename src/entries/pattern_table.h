// Tables of patterns under printing conditions, as large parameters and special colour information hold them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace nvx {

// A value in a table that passes for every value of a query.
inline constexpr std::int32_t kAnyValue = -1;

// The rules work one way: a -1 or a multiple of 100 in a query is an ordinary value.
inline bool PassesValue(std::int32_t stored, std::int32_t wanted) { return stored == wanted || stored == kAnyValue; }

// A stored multiple of 100 also passes for its whole hundred; the divisions truncate towards zero.
inline bool PassesHundred(std::int32_t stored, std::int32_t wanted) {
  return PassesValue(stored, wanted) || (stored % 100 == 0 && stored / 100 == wanted / 100);
}

// Records of equal length, one a pattern, behind some head words. The length of a record is worked out from the pattern
// count, a stored number that may be anything: every word is looked for before it is read.
class PatternTable {
 public:
  PatternTable(std::span<const std::int32_t> words, std::size_t headWords, std::int32_t patternCount)
      : words_(words), head_(headWords), patternCount_(patternCount) {
    if (patternCount > 0 && words.size() > headWords) {
      stride_ = (words.size() - headWords) / static_cast<std::size_t>(patternCount);
    }
  }

  // Words of a record; 0 for more patterns than words.
  std::size_t Stride() const { return stride_; }

  // Patterns that a walk has to look at, never more than there are words. Records of no length are all the same.
  std::int32_t Count() const { return patternCount_ < 1 ? 0 : stride_ == 0 ? 1 : patternCount_; }

  // The record of a pattern: its words, and all words behind them. Empty for a pattern that is not there.
  std::span<const std::int32_t> Record(std::int32_t pattern) const {
    if (pattern < 0 || pattern >= Count() || words_.size() <= head_) return {};
    return words_.subspan(head_ + static_cast<std::size_t>(pattern) * stride_);
  }

  // 0 for a word that is not there.
  std::int32_t Word(std::int32_t pattern, std::int64_t word) const {
    const auto record = Record(pattern);
    const bool isThere = word >= 0 && static_cast<std::uint64_t>(word) < record.size();
    return isThere ? record[static_cast<std::size_t>(word)] : 0;
  }

  // The first pattern whose record holds `length` words and passes, else -1.
  template <class Passes>
  std::int32_t FindFirst(std::size_t length, Passes passes) const {
    for (std::int32_t pattern = 0; pattern < Count(); ++pattern) {
      const auto record = Record(pattern);
      if (record.size() < length) break;  // and so are all behind it
      if (passes(record)) return pattern;
    }
    return -1;
  }

 private:
  std::span<const std::int32_t> words_;
  std::size_t head_;
  std::size_t stride_ = 0;
  std::int32_t patternCount_;
};

}  // namespace nvx
