// The fields of the information record, in its order.
#include "core/field_codec.h"

#include <nvxprofile/profile_data.h>

namespace nvx {
namespace {

class RecordCodec {
 public:
  explicit RecordCodec(FieldCodec& codec) : codec_(codec) {}

  template <class T>
  void operator()(const char* name, T& member) {
    codec_.Member({name, Presence::kOptional}, member);
  }

 private:
  FieldCodec& codec_;
};

void DescribeRecord(RecordCodec field, _tagDeviceProfileInfo& info) {
  field("FileName", info.FileName);
  field("ModelCode", info.ModelCode);
  field("ModelSubCode", info.ModelSubCode);
  field("InternalCode", info.InternalCode);
  field("ScanResolution", info.ScanResolution);
  field("FeedResolution", info.FeedResolution);
  field("RenderingScan", info.RenderingScan);
  field("RenderingFeed", info.RenderingFeed);
  field("Expand", info.Expand);
  field("ColorsetCode", info.ColorsetCode);
  field("InkTypeCode", info.InkTypeCode);
  field("DotType", info.DotType);
  field("InkMakerCode", info.InkMakerCode);
  field("InkVersion", info.InkVersion);
  field("MediaCode", info.MediaCode);
  field("MediaName", info.MediaName);
  field("RevisionCode", info.RevisionCode);
  field("DatabaseKey", info.DatabaseKey);
  field("HalftoneCode", info.HalftoneCode);
  field("SeparateWayCode", info.SeparateWayCode);
  field("ProfileMajorVersion", info.ProfileMajorVersion);
  field("ProfileMinorVersion", info.ProfileMinorVersion);
  field("PrinterComment", info.PrinterComment);
  field("CreateTime", info.CreateTime);
  field("CreateTimeValue", info.CreateTimeValue);
  field("UpdateTime", info.UpdateTime);
  field("UpdateTimeValue", info.UpdateTimeValue);
  field("LayoutNumber", info.LayoutNumber);
  field("Unused", info.Unused);
  field("HasMaskDownload", info.HasMaskDownload);
  field("HasOutputBlock", info.HasOutputBlock);
  field("HasLargeParameter", info.HasLargeParameter);
  field("HasSpecialColor", info.HasSpecialColor);
  field("WaveFormParam", info.WaveFormParam);
  field("OutputFourthValue", info.OutputFourthValue);
  field("OutputCodeA", info.OutputCodeA);
  field("OutputCodeB", info.OutputCodeB);
  field("OutputThirdValue", info.OutputThirdValue);
  field("OutputText", info.OutputText);
  field("SaveVersion5", info.SaveVersion5);
  field("ListKeys", info.ListKeys);
  field("FullPath", info.FullPath);
}

void DescribeText(RecordCodec field, _tagDeviceProfileInfo::TextView& view) {
  field("Printer_Label", view.Printer_Label);
  field("InkSet_Label", view.InkSet_Label);
  field("Media_Code", view.Media_Code);
  field("Media_Label", view.Media_Label);
  field("Media_Eng", view.Media_Eng);
  field("Media_Jpn", view.Media_Jpn);
  field("Dpi_Code", view.Dpi_Code);
  field("Pass_Support", view.Pass_Support);
  field("Pass_Code", view.Pass_Code);
}

void DescribeBinary(RecordCodec field, _tagDeviceProfileInfo::BinaryView& view) {
  field("ModelNumber", view.ModelNumber);
  field("ModelSubNumber", view.ModelSubNumber);
  field("InternalNumber", view.InternalNumber);
  field("MediaNumber", view.MediaNumber);
  field("DefaultMediaName", view.DefaultMediaName);
  field("CreateModule", view.CreateModule);
  field("MakerText", view.MakerText);
  field("StoredRevisionCode", view.StoredRevisionCode);
}

void DescribeMedia(FieldCodec& codec, tagMedia& media) {
  codec.Member({"Language"}, media.Language);
  codec.Member({"Name"}, media.Name);
}

void DescribeMediaNames(FieldCodec& codec, const _tagDeviceProfileInfo::BinaryView& view, CProfileData* data) {
  std::span<const tagMedia> names;
  if (view.MediaInfo != nullptr) names = {view.MediaInfo, view.MediaInfoCount};
  std::vector<tagMedia> made;
  const bool isThere = codec.Groups(
      {"MediaInfo", Presence::kOptional}, names, [&](tagMedia media) { DescribeMedia(codec, media); },
      [&](std::size_t) { DescribeMedia(codec, made.emplace_back()); });
  if (codec.Fills() && isThere) data->SetMediaInfo(made);
}

// The profile is what is filled; it owns the media names.
void DescribeInfo(FieldCodec& codec, _tagDeviceProfileInfo& info, CProfileData* data) {
  DescribeRecord(RecordCodec(codec), info);
  if (info.LayoutNumber == kTextView) {
    codec.Group({"Text", Presence::kOptional}, [&] { DescribeText(RecordCodec(codec), info.Text); });
  }
  if (info.LayoutNumber == kBinaryView) {
    codec.Group({"Binary", Presence::kOptional}, [&] {
      DescribeBinary(RecordCodec(codec), info.Binary);
      DescribeMediaNames(codec, info.Binary, data);
    });
  }
}

}  // namespace

void TellFields(const _tagDeviceProfileInfo& record, FieldSink& sink) {
  FieldCodec codec(sink);
  // With a sink nothing of the record changes.
  DescribeInfo(codec, const_cast<_tagDeviceProfileInfo&>(record), nullptr);
}

void FillRecord(CProfileData& data, FieldSource& source) {
  FieldCodec codec(source);
  DescribeInfo(codec, *data.GetProfileInfo(), &data);
}

}  // namespace nvx
