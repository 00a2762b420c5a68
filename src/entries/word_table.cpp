#include "entries/word_table.h"

#include <limits>

namespace nvx {

std::uint64_t ArraysSize(const WordArrays& arrays) {
  std::uint64_t size = 0;
  for (std::size_t i = 0; i < arrays.Count(); ++i) {
    size += kBlockMagicSize + kWordSize * arrays.Words(static_cast<std::int64_t>(i)).size();
  }
  return size;
}

bool HoldsBlock(CNvxFile& file, std::uint64_t start, std::uint64_t size) {
  const std::uint64_t length = file.GetLength();
  return start <= length && size <= length - start;
}

std::optional<TwoArrayLengths> FindArrayLengths(CNvxFile& file, std::uint64_t start, std::uint32_t dataSize) {
  std::uint8_t word[kWordSize];
  if (!SeekTo(file, start + kBlockMagicSize) || !ReadExact(file, word, sizeof word)) {
    RefuseAt(file, start, "array 0: no length, the block is cut short");
    return std::nullopt;
  }
  const auto byteLength = LoadLittle<std::uint32_t>(word);
  const std::uint32_t rest = (dataSize - byteLength) / 4;
  if (byteLength > dataSize || rest < 2) {
    RefuseAt(file, start + kBlockMagicSize, "array 0: its first word is longer than the data size of the record");
    return std::nullopt;
  }
  const TwoArrayLengths lengths{byteLength / 4, rest - 2};
  if (!HoldsBlock(file, start, lengths.BlockSize())) {
    RefuseAt(file, start, "arrays: lengths beyond the end");
    return std::nullopt;
  }
  return lengths;
}

bool ReadWords(CNvxFile& file, std::span<std::int32_t> words) {
  if (!Holds(file, words.size(), kWordSize)) return Refuse(file, "array: cut short");
  const StreamBlock block(file, static_cast<std::uint32_t>(words.size_bytes()));
  if (!block.IsWhole()) return Refuse(file, "array: cut short");
  LoadLittleRun(reinterpret_cast<std::uint32_t*>(words.data()), block.Data(), words.size());
  return true;
}

bool WriteWords(CNvxFile& file, std::uint32_t magic, std::span<const std::int32_t> words) {
  if (!WriteMagic(file, magic)) return false;
  if constexpr (std::endian::native == std::endian::little) {
    return WriteExact(file, words.data(), static_cast<std::uint32_t>(words.size_bytes()));
  }
  std::vector<std::uint32_t> stored(words.size());
  StoreLittleRun(stored.data(), reinterpret_cast<const std::uint32_t*>(words.data()), words.size());
  return WriteExact(file, stored.data(), static_cast<std::uint32_t>(words.size_bytes()));
}

bool WriteTwoArrays(CNvxFile& file, const TwoArrayMagics& magics, const WordArrays& arrays) {
  return WriteWords(file, magics.first, arrays.Words(0)) && WriteWords(file, magics.second, arrays.Words(1));
}

bool SaysItsLength(const WordArrays& arrays) {
  if (arrays.Count() != 2 || arrays.Words(0).empty()) return false;
  if (ArraysSize(arrays) > std::numeric_limits<std::uint32_t>::max()) return false;
  return static_cast<std::uint32_t>(arrays.Get(0, 0)) == kWordSize * arrays.Words(0).size();
}

}  // namespace nvx
