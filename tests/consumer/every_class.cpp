// A caller of the shared library: holds, constructs and calls every published class, so that one which does not link
// shows here. Built without and with optimisation, since that decides what is bound to a symbol.
#include <nvxprofile/nvxprofile.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <typeinfo>

namespace {

int failures = 0;

void Expect(bool fact, const char* what) {
  if (fact) return;
  ++failures;
  std::fprintf(stderr, "every_class: %s\n", what);
}

// What is protected is reached as a caller's subclass reaches it.
struct OpenAccess : CProfileAccess {
  using CProfileAccess::GetChromaLutData;
  using CProfileAccess::GetCurveDataBuffer;
  using CProfileAccess::GetMediaPropertyData;
  using CProfileAccess::MergeArrayBYTE;
  using CProfileAccess::MergeArrayDWORD;
  using CProfileAccess::MergeArrayWORD;
  using CProfileAccess::SetupProfileInfoStructure;
};

struct OwnEntry : CProfileDataEntry {};
struct OwnCurve : CCurveDataEntry8 {};
struct OwnDownload : CMaskDownLoadEntry {};
struct OwnContainer : CContainerEntry {};

template <class File>
void TryFormat(CProfileData& data) {
  File format;
  CNvxMemFile stream;
  format.SaveData(stream, &data, nvx::kRouteIccRoot);
  format.LoadData(u"no file", &data, false);
  Expect(typeid(format) == typeid(File), "a format has another type");
  std::free(stream.Buffer);
}

// Form and payload of a serializer that is made, loads nothing and saves nothing.
template <class Serializer, class Data>
void TrySerializer() {
  Serializer serializer;
  Data data;
  CNvxMemFile empty;
  Expect(!serializer.LoadHeader(empty), "a header in an empty stream");
  Expect(!serializer.LoadFile(empty, &data), "a form in an empty stream");
  CNvxMemFile stream;
  Expect(serializer.SaveFile(stream, &data) && stream.Position != 0, "an empty payload has a form");
  std::free(stream.Buffer);
}

void TryEntries() {
  for (std::uint32_t type = 0; type < 32; ++type) {
    const std::unique_ptr<CProfileDataEntry> entry(
        CProfileDataEntry::CreateDataEntry(static_cast<CProfileDataEntry::UsedType>(type)));
    if (!entry) continue;
    entry->GetFormatData();
    entry->BufferToData();
    entry->DataToBuffer();
    entry->RenewBuffer();
    const std::unique_ptr<CProfileDataEntry> copy = nvx::CloneEntry(*entry);
    Expect(copy != nullptr, "a new entry has a copy");
    entry->DoImport(copy.get());
  }
  CModelEntry().GetModelData()->SetModelName("m");
  CInfoEntry info;
  dynamic_cast<CInfoData&>(*info.GetFormatData()).SetComment("c");
  CUcrEntry().GetCurveData()->FindSlotNoEntry(1);
  CInkLimitEntry().TakeSamplesAs16Bit();
  CVariableEntry().SetOptionInfo(1, 2, 3, 4);
  CVariableInkLimitEntry().GetOptionInfoHH();
  CGrayBalanceEntry().SetCoord(0, 1, 2);
  CSeparateLightEntry().DoImport(nullptr);
  CMultiInkLimitEntry().DataToBuffer();
  CLinearizationEntry().DataToBuffer();
  CMediaPropertyEntry().GetMediaPropertyData()->Find(1);
  CSeparateChromaEntry().GetLutData()->Initialize(4, 2);
  CLargeParameterEntry().GetLargeParameterData()->Find(1);
  CSpecialColorInfoEntry().GetSpecialColorInfoData()->Find(1);
  CMaskDownLoadEntry().GetWeftData(3);
  CMaskDownloadIncludePatternEntry().GetMaskPatternData()->GetEntry(3);
  CCalibrationHistoryEntry().GetNextID();
  CCalibrationContainerEntry().GetEntryCount();
  CCalibrationTargetEntry().GetCreateTime();
  CCalibrationInfoEntry().GetCalibrationInfo();
  CCalibrationInklimitEntry().DataToBuffer();
  CCalibrationLinearizationEntry().DataToBuffer();
  CCalibrationGrayBalanceEntry().DataToBuffer();
  OwnContainer().SetContainerData(nullptr);
  OwnDownload().Initialize();
  OwnEntry().SetLabelString("own");
  std::uint32_t error = 0;
  CICMEntry().Load(u"no file", error, CICMEntry::kIcmPlain);
  CReplaceProfileEntry().Save(u"", error);
}

void TryPayloads() {
  TrySerializer<CModelFile, CModelData>();
  TrySerializer<CInfoFile, CInfoData>();
  TrySerializer<CMediaPropertyFile, CMediaPropertyData>();
  TrySerializer<CLutFile, CLutData3D>();
  TrySerializer<CMaskParameterFile, CMaskParameterData>();
  TrySerializer<CMaskPatternFile, CMaskPatternData>();
  TrySerializer<CLargeParameterFile, CLargeParameterData>();
  TrySerializer<CSpecialColorInfoFile, CSpecialColorInfoData>();
  TrySerializer<CCurveFile, CCurveData>();
  CCurveDataEntry8 narrow;
  CCurveDataEntry16 wide;
  narrow.Add(255);
  narrow.Copy(wide);
  Expect(wide.GetCount() == 1, "a curve is widened");
  OwnCurve().MaxValueChk(1);
  CLutData table(3, 4, 2);
  table.GetAt(0)->SetAt(0, 1);
  CLutDataEntry().Add(1);
  CLutChannelInf channel;
  channel.SetChannelName("c");
  Expect(table.GetLutDataSize() == 32, "a table has samples");
  CMediaPropertyDataEntry().SetUsedType(1, 1);
  const std::uint32_t sizes[2] = {4, 4};
  CLargeParameterDataEntry().GetPatternCount();
  CLargeParameterID001Entry().SetUsedType(1, nullptr);
  CLargeParameterID002Entry().SetUsedType(2, sizes);
  CSpecialColorInfoDataEntry().SetUsedType(1, sizes);
  CMaskParameterDataEntry().AddLayerColor(1);
  CMaskPatternDataEntry().SetMaskPatternBuffer(nullptr, 0);
  CContainerData children;
  children.SetProfileDataEntry(nullptr);
  CProfileFileCalibration().SaveData(u"", &children);
}

void TryModel() {
  CProfileData data;
  data.SetProfileDataEntry(new CLinearizationEntry, nvx::kRouteIccRoot);
  CProfileRoute route(nvx::kRouteMain);
  char name[17];
  route.GetQctInnerName(name);
  TryFormat<CProfileFileQCT>(data);
  TryFormat<CProfileFileQPFv1>(data);
  TryFormat<CProfileFileQPFv2>(data);
  TryFormat<CProfileFileQPFv3>(data);
  TryFormat<CProfileFileQPFv4>(data);
  TryFormat<CProfileFileICC>(data);
  Expect(CProfileFile::CreateProfileFile(u"no file", true) == nullptr, "no file has no format");
  char16_t codes[5];
  char16_t sub[3];
  CQPFConvertTable().GetModelCodes("x", codes, sub, sub);
  CProfileDataInfo info;
  Expect(!info.IsOrderedBefore(*data.GetProfileInfoObject()), "equal records have no order");
  CInputProfileInfo input;
  Expect(!input.IsOrderedBefore(input), "a record does not stand before itself");
  CError error;
  Expect(!CInputProfileAccess().Init(u"no file", &error), "no file is no input profile");
  CConvertV2ToV3Profile().ProfileLoad(u"no file");
}

void TryIcc() {
  CICCProfile profile;
  Expect(!profile.OpenBuffer("no profile", 10, false), "text is no profile");
  CICCProfileBufferAccess stream;
  stream.WriteUInt32(1);
  std::free(stream.Buffer);
  CICCTextDescription description;
  description.SetAsciiDescription("d");
  Expect(description.GetSerializedSize() != 0, "a description has a form");
  nvx::IccDirectory directory;
  Expect(!nvx::ReadIccDirectory("no profile", 10, directory), "text has no directory");
  Expect(directory.Find(1) == nullptr, "an empty directory has no tags");
}

void TryAccess() {
  OpenAccess access;
  CError error;
  int size = 0;
  int type = 0;
  Expect(!access.Init(u"no file", &error), "no file loads");
  Expect(error.IsCommentUnicode(), "a failure has a wide comment");
  access.GetCurveDataBuffer(nullptr, 1, 0, size, type, &error);
  access.GetMediaPropertyData(nullptr, 1, nullptr, &error);
  access.GetChromaLutData(&error);
  std::uint8_t bytes[1] = {};
  access.MergeArrayBYTE(bytes, bytes, bytes, 1);
  access.MergeArrayWORD(nullptr, nullptr, nullptr, 0);
  access.MergeArrayDWORD(nullptr, nullptr, nullptr, 0);
  nvx::Diagnosis diagnosis;
  Expect(!nvx::DiagnoseProfile(u"no file", diagnosis) && diagnosis.HasErrors(), "a missing file is told");
  CNvxFile file;
  Expect(file.Write("x", 1) == 0, "a closed stream takes nothing");
}

void TryAdjustFiles() {
  CError error;
  CAdjustFileAnalyzer analyzer;
  analyzer.LoadText("a=1\n");
  int value = 0;
  Expect(analyzer.GetIntValue("a", &value, error) && value == 1, "a key has its value");
  Expect(!CColorAdjustFile().Initialize(u"no file", error), "no file is no colour adjust file");
  CColorAdjustFileV3().Initialize(u"no file", error);
  CDeviceAdjustFile().Initialize(u"no file", error);
  CSpecialColorAdjustFile().Initialize(u"no file", error);
  Expect(!nvx::InspectAdjustText("a=1\n", std::nullopt).kind, "no reader reads the key");
}

}  // namespace

int main() {
  TryEntries();
  TryPayloads();
  TryModel();
  TryIcc();
  TryAccess();
  TryAdjustFiles();
  Expect(nvx::WideToUtf8(nvx::AnsiToWide("a")) == "a", "text converts");
  return failures == 0 ? 0 : 1;
}
