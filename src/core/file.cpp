#include "core/text.h"
#include "platform/file_system.h"

#include <nvxprofile/file.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace platform = nvx::platform;

// Bytes read ahead lie between begin and end; bytes not yet written between 0 and end.
struct CNvxFile::Buffer {
  static constexpr std::uint32_t kCapacity = 32768;

  std::array<std::uint8_t, kCapacity> bytes;
  std::uint32_t begin = 0;
  std::uint32_t end = 0;
  bool writing = false;

  std::uint32_t Ahead() const { return writing ? 0 : end - begin; }
};

CNvxFile::CNvxFile() = default;

CNvxFile::~CNvxFile() {
  FlushWrites();
  if (handle_ != platform::kNoFile) platform::CloseFile(handle_);
}

bool CNvxFile::Open(const char16_t* path, std::uint32_t access, std::uint32_t share, std::uint32_t creation) {
  const std::u16string_view text = nvx::TextOf(path);
  if (text.empty()) return false;
  const platform::FileHandle handle = platform::OpenFile(text, access, share, creation);
  if (handle == platform::kNoFile) return false;
  Attach(handle, text);
  writable_ = (access & nvx::kGenericWrite) != 0;
  return true;
}

void CNvxFile::Attach(std::intptr_t handle, std::u16string_view path) {
  // The path may be the one that is stored here.
  std::u16string kept(path);
  Close();
  handle_ = handle;
  writable_ = true;
  failed_ = false;
  if (kept.size() < kPathLength) {
    nvx::CopyText(path_, kept);
  } else {
    longPath_ = std::move(kept);
  }
}

void CNvxFile::Close() {
  FlushWrites();
  if (handle_ != platform::kNoFile) platform::CloseFile(handle_);
  handle_ = platform::kNoFile;
  if (buffer_) *buffer_ = Buffer();
  position_ = 0;
  path_[0] = 0;
  longPath_.clear();
}

CNvxFile::Buffer& CNvxFile::UseBuffer() {
  if (!buffer_) buffer_ = std::make_unique<Buffer>();
  return *buffer_;
}

bool CNvxFile::FlushWrites() {
  if (buffer_ && buffer_->writing) {
    if (platform::WriteFile(handle_, buffer_->bytes.data(), buffer_->end) != buffer_->end) failed_ = true;
    buffer_->writing = false;
    buffer_->begin = buffer_->end = 0;
  }
  return !failed_;
}

// Takes the handle back to where the caller thinks it is.
void CNvxFile::DropReads() {
  if (!buffer_ || buffer_->writing || buffer_->end == 0) return;
  if (buffer_->Ahead() != 0) platform::SeekFile(handle_, position_, platform::Origin::kBegin);
  buffer_->begin = buffer_->end = 0;
}

std::uint32_t CNvxFile::Read(void* buffer, std::uint32_t count) {
  if (handle_ == platform::kNoFile || count == 0) return 0;
  FlushWrites();
  auto* const target = static_cast<std::uint8_t*>(buffer);
  std::uint32_t done = 0;
  if (buffer_) {
    done = std::min(count, buffer_->Ahead());
    std::memcpy(target, buffer_->bytes.data() + buffer_->begin, done);
    buffer_->begin += done;
  }
  const std::uint32_t rest = count - done;
  if (rest >= Buffer::kCapacity) {
    done += static_cast<std::uint32_t>(platform::ReadFile(handle_, target + done, rest));
  } else if (rest != 0) {
    Buffer& ahead = UseBuffer();
    ahead.begin = 0;
    ahead.end = static_cast<std::uint32_t>(platform::ReadFile(handle_, ahead.bytes.data(), Buffer::kCapacity));
    const std::uint32_t taken = std::min(rest, ahead.end);
    std::memcpy(target + done, ahead.bytes.data(), taken);
    ahead.begin = taken;
    done += taken;
  }
  position_ += done;
  return done;
}

std::uint32_t CNvxFile::Write(const void* buffer, std::uint32_t count) {
  if (handle_ == platform::kNoFile || !writable_ || failed_) return 0;
  DropReads();
  std::uint32_t done = 0;
  if (count >= Buffer::kCapacity) {
    if (!FlushWrites()) return 0;
    done = static_cast<std::uint32_t>(platform::WriteFile(handle_, buffer, count));
    failed_ = done != count;
  } else if (count != 0) {
    Buffer& pending = UseBuffer();
    if (pending.end + count > Buffer::kCapacity && !FlushWrites()) return 0;
    std::memcpy(pending.bytes.data() + pending.end, buffer, count);
    pending.end += count;
    pending.writing = true;
    done = count;
  }
  position_ += done;
  return done;
}

bool CNvxFile::Flush() { return FlushWrites(); }

std::uint32_t CNvxFile::GetLength() {
  if (handle_ == platform::kNoFile) return 0;
  FlushWrites();
  const std::int64_t size = platform::FileSize(handle_);
  return size < 0 ? 0 : static_cast<std::uint32_t>(size);
}

bool CNvxFile::FitsLength() {
  if (handle_ == platform::kNoFile) return true;
  FlushWrites();
  return platform::FileSize(handle_) <= std::int64_t{UINT32_MAX};
}

std::uint32_t CNvxFile::GetPosition() { return Seek(0, nvx::kFromPosition); }
std::uint32_t CNvxFile::SeekToBegin() { return Seek(0, nvx::kFromBegin); }
std::uint32_t CNvxFile::SeekToEnd() { return Seek(0, nvx::kFromEnd); }

std::uint32_t CNvxFile::Seek(std::uint32_t offset, std::uint32_t origin) {
  if (handle_ == platform::kNoFile) return 0;
  const std::int64_t distance = static_cast<std::int32_t>(offset);
  std::int64_t target = -1;
  if (origin == nvx::kFromBegin) target = distance;
  if (origin == nvx::kFromPosition) target = position_ + distance;
  if (origin == nvx::kFromEnd) {
    FlushWrites();
    const std::int64_t size = platform::FileSize(handle_);
    target = size < 0 ? -1 : size + distance;
  }
  if (target < 0 || target == position_) return static_cast<std::uint32_t>(position_);
  FlushWrites();
  const std::int64_t ahead = buffer_ ? buffer_->Ahead() : 0;
  const std::int64_t behind = buffer_ && ahead != 0 ? buffer_->begin : 0;
  const std::int64_t step = target - position_;
  if (step >= -behind && step < ahead) {
    buffer_->begin = static_cast<std::uint32_t>(buffer_->begin + step);
    position_ = target;
  } else if (platform::SeekFile(handle_, target, platform::Origin::kBegin) == target) {
    if (buffer_) buffer_->begin = buffer_->end = 0;
    position_ = target;
  }
  return static_cast<std::uint32_t>(position_);
}

std::u16string_view CNvxFile::GetPath() const { return longPath_.empty() ? nvx::FieldText(path_) : longPath_; }

void CNvxFile::GetFileName(char16_t* out) const {
  const platform::FileNameParts parts = platform::SplitFileName(GetPath());
  const std::u16string_view name = parts.name.substr(0, kPathLength - 1);
  nvx::CopyOut(out, name);
  nvx::CopyOut(out + name.size(), parts.extension.substr(0, kPathLength - 1 - name.size()));
}

void CNvxFile::GetPathName(char16_t* out) const { nvx::CopyOut(out, nvx::FieldText(path_)); }

void* CNvxFile::GetHandle() const {
  return reinterpret_cast<void*>(handle_);  // NOLINT(performance-no-int-to-ptr): a handle is published as a pointer
}
