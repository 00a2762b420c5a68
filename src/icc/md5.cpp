#include "icc/md5.h"

#include "core/byte_order.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace nvx {
namespace {

constexpr std::array<std::uint32_t, 64> kSines{
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391,
};

constexpr int kShifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

}  // namespace

void Md5::Transform(const std::uint8_t* block) {
  std::array<std::uint32_t, 16> words;
  LoadLittleRun(words.data(), block, words.size());
  auto [a, b, c, d] = state_;
  for (unsigned i = 0; i < 64; ++i) {
    std::uint32_t mixed;
    unsigned word;
    if (i < 16) {
      mixed = (b & c) | (~b & d);
      word = i;
    } else if (i < 32) {
      mixed = (d & b) | (~d & c);
      word = (5 * i + 1) % 16;
    } else if (i < 48) {
      mixed = b ^ c ^ d;
      word = (3 * i + 5) % 16;
    } else {
      mixed = c ^ (b | ~d);
      word = 7 * i % 16;
    }
    const std::uint32_t turned = std::rotl(a + mixed + kSines[i] + words[word], kShifts[i / 16][i % 4]);
    a = d;
    d = c;
    c = b;
    b += turned;
  }
  state_[0] += a;
  state_[1] += b;
  state_[2] += c;
  state_[3] += d;
}

void Md5::Update(const void* bytes, std::size_t size) {
  const std::uint8_t* in = static_cast<const std::uint8_t*>(bytes);
  const std::size_t held = static_cast<std::size_t>(length_ % kBlockSize);
  length_ += size;
  if (held != 0) {
    const std::size_t taken = std::min(size, kBlockSize - held);
    std::memcpy(pending_.data() + held, in, taken);
    in += taken;
    size -= taken;
    if (held + taken < kBlockSize) return;
    Transform(pending_.data());
  }
  for (; size >= kBlockSize; in += kBlockSize, size -= kBlockSize) Transform(in);
  if (size != 0) std::memcpy(pending_.data(), in, size);
}

Md5Digest Md5::Finish() {
  std::array<std::uint8_t, kBlockSize + 8> tail{0x80};
  const std::size_t held = static_cast<std::size_t>(length_ % kBlockSize);
  const std::size_t padding = (held < 56 ? 56 : 120) - held;
  StoreLittle<std::uint64_t>(tail.data() + padding, length_ * 8);
  Update(tail.data(), padding + 8);
  Md5Digest digest;
  StoreLittleRun(digest.data(), state_.data(), state_.size());
  return digest;
}

}  // namespace nvx
