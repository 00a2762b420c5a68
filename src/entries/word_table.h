// What the forms of large parameters and of special colour information share: a list of records, then for each record
// a data block of word arrays, of which the first says in its first word how many bytes it has.
#pragma once

#include "core/record.h"
#include "core/stream.h"

#include <nvxprofile/word_arrays.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace nvx {

inline constexpr std::uint64_t kWordSize = 4;
inline constexpr std::uint64_t kBlockMagicSize = 4;

struct WordTableRecord {
  std::uint32_t magic = 0;
  std::uint32_t recordSize = 20;
  std::uint32_t usedType = 0;
  std::uint32_t dataSize = 0;  // of all arrays with their magics
  std::int32_t count = 0;      // of patterns, or of words

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Number("magic", record.magic);
    codec.Number("record size", record.recordSize);
    codec.Number("used type", record.usedType);
    codec.Number("data size", record.dataSize);
    codec.Number("count", record.count);
  }
};

static_assert(kRecordSize<WordTableRecord> == 20);

// The magics before the two arrays of a data block.
struct TwoArrayMagics {
  std::uint32_t first;
  std::uint32_t second;
};

// Lengths in words.
struct TwoArrayLengths {
  std::uint32_t first;
  std::uint32_t second;

  std::uint64_t BlockSize() const { return 2 * kBlockMagicSize + kWordSize * (std::uint64_t{first} + second); }
};

// Gives an object its two arrays; null sizes count as lengths of 0.
inline void ShapeTwoArrays(WordArrays& arrays, const std::uint32_t* sizes) {
  arrays.SetCount(2);
  for (std::size_t i = 0; i < 2; ++i) arrays.Resize(i, sizes != nullptr ? sizes[i] : 0);
}

// The records at the position of the stream; nothing if the stream does not hold them. A count below 0 counts as 0.
std::optional<std::vector<WordTableRecord>> ReadWordTableRecords(CNvxFile& file, std::int32_t count);

// Bytes of all arrays, each with a magic before it.
std::uint64_t ArraysSize(const WordArrays& arrays);

// True if the stream holds `size` bytes from `start` on.
bool HoldsBlock(CNvxFile& file, std::uint64_t start, std::uint64_t size);

// Puts the stream at an offset from its start; false beyond the end.
bool SeekTo(CNvxFile& file, std::uint64_t offset);

// Header, records and data blocks, one of each for each table. Nothing is written of a form that is too long.
template <class Header, class Tables, class RecordOf, class WriteBlock>
bool WriteWordTables(CNvxFile& file, const Header& header, const Tables& tables, RecordOf recordOf,
                     WriteBlock writeBlock) {
  return WriteIfItFits(file, [&](CNvxFile& stream) {
    return WriteForm(stream, header, tables, recordOf, [&](auto& table) { return writeBlock(stream, table); });
  });
}

// Lengths of the arrays in the block at `start`, of which the record says the data size; nothing for lengths that lead
// out of the stream. The position of the stream afterwards is not said.
std::optional<TwoArrayLengths> FindArrayLengths(CNvxFile& file, std::uint64_t start, std::uint32_t dataSize);

// A block of words at the position, without and with a magic before it.
bool ReadWords(CNvxFile& file, std::span<std::int32_t> words);
bool WriteWords(CNvxFile& file, std::uint32_t magic, std::span<const std::int32_t> words);

// The two arrays of a block, each behind its magic. A wrong magic is refused.
bool WriteTwoArrays(CNvxFile& file, const TwoArrayMagics& magics, const WordArrays& arrays);

// True if there are two arrays and word 0 of the first is its byte length, so that FindArrayLengths finds it again.
bool SaysItsLength(const WordArrays& arrays);

}  // namespace nvx
