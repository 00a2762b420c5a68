#include "support/legacy_profile.h"

#include "core/text.h"
#include "platform/locale.h"
#include "support/icc_builder.h"

#include <nvxprofile/curve_entry.h>
#include <nvxprofile/model_info.h>
#include <nvxprofile/profile_file_text.h>

#include <cmath>
#include <cstring>
#include <memory>

namespace nvx::test {
namespace {

void Put(BigBuilder& data, std::vector<IccPart>& table, const std::string& signature, const Bytes& bytes,
         std::size_t tags) {
  const auto offset = static_cast<std::uint32_t>(132 + 12 * tags + data.Size());
  table.push_back({signature, offset, static_cast<std::uint32_t>(bytes.size())});
  data.Append(bytes).Zero((4 - bytes.size() % 4) % 4);
}

Bytes Xyz(std::uint32_t x, std::uint32_t y, std::uint32_t z) { return BigBuilder().Text("XYZ ").U32(0, x, y, z); }

void AddCurve(CCurveData& curves, std::uint32_t ink, std::uint32_t extendInfo) {
  std::unique_ptr<CCurveDataEntry> curve(CCurveDataEntry::CreateCurveDataEntry(CCurveDataEntry::kSamples8));
  const std::vector<std::uint8_t> samples = CurveSamples(ink);
  std::memcpy(curve->GetBuffer(256), samples.data(), samples.size());
  curve->SetInkID(ink);
  curve->SetInkName(ink == 1 ? "Cyan" : "Magenta");
  curve->SetSlotNo(ink + 10);
  curve->SetDisplayRGB(0x00FF00FF + ink);
  curve->SetMax(200);
  curve->SetMin(1);
  curve->SetExtendInfo(extendInfo);
  curves.AddTail(curve.release());
}

std::unique_ptr<CProfileDataEntry> MakeEntry(std::uint32_t type) {
  std::unique_ptr<CProfileDataEntry> entry(
      CProfileDataEntry::CreateDataEntry(static_cast<CProfileDataEntry::UsedType>(type)));
  entry->SetComplete(true);
  entry->SetLabelString(("entry " + std::to_string(type)).c_str());
  if (auto* const curves = dynamic_cast<CProfileCurveEntry*>(entry.get())) {
    AddCurve(*curves->GetCurveData(), 1, type == CProfileDataEntry::kVariableInkLimit ? 5 : 7);
    AddCurve(*curves->GetCurveData(), 2, 3);
  } else if (auto* const model = dynamic_cast<CModelEntry*>(entry.get())) {
    model->GetModelData()->SetModelName("PX");
    model->GetModelData()->SetMediaName("Glossy Film");
    model->GetModelData()->SetInksetName("SetA");
  } else if (auto* const info = dynamic_cast<CInfoData*>(entry->GetFormatData()); info != nullptr) {
    info->SetComment("measured twice");
    info->SetUserName("A. User");
  } else if (type == CProfileDataEntry::kIcm) {
    const Bytes icc = SmallIccProfile();
    std::memcpy(entry->GetBuffer(static_cast<std::uint32_t>(icc.size())), icc.data(), icc.size());
  }
  entry->DataToBuffer();
  return entry;
}

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
  constexpr std::size_t kTags = 9;
  BigBuilder data;
  std::vector<IccPart> table;
  Put(data, table, "desc", DescriptionTag("Small profile"), kTags);
  Put(data, table, "cprt", BigBuilder().Text("text").U32(0).Text("Free to use").U8(0), kTags);
  Put(data, table, "wtpt", Xyz(0xF6D6, 0x10000, 0xD32D), kTags);
  Put(data, table, "rXYZ", Xyz(0x6FA2, 0x38F5, 0x0390), kTags);
  Put(data, table, "gXYZ", Xyz(0x6299, 0xB785, 0x18DA), kTags);
  Put(data, table, "bXYZ", Xyz(0x24A0, 0x0F84, 0xB6CF), kTags);
  Put(data, table, "rTRC", BigBuilder().Text("curv").U32(0, 1).U16(0x0233), kTags);
  table.push_back({"gTRC", table.back().offset, table.back().size});
  table.push_back({"bTRC", table.back().offset, table.back().size});
  Bytes profile = IccBytes(table, data, "RGB ");
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
  set(info.Text.Media_Jpn, platform::AnsiCodePage() == 932 ? "\x8C\xF5\x91\xF2\x83\x5C" : "Kotaku");
  set(info.Text.Dpi_Code, "107201080");
  info.Text.Pass_Support = 2;
  info.Text.Pass_Code[0] = 4;
  info.Text.Pass_Code[1] = 8;
  for (const std::uint32_t type : route1) data.SetProfileDataEntry(MakeEntry(type).release(), kRouteIccRoot);
  for (const std::uint32_t type : route2) data.SetProfileDataEntry(MakeEntry(type).release(), kRouteGrayBalance);
}

bool WriteLegacyProfile(const std::string& path, const std::vector<std::uint32_t>& route1,
                        const std::vector<std::uint32_t>& route2) {
  CProfileData data;
  FillLegacyProfile(data, route1, route2);
  return CProfileFileQPFv2().SaveData(platform::Utf8ToWide(path).c_str(), &data, 0);
}

}  // namespace nvx::test
