#include "icc_facts.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace nvx::tool {
namespace {

std::string VersionText(std::uint32_t version) {
  return fmt::format("{}.{}.{}", version >> 24, version >> 20 & 0xF, version >> 16 & 0xF);
}

std::string DateText(const std::uint16_t (&date)[6]) {
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", date[0], date[1], date[2], date[3], date[4], date[5]);
}

std::string IntentText(std::uint32_t intent) {
  constexpr std::array<const char*, 4> kIntents{"perceptual", "relative colorimetric", "saturation",
                                                "absolute colorimetric"};
  return intent < kIntents.size() ? kIntents[intent] : std::to_string(intent);
}

std::string HexText(const std::uint8_t (&bytes)[16]) {
  if (std::all_of(std::begin(bytes), std::end(bytes), [](std::uint8_t byte) { return byte == 0; })) return {};
  std::string text;
  for (const std::uint8_t byte : bytes) text += fmt::format("{:02x}", byte);
  return text;
}

double Fixed(std::int32_t value) { return value / 65536.0; }

}  // namespace

std::string SignatureText(std::uint32_t signature) {
  std::string text;
  for (const int shift : {24, 16, 8, 0}) {
    const char c = static_cast<char>(signature >> shift & 0xFF);
    if (c < 0x20 || c > 0x7E) return signature == 0 ? std::string() : fmt::format("{:#010x}", signature);
    text += c;
  }
  return text;
}

std::vector<std::pair<std::string, std::string>> IccFacts(const IccHeader& header) {
  return {{"size", std::to_string(header.phSize)},
          {"cmmType", SignatureText(header.phCMMType)},
          {"version", VersionText(header.phVersion)},
          {"class", SignatureText(header.phClass)},
          {"dataColorSpace", SignatureText(header.phDataColorSpace)},
          {"connectionSpace", SignatureText(header.phConnectionSpace)},
          {"dateTime", DateText(header.phDateTime)},
          {"platform", SignatureText(header.phPlatform)},
          {"profileFlags", fmt::format("{:#x}", header.phProfileFlags)},
          {"manufacturer", SignatureText(header.phManufacturer)},
          {"model", SignatureText(header.phModel)},
          {"attributes", fmt::format("{:#x}", header.phAttributes)},
          {"renderingIntent", IntentText(header.phRenderingIntent)},
          {"illuminant", fmt::format("{:.4f} {:.4f} {:.4f}", Fixed(header.phIlluminant[0]),
                                     Fixed(header.phIlluminant[1]), Fixed(header.phIlluminant[2]))},
          {"creator", SignatureText(header.phCreator)},
          {"profileId", HexText(header.phProfileID)}};
}

Json IccToJson(const std::uint8_t* bytes, std::size_t size) {
  IccDirectory directory;
  if (!ReadIccDirectory(bytes, size, directory)) return nullptr;
  Json header;
  for (const auto& [name, value] : IccFacts(directory.header)) header[name] = value;
  header["size"] = directory.header.phSize;
  Json tags = Json::array();
  for (const IccTag& tag : directory.tags) {
    tags.push_back({{"signature", SignatureText(tag.signature)}, {"offset", tag.offset}, {"size", tag.size}});
  }
  return {{"header", std::move(header)}, {"tags", std::move(tags)}};
}

}  // namespace nvx::tool
