#include "report/icc_part.h"

#include "icc_facts.h"
#include "report/gamut.h"
#include "report/samples.h"

#include <nvxprofile/icc_header.h>
#include <nvxprofile/text_conversion.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint32_t kDescription = 0x64657363;    // "desc", a tag and a type
constexpr std::uint32_t kMultiLanguage = 0x6D6C7563;  // "mluc"

std::uint32_t Number(Bytes bytes, std::size_t at, std::size_t size) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < size; ++i) value = value << 8 | (at + i < bytes.size() ? bytes[at + i] : 0u);
  return value;
}

std::string Ascii(Bytes bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    if (byte == 0) break;
    text += byte < 0x80 ? static_cast<char>(byte) : '?';
  }
  return text;
}

std::string Utf16(Bytes bytes) {
  std::u16string text;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) text += static_cast<char16_t>(Number(bytes, i, 2));
  return WideToUtf8(text.substr(0, text.find(u'\0')));
}

Bytes Part(Bytes bytes, std::size_t at, std::size_t size) {
  const std::size_t start = std::min(at, bytes.size());
  return bytes.subspan(start, std::min(size, bytes.size() - start));
}

// The texts of a description tag of either type, with their languages.
Json Descriptions(Bytes tag) {
  constexpr std::size_t kRecordSize = 12;
  Json texts = Json::array();
  if (Number(tag, 0, 4) == kDescription) {
    texts.push_back({{"language", ""}, {"text", Ascii(Part(tag, 12, Number(tag, 8, 4)))}});
  } else if (Number(tag, 0, 4) == kMultiLanguage) {
    const std::size_t most = tag.size() / kRecordSize;
    for (std::size_t i = 0; i < std::min<std::size_t>(Number(tag, 8, 4), most); ++i) {
      const std::size_t record = 16 + i * kRecordSize;
      texts.push_back({{"language", Ascii(Part(tag, record, 2))},
                       {"text", Utf16(Part(tag, Number(tag, record + 8, 4), Number(tag, record + 4, 4)))}});
    }
  }
  return texts;
}

// Three numbers of 16 bits for each colour, in hundredths.
std::string PackLab(const std::vector<Lab>& colors) {
  std::vector<std::uint32_t> numbers;
  for (const Lab& color : colors) {
    for (const double value : {color.l, color.a, color.b}) {
      const double hundredths = std::clamp(std::round(value * 100), -32768.0, 32767.0);
      numbers.push_back(static_cast<std::uint16_t>(static_cast<std::int16_t>(hundredths)));
    }
  }
  return PackSamples(numbers, 2);
}

Json GamutToJson(const Gamut& gamut) {
  return {{"tag", gamut.tag},
          {"grid", gamut.grid},
          {"nodes", gamut.nodes},
          {"outline", PackLab(gamut.outline)},
          {"surface", PackLab(gamut.surface)},
          {"paper", PackLab({gamut.paper})},
          {"solids", PackLab(gamut.solids)}};
}

}  // namespace

Json IccPart(Bytes profile) {
  IccDirectory directory;
  if (!ReadIccDirectory(profile.data(), profile.size(), directory)) return nullptr;
  Json part = IccToJson(profile.data(), profile.size());
  const IccTag* const tag = directory.Find(kDescription);
  part["descriptions"] = tag != nullptr ? Descriptions(Part(profile, tag->offset, tag->size)) : Json::array();
  const std::optional<Gamut> gamut = ReadGamut(profile);
  part["gamut"] = gamut ? GamutToJson(*gamut) : Json(nullptr);
  return part;
}

}  // namespace nvx::tool
