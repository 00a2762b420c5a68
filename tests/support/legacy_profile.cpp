#include "support/legacy_profile.h"

#include "core/byte_order.h"
#include "core/text.h"
#include "platform/locale.h"
#include "support/byte_builder.h"
#include "support/entries.h"
#include "support/icc_builder.h"

#include <cmath>
#include <cstring>
#include <map>
#include <memory>

namespace nvx::test {
namespace {

Bytes Xyz(std::uint32_t x, std::uint32_t y, std::uint32_t z) { return BigBuilder().Text("XYZ ").U32(0, x, y, z); }

// The entries that legacy profiles of tests are put together from, as a container keeps them: what the readers make of
// them cannot follow a change of the writers. tests/data/README.md says what is in it.
class StoredEntries {
 public:
  static const StoredEntries& Get() {
    static const StoredEntries entries;
    return entries;
  }

  struct Stored {
    Bytes header;
    Bytes body;  // with its magic
  };
  const Stored& Of(std::uint32_t type) const { return entries_.at(type); }

 private:
  static constexpr std::size_t kContainerHeader = 32;
  static constexpr std::size_t kEntryHeader = 292;

  StoredEntries() {
    const Bytes file = ReadBytes(std::string(NVXPROFILE_SOURCE_FOLDER) + "/tests/data/legacy_entries.qct");
    const auto word = [&](std::size_t offset) { return LoadLittle<std::uint32_t>(file.data() + offset); };
    const std::size_t count = word(24);
    std::size_t body = kContainerHeader + count * kEntryHeader;
    for (std::size_t i = 0; i < count; ++i) {
      const std::size_t header = kContainerHeader + i * kEntryHeader;
      const std::size_t size = word(header + 16);
      entries_[word(header + 8)] = {Slice(file, header, kEntryHeader), Slice(file, body, size)};
      body += size;
    }
  }

  static Bytes Slice(const Bytes& bytes, std::size_t start, std::size_t size) {
    return Bytes(bytes.data() + start, bytes.data() + start + size);
  }

  std::map<std::uint32_t, Stored> entries_;
};

std::unique_ptr<CProfileDataEntry> MakeEntry(std::uint32_t type) {
  const Bytes& body = StoredEntries::Get().Of(type).body;
  std::unique_ptr<CProfileDataEntry> entry = NewEntry(type, Bytes(body.begin() + 4, body.end()));
  entry->SetComplete(true);
  entry->SetLabelString(("entry " + std::to_string(type)).c_str());
  entry->BufferToData();
  return entry;
}

// One container with the entries of a route.
Bytes Container(std::uint32_t route, const std::vector<std::uint32_t>& types) {
  ByteBuilder container;
  container.Text(" TCQ").U32(32, 0x00010000, 0, route, 0, static_cast<std::uint32_t>(types.size()), 0);
  for (const std::uint32_t type : types) container.Append(StoredEntries::Get().Of(type).header);
  for (const std::uint32_t type : types) container.Append(StoredEntries::Get().Of(type).body);
  return container;
}

std::string JapaneseName() { return platform::AnsiCodePage() == 932 ? "\x8C\xF5\x91\xF2\x83\x5C" : "Kotaku"; }

}  // namespace

std::string ConversionTable() {
  return "[Printer.PX]\r\nModelCode=0042\r\nModelSubCode=07\r\nInternalCode=13\r\nComment=Test printer PX\r\n"
         "[Inkset.SetA]\r\nMaker=3\r\nInk=5\r\nColorset=12\r\nVer=2\r\n"
         "[Printer.00420713:Scan.720:Feed.1080]\r\nRendering_Scan=360\r\nRendering_Feed=540\r\nExpand=4\r\n";
}

std::string TableWithout(const std::string& table, std::string_view key) {
  const std::size_t start = table.find("\n" + std::string(key) + "=") + 1;
  return table.substr(0, start) + table.substr(table.find('\n', start) + 1);
}

LegacyFolder::LegacyFolder(const std::string& table) : variable_("NVXPROFILE_PROFILE_DIR", Path().string()) {
  WriteTable(table);
}

void LegacyFolder::WriteTable(const std::string& table) const {
  WriteBytes(File("QPFConvert.qpd"), Bytes(table.begin(), table.end()));
}

Bytes SmallIccProfile() {
  const Bytes curve = BigBuilder().Text("curv").U32(0, 1).U16(0x0233);
  Bytes profile = IccFile({{"desc", DescriptionTag("Small profile")},
                           {"cprt", BigBuilder().Text("text").U32(0).Text("Free to use").U8(0)},
                           {"wtpt", Xyz(0xF6D6, 0x10000, 0xD32D)},
                           {"rXYZ", Xyz(0x6FA2, 0x38F5, 0x0390)},
                           {"gXYZ", Xyz(0x6299, 0xB785, 0x18DA)},
                           {"bXYZ", Xyz(0x24A0, 0x0F84, 0xB6CF)},
                           {"rTRC", curve},
                           {"gTRC", curve},
                           {"bTRC", curve}},
                          "RGB ");
  std::memcpy(profile.data() + 12, "mntrRGB XYZ ", 12);
  return profile;
}

std::vector<std::uint8_t> CurveSamples(std::uint32_t ink) {
  std::vector<std::uint8_t> samples(256);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    samples[i] = static_cast<std::uint8_t>(255 * std::pow(static_cast<double>(i) / 255, 1.0 + 0.3 * ink) + 0.5);
  }
  return samples;
}

void FillLegacyProfile(CProfileData& data, const std::vector<std::uint32_t>& route1,
                       const std::vector<std::uint32_t>& route2) {
  _tagDeviceProfileInfo& info = *data.GetProfileInfo();
  info.LayoutNumber = 1;
  info.HalftoneCode = 3;
  const auto set = [](auto& field, std::string_view text) { CopyText(field, text); };
  set(info.Text.Printer_Label, "PX");
  set(info.Text.InkSet_Label, "SetA");
  set(info.Text.Media_Code, "0000000815");
  set(info.Text.Media_Label, "Glossy Film");
  set(info.Text.Media_Eng, "Glossy Film");
  set(info.Text.Media_Jpn, JapaneseName());
  set(info.Text.Dpi_Code, "107201080");
  info.Text.Pass_Support = 2;
  info.Text.Pass_Code[0] = 4;
  info.Text.Pass_Code[1] = 8;
  for (const std::uint32_t type : route1) data.SetProfileDataEntry(MakeEntry(type).release(), kRouteIccRoot);
  for (const std::uint32_t type : route2) data.SetProfileDataEntry(MakeEntry(type).release(), kRouteGrayBalance);
}

bool WriteLegacyProfile(const std::string& path, const std::vector<std::uint32_t>& route1,
                        const std::vector<std::uint32_t>& route2) {
  ByteBuilder file;
  file.Text("Printer_Label:PX\r\nInkSet_Label:SetA\r\nMedia_Code:0000000815\r\nMedia_Label:Glossy Film\r\n")
      .Text("Media_Eng:%11%Glossy Film\r\nMedia_Jpn:%6%" + JapaneseName() + "\r\nDpi_Code:107201080\r\n")
      .Text("Halftone_Code:3\r\nPass_Support:2\r\nPass_Code:4\r\nPass_Code:8\r\nRipVersion_Code:1\r\n")
      .Text("ProfileVersion_Code:2\r\nSeparateWay_Code:0\r\nCreateTime_String:13:24:05 02/29/100\r\n@Binary\r\n");
  const Bytes first = Container(kRouteIccRoot, route1);
  const Bytes second = Container(kRouteGrayBalance, route2);
  const auto section = [&](const Bytes& container, std::string_view name) {
    file.U32(static_cast<std::uint32_t>(container.size()), static_cast<std::uint32_t>(name.size() + 1))
        .Text(name)
        .U8(0);
  };
  section(first, "QctIcmForUse.qct");
  section(second, "QctGryForUse.qct");
  file.Zero(8).Append(first).Append(second);
  WriteBytes(path, file);
  return true;
}

}  // namespace nvx::test
