// What holds for the form of every family of entries.
#include "support/entry_bytes.h"
#include "support/entry_forms.h"

#include <nvxprofile/calibration_history.h>
#include <nvxprofile/curve_entry.h>
#include <nvxprofile/diagnosis.h>
#include <nvxprofile/large_parameter.h>
#include <nvxprofile/lut.h>
#include <nvxprofile/mask_download.h>
#include <nvxprofile/media_property.h>
#include <nvxprofile/model_info.h>
#include <nvxprofile/special_color.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace nvx::test {
namespace {

// A word of the form that breaks it.
struct Fault {
  std::size_t offset;
  std::uint32_t word;
  const char* rule;  // what the diagnosis says
  std::size_t left;  // elements that the payload holds afterwards
};

struct Family {
  const char* name;
  CProfileDataEntry::UsedType type;
  Bytes form;
  std::size_t (*count)(CProfileDataEntry&);  // elements of the payload; asking opens it to changes
  std::vector<Fault> faults = {};
  std::size_t enough = 0;  // bytes that are taken for the form, if not all of it has to be there
  bool exact = false;      // a rebuilt buffer ends with the form

  Bytes Rebuilt() const { return exact ? form : ToCapacity(form); }
};

void PrintTo(const Family& family, std::ostream* out) { *out << family.name; }

template <class Entry>
Entry& As(CProfileDataEntry& entry) {
  return dynamic_cast<Entry&>(entry);
}

std::vector<Family> Families() {
  constexpr std::uint32_t kHuge = 0xFFFFFFFF;
  return {
      {"Curves",
       CProfileDataEntry::kLinearization,
       TwoCurves(),
       [](CProfileDataEntry& entry) { return As<CProfileCurveEntry>(entry).GetCurveData()->Curves().Count(); },
       {
           {0, 'x', "curve set header: wrong signature", 0},
           {8, 0x10001, "curve set header: wrong version", 0},
           {16, 3, "curve records: count beyond the end", 0},
           {16, kHuge, "curve records: count beyond the end", 0},
           {164, 'x', "curve record: wrong signature", 0},
           {296, 'x', "curve data block: wrong signature", 0},
           {303, 'x', "curve data block: wrong signature", 1},
           {164 + 32, 3, "curve record: unknown DataType", 1},
           {32 + 32, 0, "curve record: unknown DataType", 0},
           {164 + 36, 6, "curve record: data size beyond the end", 1},
           {32 + 36, kHuge, "curve record: data size beyond the end", 0},
       },
       0,
       true},
      {"Media",
       CProfileDataEntry::kMediaProperty,
       MediaForm({{2, 3, {40, -1, 50}}, {12, 0, {}}, {7, 16, std::vector<std::int32_t>(16, -1)}}),
       [](CProfileDataEntry& entry) {
         return static_cast<std::size_t>(As<CMediaPropertyEntry>(entry).GetMediaPropertyData()->GetPropertyCount());
       },
       {
           {0, 'x', "media property: wrong signature", 0},
           {8, 0x10001, "media property: wrong version", 0},
           {12, 5, "data block: wrong signature", 5},
           {12, kHuge, "media property entry headers: count beyond the end", 0},
           {76 + 68, 'x', "data block: wrong signature", 3},
       },
       16 + 3 * 20 + 2 * 68 + 4},
      {"LargeParameters",
       CProfileDataEntry::kLargeParameter,
       LargeParameterForm(),
       [](CProfileDataEntry& entry) {
         return static_cast<std::size_t>(As<CLargeParameterEntry>(entry).GetLargeParameterData()->GetPropertyCount());
       },
       {
           {0, 0, "large parameter header: wrong magic", 0},
           {8, 0x7FFFFFFF, "records: count beyond the end", 0},
           {16 + 8, 3, "record: unknown used type", 0},
           {36 + 8, kHuge, "record: unknown used type", 1},
           {16 + 12, 0, "array 0: its first word is longer than the data size of the record", 0},
           {16 + 12, 119, "array 0: its first word is longer than the data size of the record", 0},
           {16 + 12, 127, "array 0: its first word is longer than the data size of the record", 0},
           {16 + 12, kHuge, "arrays: lengths beyond the end", 0},
           {76, 'x', "data block: wrong magic", 3},
           {76 + 4, 180, "array 0: its first word is longer than the data size of the record", 0},
           {76 + 4, 0x80000000, "array 0: its first word is longer than the data size of the record", 0},
           {76 + 4, kHuge - 3, "array 0: its first word is longer than the data size of the record", 0},
       }},
      {"SpecialColors",
       CProfileDataEntry::kSpecialColorInfo,
       SpecialColorForm(),
       [](CProfileDataEntry& entry) {
         return static_cast<std::size_t>(
             As<CSpecialColorInfoEntry>(entry).GetSpecialColorInfoData()->GetPropertyCount());
       },
       {
           {0, 0, "special colour header: wrong magic", 0},
           {20, 0x7FFFFFFF, "records: count beyond the end", 0},
           {32 + 12, 0, "array 0: its first word is longer than the data size of the record", 0},
           {32 + 12, 87, "array 0: its first word is longer than the data size of the record", 0},
           {32 + 12, kHuge, "arrays: lengths beyond the end", 0},
           {76, 128, "array 0: its first word is longer than the data size of the record", 0},
           {76, kHuge - 3, "array 0: its first word is longer than the data size of the record", 0},
           {76 + 8, 3, "VD curves: a set leads outside their bytes", 2},
           {76 + 8, 0x7FFFFFFF, "VD curves: a set leads outside their bytes", 2},
           {76 + 12, 0, "array 0: its first word is longer than the data size of the record", 1},
           {76 + 12, 173, "array 0: its first word is longer than the data size of the record", 1},
           {76 + 12, 205, "array 0: its first word is longer than the data size of the record", 1},
           {76 + 12, kHuge, "VD curves: byte count beyond the end", 0},
           {72 + 84, 0, "array: wrong magic", 2},
           {200 + 4, 0, "curve records: count beyond the end", 2},
           {200 + 4, 31, "curve record: data size beyond the end", 2},
           {200 + 4, 33, "VD curves: a set leads outside their bytes", 2},
           {200 + 4, kHuge, "VD curves: a set leads outside their bytes", 2},
           {200 + 16, 2, "VD curves: a set leads outside their bytes", 2},
           {200 + 16, kHuge, "VD curves: a set leads outside their bytes", 2},
           {200 + 36, 131, "curve record: data size beyond the end", 2},
           {200 + 36, 133, "VD curves: a set leads outside their bytes", 2},
           {200 + 36, kHuge, "VD curves: a set leads outside their bytes", 2},
           {200 + 64, 3, "curve record: unknown DataType", 2},
           {200 + 68, 4, "VD curves: a set leads outside their bytes", 2},
           {200 + 68, 8, "VD curves: a set leads outside their bytes", 2},
           {200 + 68, kHuge, "VD curves: a set leads outside their bytes", 2},
       }},
      {"ColourTable",
       CProfileDataEntry::kSeparateChroma,
       LutForm(),
       [](CProfileDataEntry& entry) {
         return static_cast<std::size_t>(As<CSeparateChromaEntry>(entry).GetLutData()->GetSize());
       },
       {
           {0, 'x', "colour table: wrong signature", 0},
           {8, 0x10001, "colour table: wrong version", 0},
           {12, kHuge, "colour table: channel count beyond the end", 0},
           {12, 4, "colour table: channel count beyond the end", 0},
           {16, kHuge, "colour table: channel count beyond the end", 0},
           {20, kHuge, "colour table: node count beyond the end", 0},
           {20, 3, "colour table: node count beyond the end", 0},
           {280 + 4 * 336, 'x', "channel header: wrong signature", 8},
       }},
      {"MaskDownload",
       CProfileDataEntry::kMaskDownload,
       MaskDownloadForm(),
       [](CProfileDataEntry& entry) {
         As<CMaskDownLoadEntry>(entry).GetWeftData(6);
         return As<CMaskDownLoadEntry>(entry).GetWeftBlocks().size();
       },
       {
           {8, 4, "mask download block header: wrong magic", 0},
           {8, kHuge, "mask download block headers: count beyond the end", 0},
           {44, 'x', "mask download block header: wrong magic", 0},
           {44 + 8, 7, "mask download block: unknown type", 1},
           {44 + 8, 0x80000003, "mask download block: unknown type", 1},
           {108, 'x', "mask download block: wrong magic", 0},
       },
       0,
       true},
      {"MaskPatterns",
       CProfileDataEntry::kMaskDownloadIncludePattern,
       MaskPatternsForm(),
       [](CProfileDataEntry& entry) {
         auto& masks = As<CMaskDownloadIncludePatternEntry>(entry);
         return masks.GetMaskParameterData()->Entries().Count() +
                static_cast<std::size_t>(masks.GetMaskPatternData()->GetEntryCount());
       },
       {
           {8, 2, "mask download block header: wrong magic", 0},
           {28, 4, "mask download with patterns: block type is not 5", 0},
           {44, 'x', "mask download block: wrong magic", 0},
           {48, 'x', "mask header: wrong magic", 0},
           {48 + 16, kHuge, "mask records: count beyond the end", 0},
           {88 + 24, 11, "mask parameter record: more than 10 layer colours", 0},
           {88 + 72, 16, "mask parameter record: more than 15 pattern IDs", 0},
           {88 + 68, kHuge, "mask data block: size beyond the end", 0},
           {373, 'x', "mask header: wrong magic", 2},
           {373 + 16, kHuge, "mask records: count beyond the end", 2},
           {413 + 16, kHuge, "mask data block: size beyond the end", 2},
       },
       0,
       true},
      {"History",
       CProfileDataEntry::kCalibrationHistory,
       HistoryForm(),
       [](CProfileDataEntry& entry) {
         As<CCalibrationHistoryEntry>(entry).GetNextID();
         return static_cast<std::size_t>(As<CCalibrationHistoryEntry>(entry).GetEntryCount());
       },
       {
           {0, 1, "calibration header: wrong magic", 0},
           {8, 0x20000, "calibration header: wrong version", 0},
           {12, 3, "calibration entry header: wrong magic", 0},
           {12, kHuge, "calibration entry table: count beyond the end", 0},
           {108, 1, "calibration entry header: wrong magic", 0},
           {108 + 8, 3, "calibration entry header: body size below 4", 1},
           {108 + 8, 0x10000, "calibration entry header: body size beyond the end", 1},
           {108 + 8, kHuge, "calibration entry header: body size beyond the end", 1},
           {108 + 12, 15, "calibration entry header: unknown used type", 1},
           {108 + 16, 6, "calibration entry header: format type does not belong to the used type", 1},
           {196, 1, "calibration entry body: wrong magic", 0},
           {210, 1, "calibration entry body: wrong magic", 1},
       },
       0,
       true},
      {"Model",
       CProfileDataEntry::kModel,
       ModelRecord(0x00010002).U32(7),
       [](CProfileDataEntry& entry) { return std::size_t{As<CModelEntry>(entry).GetModelData()->IsCmykMode()}; },
       {
           {0, 'x', "model record: wrong signature", 1},
       },
       4},
      {"Info",
       CProfileDataEntry::kInfo,
       InfoRecord(),
       [](CProfileDataEntry& entry) { return std::size_t{entry.GetFormatData() != nullptr}; },
       {
           {0, 'x', "info record: wrong signature", 1},
           {8, 0x10001, "info record: wrong version", 1},
       },
       11},
  };
}

class EntryForm : public testing::TestWithParam<Family> {
 protected:
  // Parses bytes into `entry_`, and keeps what was found wrong.
  bool Load(const Bytes& bytes) {
    diagnosis_ = {};
    entry_->SetDiagnosis(&diagnosis_);
    const bool loaded = Parse(*entry_, bytes);
    entry_->SetDiagnosis(nullptr);
    return loaded;
  }
  // A used object, and one that has refused something, is as good as a new one.
  void ExpectRoundTrip() {
    ASSERT_TRUE(Load(GetParam().form));
    EXPECT_FALSE(diagnosis_.HasErrors());
    EXPECT_EQ(entry_->GetPayloadState(), PayloadState::kWhole);
    ASSERT_TRUE(entry_->DataToBuffer());
    EXPECT_EQ(BytesOf(*entry_), GetParam().Rebuilt());
  }
  void ExpectRefused(const Bytes& bytes) {
    EXPECT_FALSE(Load(bytes));
    EXPECT_TRUE(diagnosis_.HasErrors());
    EXPECT_EQ(entry_->GetPayloadState(), PayloadState::kPart);
    EXPECT_FALSE(entry_->DataToBuffer());
    EXPECT_EQ(BytesOf(*entry_), bytes) << "what could not be read stays";
  }

  std::unique_ptr<CProfileDataEntry> entry_{CProfileDataEntry::CreateDataEntry(GetParam().type)};
  Diagnosis diagnosis_;
};

TEST_P(EntryForm, ComesBackByteForByte) {
  EXPECT_FALSE(entry_->BufferToData()) << "nothing to read";
  for (int i = 0; i < 2; ++i) ExpectRoundTrip();
  EXPECT_TRUE(entry_->BufferToData()) << "what it wrote, it reads";
}

TEST_P(EntryForm, IsRefusedWhereverItIsCut) {
  const std::size_t enough = GetParam().enough != 0 ? GetParam().enough : GetParam().form.size();
  for (std::size_t size = 1; size < GetParam().form.size(); ++size) {
    SCOPED_TRACE(size);
    const Bytes cut = First(GetParam().form, size);
    if (size < enough) {
      ExpectRefused(cut);
    } else {
      EXPECT_TRUE(Load(cut));
      EXPECT_FALSE(diagnosis_.HasErrors());
    }
    if (size % 16 == 0) ExpectRoundTrip();
  }
}

TEST_P(EntryForm, SaysWhatIsWrongWithIt) {
  for (const Fault& fault : GetParam().faults) {
    SCOPED_TRACE(testing::Message() << "word " << fault.word << " at " << fault.offset);
    entry_.reset(CProfileDataEntry::CreateDataEntry(GetParam().type));
    const Bytes bytes = With(GetParam().form, fault.offset, fault.word);
    ExpectRefused(bytes);
    std::string rules;
    for (const Finding& finding : diagnosis_.Findings()) rules += finding.rule + "\n";
    EXPECT_THAT(rules, testing::HasSubstr(fault.rule));
    ExpectRoundTrip();
    entry_.reset(CProfileDataEntry::CreateDataEntry(GetParam().type));
    Load(bytes);
    EXPECT_EQ(GetParam().count(*entry_), fault.left);
  }
}

TEST_P(EntryForm, KnowsWhetherBufferAndPayloadSayTheSame) {
  EXPECT_EQ(entry_->GetPayloadState(), PayloadState::kUnread);
  SetBytes(*entry_, GetParam().form);
  EXPECT_EQ(entry_->GetPayloadState(), PayloadState::kUnread);
  EXPECT_FALSE(entry_->DataToBuffer()) << "nobody has read these bytes";
  EXPECT_EQ(BytesOf(*entry_), GetParam().form);
  ExpectRoundTrip();
  GetParam().count(*entry_);
  EXPECT_EQ(entry_->GetPayloadState(), PayloadState::kEdited);
  EXPECT_TRUE(entry_->DataToBuffer());
  EXPECT_EQ(entry_->GetPayloadState(), PayloadState::kEdited) << "whoever asked may still hold it";

  entry_.reset(CProfileDataEntry::CreateDataEntry(GetParam().type));
  const Bytes broken = First(GetParam().form, 3);
  ExpectRefused(broken);
  EXPECT_TRUE(entry_->RenewBuffer()) << "the bytes say all that there is";
  GetParam().count(*entry_);
  EXPECT_FALSE(entry_->DataToBuffer());
  EXPECT_FALSE(entry_->RenewBuffer()) << "a change could not be written";
  EXPECT_EQ(BytesOf(*entry_), broken);
  entry_->DeleteBuffer();
  EXPECT_EQ(entry_->GetPayloadState(), PayloadState::kEdited) << "the payload is all that is left";
}

INSTANTIATE_TEST_SUITE_P(Every, EntryForm, testing::ValuesIn(Families()),
                         [](const auto& family) { return std::string(family.param.name); });

}  // namespace
}  // namespace nvx::test
