// Numbers as the library's own forms (little-endian) and ICC data (big-endian) store them.
#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <cstring>

namespace nvx {

template <std::unsigned_integral T>
constexpr T SwapBytes(T value) {
  if constexpr (sizeof(T) == 2) return static_cast<T>(__builtin_bswap16(value));
  if constexpr (sizeof(T) == 4) return static_cast<T>(__builtin_bswap32(value));
  if constexpr (sizeof(T) == 8) return static_cast<T>(__builtin_bswap64(value));
  return value;
}

template <std::unsigned_integral T>
T LoadLittle(const void* bytes) {
  T value;
  std::memcpy(&value, bytes, sizeof value);
  return std::endian::native == std::endian::little ? value : SwapBytes(value);
}

template <std::unsigned_integral T>
void StoreLittle(void* bytes, T value) {
  if constexpr (std::endian::native != std::endian::little) value = SwapBytes(value);
  std::memcpy(bytes, &value, sizeof value);
}

template <std::unsigned_integral T>
T LoadBig(const void* bytes) {
  T value;
  std::memcpy(&value, bytes, sizeof value);
  return std::endian::native == std::endian::big ? value : SwapBytes(value);
}

template <std::unsigned_integral T>
void StoreBig(void* bytes, T value) {
  if constexpr (std::endian::native != std::endian::big) value = SwapBytes(value);
  std::memcpy(bytes, &value, sizeof value);
}

// The number whose little-endian bytes are the four characters, as the magics of the forms are compared.
constexpr std::uint32_t Magic(const char (&text)[5]) {
  return static_cast<std::uint32_t>(static_cast<unsigned char>(text[0])) |
         static_cast<std::uint32_t>(static_cast<unsigned char>(text[1])) << 8 |
         static_cast<std::uint32_t>(static_cast<unsigned char>(text[2])) << 16 |
         static_cast<std::uint32_t>(static_cast<unsigned char>(text[3])) << 24;
}

// Copies or swaps a run of numbers between memory and a little-endian form. The runs must not overlap.
template <std::unsigned_integral T>
void LoadLittleRun(T* values, const void* bytes, std::size_t count) {
  if (count == 0) return;
  std::memcpy(values, bytes, count * sizeof(T));
  if constexpr (std::endian::native != std::endian::little) {
    for (std::size_t i = 0; i < count; ++i) values[i] = SwapBytes(values[i]);
  }
}

template <std::unsigned_integral T>
void StoreLittleRun(void* bytes, const T* values, std::size_t count) {
  if (count == 0) return;
  std::memcpy(bytes, values, count * sizeof(T));
  if constexpr (std::endian::native != std::endian::little) {
    T* const stored = static_cast<T*>(bytes);
    for (std::size_t i = 0; i < count; ++i) stored[i] = SwapBytes(stored[i]);
  }
}

}  // namespace nvx
