#include "core/replacing_file.h"
#include "core/stream.h"
#include "icc/icc_image.h"

#include <nvxprofile/icc_profile.h>

#include <algorithm>
#include <cstring>
#include <utility>

CICCProfile::CICCProfile() = default;
CICCProfile::~CICCProfile() = default;

void CICCProfile::Close() { handle_.reset(); }

bool CICCProfile::OpenBuffer(const void* image, std::uint32_t size, bool headerOnly) {
  Close();
  if (image == nullptr) return false;
  const std::span<const std::uint8_t> bytes(static_cast<const std::uint8_t*>(image), size);
  if (!headerOnly) return Keep(nvx::IccImage::Open(bytes));
  nvx::IccDirectory directory;
  if (!nvx::ReadIccDirectory(image, size, directory)) return false;
  header_ = directory.header;
  return true;
}

bool CICCProfile::OpenPath(const char16_t* path, bool headerOnly) {
  Close();
  CNvxFile file;
  if (!file.Open(path, nvx::kGenericRead, nvx::kNoShare, nvx::kOpenExisting)) return false;
  if (!headerOnly) return Keep(nvx::IccImage::Open(file));
  nvx::IccDirectory directory;
  if (!nvx::ReadIccDirectory(file, directory)) return false;
  header_ = directory.header;
  return true;
}

bool CICCProfile::OpenStream(CNvxFile& file, std::span<const char* const> apart) {
  Close();
  std::vector<std::uint32_t> signatures(apart.size());
  std::transform(apart.begin(), apart.end(), signatures.begin(), MakeTagSignature);
  return Keep(nvx::IccImage::Open(file, signatures));
}

bool CICCProfile::Keep(std::unique_ptr<nvx::IccImage> image) {
  if (!image) return false;
  handle_ = std::move(image);
  return ReadHeader(handle_.get());
}

bool CICCProfile::ReadHeader(const nvx::IccImage* handle) {
  header_ = handle != nullptr ? handle->Header() : nvx::IccHeader();
  return handle != nullptr;
}

std::uint32_t CICCProfile::GetColorCount() const { return nvx::IccColorCount(header_.phDataColorSpace); }

bool CICCProfile::IsCMYK() const { return header_.phDataColorSpace == nvx::Signature("CMYK"); }

std::uint32_t CICCProfile::GetProfileSize() const {
  const std::uint64_t size = handle_ ? handle_->Size() : 0;
  return size <= UINT32_MAX ? static_cast<std::uint32_t>(size) : 0;
}

std::uint32_t CICCProfile::MakeTagSignature(const char* tag) {
  char bytes[4] = {};
  if (tag != nullptr) std::memcpy(bytes, tag, ::strnlen(tag, sizeof bytes));
  return nvx::LoadBig<std::uint32_t>(bytes);
}

bool CICCProfile::IsTagPresent(const char* tag) const {
  return handle_ && handle_->Tag(MakeTagSignature(tag)).has_value();
}

bool CICCProfile::GetTag(const char* tag, void* buffer, std::uint32_t& size) const {
  if (!handle_) return false;
  const auto bytes = handle_->Tag(MakeTagSignature(tag));
  if (!bytes) return buffer == nullptr;
  const std::uint32_t room = size;
  size = static_cast<std::uint32_t>(bytes->size());
  if (buffer == nullptr) return true;
  if (room < size) return false;
  std::memcpy(buffer, bytes->data(), size);
  return true;
}

const std::uint8_t* CICCProfile::GetRefTag(const char* tag, std::uint32_t& size) const {
  const auto bytes = handle_ ? handle_->Tag(MakeTagSignature(tag)) : std::nullopt;
  size = bytes ? static_cast<std::uint32_t>(bytes->size()) : 0;
  return size != 0 ? bytes->data() : nullptr;
}

nvx::SharedBytes CICCProfile::ShareTag(const char* tag) const {
  return handle_ ? handle_->ShareTag(MakeTagSignature(tag)) : nvx::SharedBytes();
}

std::uint32_t CICCProfile::GetTagOffset(const char* tag) const {
  return handle_ ? handle_->OpenedOffset(MakeTagSignature(tag)) : 0;
}

bool CICCProfile::SetTag(const char* tag, const void* data, std::uint32_t size) {
  if (!handle_ || (data == nullptr && size != 0)) return false;
  handle_->SetTag(MakeTagSignature(tag), {static_cast<const std::uint8_t*>(data), size});
  return true;
}

bool CICCProfile::AttachTag(const char* tag, std::uint8_t* block, std::uint32_t size) {
  nvx::SharedBytes bytes = nvx::SharedBytes::Adopt(block, size);
  if (!handle_ || (block == nullptr && size != 0)) return false;
  handle_->SetTag(MakeTagSignature(tag), std::move(bytes));
  return true;
}

bool CICCProfile::CopyImage(std::uint8_t* buffer, std::uint32_t size) {
  return handle_ && buffer != nullptr && handle_->CopyTo({buffer, size});
}

std::uint8_t* CICCProfile::DetachImage(std::uint32_t& size) {
  size = 0;
  if (!handle_) return nullptr;
  nvx::Block image = std::move(*handle_).Release(size);
  if (!image) size = 0;
  Close();
  return image.release();
}

bool CICCProfile::WriteTo(CNvxFile& file) {
  return handle_ && handle_->Take([&](std::span<const std::uint8_t> image) {
    return nvx::WriteExact(file, image.data(), static_cast<std::uint32_t>(image.size()));
  });
}

bool CICCProfile::WriteToPath(const char16_t* path) {
  return handle_ && nvx::SaveByReplacing(path, [&](CNvxFile& file) { return WriteTo(file); });
}
