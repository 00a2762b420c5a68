#include <nvxprofile/file.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr std::uint32_t kStep = 1024;

}  // namespace

CNvxMemFile::~CNvxMemFile() {
  Buffer = nullptr;
  Length = 0;
}

std::uint32_t CNvxMemFile::Read(void* buffer, std::uint32_t count) {
  if (Buffer == nullptr || Position >= Length) return 0;
  const std::uint32_t done = std::min(Length - Position, count);
  std::memcpy(buffer, Buffer + Position, done);
  Position += done;
  return done;
}

std::uint32_t CNvxMemFile::Write(const void* buffer, std::uint32_t count) {
  if (Buffer == nullptr) {
    Buffer = static_cast<std::uint8_t*>(std::calloc(1, kStep));
    if (Buffer == nullptr) return 0;
    Length = kStep;
    Position = 0;
  }
  if (std::uint64_t{Position} + count > Length) {
    const std::uint64_t length = std::uint64_t{Length} + std::max(kStep, count);
    if (length > UINT32_MAX) return 0;
    void* const resized = std::realloc(Buffer, static_cast<std::size_t>(length));
    if (resized == nullptr) return 0;
    Buffer = static_cast<std::uint8_t*>(resized);
    std::memset(Buffer + Length, 0, static_cast<std::size_t>(length - Length));
    Length = static_cast<std::uint32_t>(length);
  }
  const std::uint32_t done = std::min(Length - Position, count);
  if (done != 0) std::memcpy(Buffer + Position, buffer, done);
  Position += done;
  return done;
}

std::uint32_t CNvxMemFile::GetLength() { return Length; }
std::uint32_t CNvxMemFile::GetPosition() { return Position; }

std::uint32_t CNvxMemFile::SeekToBegin() {
  Position = 0;
  return 0;
}

std::uint32_t CNvxMemFile::SeekToEnd() {
  Position = Length;
  return Position;
}

std::uint32_t CNvxMemFile::Seek(std::uint32_t offset, std::uint32_t origin) {
  if (origin == nvx::kFromBegin) Position = std::min(offset, Length);
  if (origin == nvx::kFromPosition) Position = std::min(Position + offset, Length);
  if (origin == nvx::kFromEnd) Position = offset > Length ? 0 : Length - offset;
  return Position;
}
