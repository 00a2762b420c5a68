#include "support/random_model.h"

#include "support/entries.h"
#include "support/icc_builder.h"

#include <nvxprofile/calibration.h>
#include <nvxprofile/calibration_history.h>
#include <nvxprofile/curve_entry.h>
#include <nvxprofile/icm_entry.h>
#include <nvxprofile/large_parameter.h>
#include <nvxprofile/lut.h>
#include <nvxprofile/mask_download.h>
#include <nvxprofile/media_property.h>
#include <nvxprofile/model_info.h>
#include <nvxprofile/special_color.h>

#include <memory>
#include <string>

namespace nvx::test {
namespace {

class Maker {
 public:
  explicit Maker(std::mt19937& random) : random_(random) {}

  std::uint32_t Below(std::uint32_t bound) {
    return std::uniform_int_distribution<std::uint32_t>(0, bound - 1)(random_);
  }
  std::uint32_t Word() { return static_cast<std::uint32_t>(random_()); }
  std::int32_t Number() { return static_cast<std::int32_t>(Word()); }

  std::string Text(std::uint32_t longest) {
    std::string text(Below(longest + 1), ' ');
    for (char& c : text) c = static_cast<char>('a' + Below(26));
    return text;
  }

  Bytes Block(std::uint32_t longest) {
    Bytes bytes(Below(longest + 1));
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(Word());
    return bytes;
  }

  // Curves of 16 bits, since the current generation takes all curves for such.
  void Fill(CCurveData& curves) {
    for (std::uint32_t count = Below(5); count != 0; --count) {
      auto curve = std::make_unique<CCurveDataEntry16>();
      curve->SetInkID(Below(256));
      curve->SetInkName(Text(91).c_str());
      curve->SetSlotNo(Word());
      curve->SetDisplayRGB(Word());
      curve->SetExtendInfo(Below(16));
      curve->SetMax(Word());
      curve->SetMin(Word());
      for (std::uint32_t samples = Below(40); samples != 0; --samples) curve->Add(Word());
      curves.AddTail(curve.release());
    }
    curves.SetUsedType(Below(30));
  }

  void Fill(CProfileDataEntry& entry) {
    if (auto* const curves = dynamic_cast<CProfileCurveEntry*>(&entry)) Fill(*curves->GetCurveData());
    if (auto* const model = dynamic_cast<CModelEntry*>(&entry)) Fill(*model->GetModelData());
    if (auto* const info = dynamic_cast<CInfoData*>(entry.GetFormatData())) Fill(*info);
    if (auto* const lut = dynamic_cast<CSeparateChromaEntry*>(&entry)) Fill(*lut->GetLutData());
    if (auto* const media = dynamic_cast<CMediaPropertyEntry*>(&entry)) Fill(*media->GetMediaPropertyData());
    if (auto* const masks = dynamic_cast<CMaskDownloadIncludePatternEntry*>(&entry)) {
      Fill(*masks);
    } else if (auto* const download = dynamic_cast<CMaskDownLoadEntry*>(&entry)) {
      download->Initialize();
      // One block of type 5 is what tells the other class.
      download->SetWeftDataParameter(0, Below(2) == 0 ? 6 : 1 + Below(4));
    }
    if (auto* const large = dynamic_cast<CLargeParameterEntry*>(&entry)) Fill(*large->GetLargeParameterData());
    if (auto* const special = dynamic_cast<CSpecialColorInfoEntry*>(&entry)) Fill(*special->GetSpecialColorInfoData());
    if (auto* const history = dynamic_cast<CCalibrationHistoryEntry*>(&entry)) Fill(*history);
    if (auto* const info = dynamic_cast<CCalibrationInfoEntry*>(&entry)) Fill(*info);
    entry.SetComplete(Below(2) == 0);
    if (entry.GetFormatType() != CProfileDataEntry::kFormatIcc) entry.SetOptionInfo(Word());
    entry.SetLabelString(Text(255).c_str());
    entry.DataToBuffer();
  }

 private:
  void Fill(CModelData& model) {
    model.SetModelName(Text(63).c_str());
    model.SetMediaName(Text(63).c_str());
    model.SetInksetName(Text(63).c_str());
    model.SetParametersetName(Text(63).c_str());
    model.SetCmykMode(Below(2) == 0);
    model.SetVDType(Word());
  }

  void Fill(CInfoData& info) {
    info.SetVersionStr(Text(63).c_str());
    info.SetComment(Text(63).c_str());
    info.SetUserName(Text(63).c_str());
    Bytes reserve = Block(192);
    reserve.resize(192);
    info.SetReserveBuffer(reserve.data());
  }

  void Fill(CLutData3D& lut) {
    lut.Initialize(1 + Below(8), 2 + Below(4));
    for (int i = 0; i < lut.GetSize(); ++i) {
      CLutDataEntry* const node = lut.GetAt(i);
      for (std::uint32_t j = 0; j < lut.GetOutputChannelCount(); ++j) {
        node->GetRefBuffer()[j] = static_cast<std::uint8_t>(Word());
      }
    }
    for (std::uint32_t i = 0; i < 3; ++i) {
      lut.GetAtInputChannelInf(static_cast<int>(i))->SetChannelCode(Below(256));
      lut.GetAtInputChannelInf(static_cast<int>(i))->SetChannelName(Text(127).c_str());
    }
  }

  void Fill(CMediaPropertyData& media) {
    for (std::uint32_t count = Below(6); count != 0; --count) {
      CMediaPropertyDataEntry* const block =
          CMediaPropertyDataEntry::CreateMediaPropertyDataEntry(Below(14), Below(17));
      for (std::int32_t i = 0; i < block->GetParameterMax(); ++i) block->SetParameter(i, Number());
      media.AddTail(block);
    }
  }

  void Fill(CMaskDownloadIncludePatternEntry& masks) {
    for (std::uint32_t count = Below(5); count != 0; --count) {
      CMaskParameterDataEntry* const record = CMaskParameterDataEntry::CreateEntry();
      record->SetPass(Below(9));
      record->SetSpecialColorsetCode(Below(3));
      record->SetPrintMethod(Word());
      for (std::uint32_t colors = Below(11); colors != 0; --colors) record->AddLayerColor(Word());
      for (std::uint32_t ids = Below(16); ids != 0; --ids) record->AddUsePatternID(Below(20));
      const Bytes block = Block(100);
      record->SetParamDataBuffer(block.data(), static_cast<std::uint32_t>(block.size()));
      masks.GetMaskParameterData()->AddTail(record);
    }
    for (std::uint32_t count = Below(5); count != 0; --count) {
      CMaskPatternDataEntry* const pattern = CMaskPatternDataEntry::CreateEntry();
      pattern->SetMaskPatternID(Below(20));
      const Bytes block = Block(200);
      pattern->SetMaskPatternBuffer(block.data(), static_cast<std::uint32_t>(block.size()));
      masks.GetMaskPatternData()->Add(pattern);
    }
  }

  void Fill(CLargeParameterData& large) {
    for (std::uint32_t count = Below(3); count != 0; --count) {
      const std::uint32_t patterns = 1 + Below(3);
      const std::uint32_t sizes[2] = {2 + patterns * 14, patterns * 5};
      CLargeParameterDataEntry* const table =
          CLargeParameterDataEntry::CreateLargeParameterDataEntry(1 + Below(2), sizes);
      const bool fixed = table->GetUsedType() == 1;
      for (std::int32_t i = 0; i < *table->GetParameterMax(); ++i) table->SetParameter(i, Number(), 0);
      if (!fixed) {
        table->SetPatternCount(static_cast<std::int32_t>(patterns));
        table->SetParameter(0, static_cast<std::int32_t>(4 * sizes[0]), 0);
        for (std::uint32_t i = 0; i < sizes[1]; ++i) table->SetParameter(static_cast<std::int32_t>(i), Number(), 1);
      }
      large.AddTail(table);
    }
  }

  void Fill(CSpecialColorInfoData& special) {
    special.SetProfileColorType(Below(3));
    if (Below(4) == 0) return;
    const std::uint32_t sizes[2] = {4 + 2 * 8, 2 * 5};
    CSpecialColorInfoDataEntry* const table = CSpecialColorInfoDataEntry::CreateSpecialColorInfoDataEntry(1, sizes);
    for (std::int32_t i = 4; i < 20; ++i) table->SetParameter(i, static_cast<std::int32_t>(Below(4)), 0);
    for (std::int32_t i = 0; i < 10; ++i) table->SetParameter(i, Number(), 1);
    table->SetParameter(0, 4 * 20, 0);
    table->SetPatternCount(2);
    special.AddTail(table);
  }

  void Fill(CCalibrationHistoryEntry& history) {
    for (std::uint32_t count = Below(4); count != 0; --count) {
      NewCalibration calibration;
      const std::u16string name(1 + Below(20), u'n');
      calibration.name = name;
      calibration.value = Number();
      calibration.time = Below(1000);
      calibration.linearization = std::make_unique<CCalibrationLinearizationEntry>();
      Fill(*calibration.linearization->GetCurveData());
      if (Below(2) == 0) calibration.inkLimit = std::make_unique<CCalibrationInklimitEntry>();
      AddCalibration(history, std::move(calibration));
    }
  }

  void Fill(CCalibrationInfoEntry& info) {
    tag_CalibrationInfo records[2];
    for (tag_CalibrationInfo& record : records) {
      for (std::uint8_t& byte : record.Data) byte = static_cast<std::uint8_t>(Word());
    }
    info.SetCalibrationInfo(&records[0]);
    info.SetCalibrationInfoEx(&records[1]);
  }

  std::mt19937& random_;
};

// A small real profile.
Bytes SmallIcc() { return IccWithTags({"cprt", "wtpt"}); }

}  // namespace

std::unique_ptr<CProfileDataEntry> MakeRandomEntry(std::uint32_t usedType, std::mt19937& random) {
  std::unique_ptr<CProfileDataEntry> entry = NewEntry(usedType);
  if (!entry) return nullptr;
  if (entry->GetFormatType() == CProfileDataEntry::kFormatIcc) Parse(*entry, SmallIcc());
  Maker(random).Fill(*entry);
  return entry;
}

namespace {

constexpr std::uint32_t kMainTypes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 14, 16, 17};

void AddRandomEntry(CProfileData& data, std::uint32_t usedType, std::uint32_t route, std::mt19937& random) {
  data.SetProfileDataEntry(MakeRandomEntry(usedType, random).release(), route);
}

}  // namespace

void FillRandomRoute(CProfileData& data, std::uint32_t route, std::mt19937& random) {
  AddEntry(data, CProfileDataEntry::kIcm, SmallIcc(), route).SetComplete(true);
  for (const std::uint32_t type : kMainTypes) {
    if (Maker(random).Below(2) == 0) AddRandomEntry(data, type, route, random);
  }
}

void FillRandomProfile(CProfileData& data, std::mt19937& random) {
  Maker maker(random);
  FillRandomRoute(data, kRouteMain, random);
  _tagDeviceProfileInfo& info = *data.GetProfileInfo();
  info.LayoutNumber = 3;
  info.HasMaskDownload = maker.Below(2) == 0;
  info.HasLargeParameter = maker.Below(2) == 0;
  info.HasSpecialColor = maker.Below(2) == 0;
  info.ScanResolution = maker.Word();
  info.FeedResolution = maker.Word();
  info.ColorsetCode = maker.Number();
  info.CreateTimeValue = maker.Below(1'000'000'000);
  info.Binary.ModelNumber = maker.Below(10'000);
  info.Binary.MediaNumber = maker.Below(1'000'000'000);
  if (info.HasMaskDownload) AddRandomEntry(data, maker.Below(2) == 0 ? 27 : 29, kRouteMaskDownload, random);
  auto* const download = dynamic_cast<CMaskDownLoadEntry*>(data.GetProfileDataEntryFromList(27));
  info.HasOutputBlock = download != nullptr && download->GetWeftData(6) != nullptr;
  if (info.HasLargeParameter) AddRandomEntry(data, 28, kRouteLargeParameter, random);
  if (info.HasSpecialColor) AddRandomEntry(data, 30, kRouteSpecialColor, random);
  if (maker.Below(2) == 0) AddRandomEntry(data, 19, kRouteCalibration, random);
}

EntryImage ImageOf(CProfileDataEntry& entry) {
  return {entry.GetUsedType(),   entry.GetFormatType(),  entry.IsComplete(),
          entry.GetOptionInfo(), entry.GetLabelString(), BytesOf(entry)};
}

std::vector<EntryImage> ImagesOf(CProfileRoute& route) {
  std::vector<EntryImage> images;
  for (CProfileDataEntry* const entry : route.Entries()) images.push_back(ImageOf(*entry));
  return images;
}

}  // namespace nvx::test
