#include "core/stream.h"
#include "core/text.h"

#include <nvxprofile/icc_profile.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

bool CICCTextDescription::Parse(const void* data, std::uint32_t size) {
  // The stream only reads, so that the block stays as it is.
  CICCProfileBufferAccess stream(const_cast<void*>(data), data != nullptr ? size : 0);
  typeSignature_ = stream.ReadUInt32();
  reserved_ = stream.ReadUInt32();

  const std::uint32_t asciiCount = stream.ReadUInt32();
  std::string ascii(std::min(asciiCount, nvx::Remaining(stream)), '\0');
  stream.Read(ascii.data(), static_cast<std::uint32_t>(ascii.size()));
  ascii_ = ascii.substr(0, ascii.find('\0'));

  languageCode_ = stream.ReadUInt32();
  const std::uint32_t unicodeCount = stream.ReadUInt32();
  unicode_.resize(std::min(unicodeCount, nvx::Remaining(stream) / 2));
  for (char16_t& character : unicode_) character = stream.ReadUInt16();

  scriptCode_ = stream.ReadUInt16();
  macintoshCount_ = stream.ReadUInt8();
  macintosh_.assign(kMacintoshSize, 0);
  stream.Read(macintosh_.data(), kMacintoshSize);
  return true;
}

std::uint32_t CICCTextDescription::GetSerializedSize() const {
  const std::size_t ascii = ascii_.empty() ? 0 : ascii_.size() + 1;
  const std::size_t unicode = unicode_.empty() ? 0 : 2 * (unicode_.size() + 1);
  return static_cast<std::uint32_t>(12 + ascii + 8 + unicode + 3 + macintosh_.size());
}

bool CICCTextDescription::Serialize(void* data, std::uint32_t size) const {
  // A block of its own first: a stream over the caller's would try to resize one that is too small.
  std::vector<std::uint8_t> form(GetSerializedSize());
  CICCProfileBufferAccess stream(form.data(), static_cast<std::uint32_t>(form.size()));
  stream.WriteUInt32(typeSignature_);
  stream.WriteUInt32(reserved_);

  const std::uint32_t asciiCount = ascii_.empty() ? 0 : static_cast<std::uint32_t>(ascii_.size() + 1);
  stream.WriteUInt32(asciiCount);
  stream.Write(ascii_.c_str(), asciiCount);

  stream.WriteUInt32(languageCode_);
  const std::uint32_t unicodeCount = unicode_.empty() ? 0 : static_cast<std::uint32_t>(unicode_.size() + 1);
  stream.WriteUInt32(unicodeCount);
  for (std::uint32_t i = 0; i < unicodeCount; ++i) stream.WriteUInt16(unicode_.c_str()[i]);

  stream.WriteUInt16(scriptCode_);
  stream.WriteUInt8(macintoshCount_);
  stream.Write(macintosh_.data(), static_cast<std::uint32_t>(macintosh_.size()));
  if (size != 0) std::memcpy(data, form.data(), std::min<std::size_t>(size, form.size()));
  return true;
}

void CICCTextDescription::SetAsciiDescription(const char* text) { ascii_ = nvx::TextOf(text); }
void CICCTextDescription::SetUnicodeDescription(const char16_t* text) { unicode_ = nvx::TextOf(text); }
