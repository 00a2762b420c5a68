#include "icc/description.h"

#include "core/byte_order.h"
#include "platform/locale.h"

#include <string>
#include <vector>

namespace nvx {
namespace {

constexpr std::size_t kLongest = 127;

bool IsFirstOfPair(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }

void DropLastCharacter(std::u16string& text) {
  text.pop_back();
  if (!text.empty() && IsFirstOfPair(text.back())) text.pop_back();
}

std::u16string Cut(std::u16string text) {
  if (text.size() <= kLongest) return text;
  text.resize(kLongest);
  if (IsFirstOfPair(text.back())) text.pop_back();
  return text;
}

// Cut between characters, which may take several bytes.
std::string CutToAnsi(std::u16string text) {
  std::string narrow = platform::WideToAnsi(text);
  while (narrow.size() > kLongest) {
    DropLastCharacter(text);
    narrow = platform::WideToAnsi(text);
  }
  return narrow;
}

}  // namespace

void RewriteDescription(CICCProfile& profile, CNvxFile& file) {
  std::uint32_t size = 0;
  const std::uint8_t* const tag = profile.GetRefTag("desc", size);
  if (size < 4 || LoadBig<std::uint32_t>(tag) != CICCTextDescription::kTypeSignature) return;
  CICCTextDescription description;
  description.Parse(tag, size);

  char16_t fileName[CNvxFile::kPathLength];
  file.GetFileName(fileName);
  // A name may hold what no text does.
  const std::u16string name = Cut(platform::Utf8ToWide(platform::WideToUtf8(fileName)));
  description.SetUnicodeDescription(name.c_str());
  description.SetAsciiDescription(CutToAnsi(name).c_str());

  std::vector<std::uint8_t> form(description.GetSerializedSize());
  description.Serialize(form.data(), static_cast<std::uint32_t>(form.size()));
  profile.SetTag("desc", form.data(), static_cast<std::uint32_t>(form.size()));
}

}  // namespace nvx
