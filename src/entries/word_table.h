// What the forms of large parameters and of special colour information share: a list of records, then for each record
// a data block of word arrays, of which the first says in its first word how many bytes it has.
#pragma once

#include "core/form.h"

#include <nvxprofile/word_arrays.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <type_traits>
#include <vector>

namespace nvx {

inline constexpr std::uint64_t kWordSize = 4;
inline constexpr std::uint64_t kBlockMagicSize = 4;

struct WordTableRecord {
  std::uint32_t magic = 0;
  std::uint32_t usedType = 0;
  std::uint32_t dataSize = 0;  // of all arrays with their magics
  std::int32_t count = 0;      // of patterns, or of words

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Number("magic", record.magic);
    codec.OwnSize("record size");
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

// Bytes of all arrays, each with a magic before it.
std::uint64_t ArraysSize(const WordArrays& arrays);

// True if the stream holds `size` bytes from `start` on.
bool HoldsBlock(CNvxFile& file, std::uint64_t start, std::uint64_t size);

// A table that a record describes: without its words yet, and the size of the block that holds them. Without a table if
// the record makes none.
template <class Table>
struct FoundTable {
  Table* table = nullptr;
  std::uint64_t blockSize = 0;
};

// Reads the records at the position of the stream and the blocks behind them. find(record, start) gives the table of a
// record whose block starts at `start`, or nothing where it cannot; read(table) reads a block. All blocks are read,
// also those behind one that fails. A count below 0 counts as 0.
template <class Find, class Read>
bool ReadWordTables(CNvxFile& file, std::int32_t count, Find find, Read read) {
  RecordTable<WordTableRecord> records;
  if (!records.Read(file, static_cast<std::uint32_t>(std::max(count, 0)), "records")) return false;
  using Found = typename std::invoke_result_t<Find, WordTableRecord, std::uint64_t>::value_type;
  std::vector<Found> tables;
  const std::uint64_t start = file.GetPosition();
  std::uint64_t end = start;
  for (std::uint32_t i = 0; i < records.Count(); ++i) {
    const auto found = find(records.At(i), end);
    if (!found) return false;
    tables.push_back(*found);
    end += found->blockSize;
  }
  bool complete = true;
  std::uint64_t block = start;
  for (const Found& found : tables) {
    if (found.table != nullptr) complete = SeekTo(file, block) && read(*found.table) && complete;
    block += found.blockSize;
  }
  return SeekTo(file, end) && complete;
}

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
