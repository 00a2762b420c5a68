// The MD5 message digest (RFC 1321), which the Profile ID of an ICC profile is.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace nvx {

using Md5Digest = std::array<std::uint8_t, 16>;

class Md5 {
 public:
  void Update(const void* bytes, std::size_t size);
  // The digest of all that went in; the object is used up.
  Md5Digest Finish();

 private:
  static constexpr std::size_t kBlockSize = 64;

  void Transform(const std::uint8_t* block);

  std::array<std::uint32_t, 4> state_{0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
  std::uint64_t length_ = 0;
  std::array<std::uint8_t, kBlockSize> pending_{};
};

}  // namespace nvx
