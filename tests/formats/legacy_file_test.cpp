#include "core/text.h"
#include "support/entry_bytes.h"
#include "support/legacy_profile.h"
#include "support/record_text.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file_text.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace nvx::test {
namespace {

// The protected operations.
class Probe : public CProfileFileQPFv1 {
 public:
  using CProfileFileQPFv1::AnalyzeHeaderString;
  using CProfileFileQPFv1::ConvertStringToTime;
  using CProfileFileQPFv1::EraseCountFromMediaName;
  using CProfileFileQPFv1::GetOutputSetting;
};

const std::string kLines =
    "Printer_Label:PX\r\nInkSet_Label:SetA\r\nMedia_Code:0815\r\nMedia_Label:Film\r\nMedia_Eng:%11%Glossy Film\r\n"
    "Media_Jpn:%6%Kotaku\r\nDpi_Code:7201080\r\nProfileVersion_Code:1\r\n";

Bytes Container(std::uint32_t route, const Bytes& bytes, std::uint32_t usedType = 6) {
  return ContainerOf({{usedType, 6, bytes}}, route);
}

Bytes Section(std::uint32_t size, std::string_view name) {
  return ByteBuilder().U32(size, static_cast<std::uint32_t>(name.size() + 1)).Text(name).U8(0);
}

Bytes Joined(const std::string& text, const std::vector<Bytes>& blocks) {
  Bytes bytes(text.begin(), text.end());
  for (const Bytes& block : blocks) bytes.insert(bytes.end(), block.begin(), block.end());
  return bytes;
}

Bytes SimpleProfile(const std::string& lines, const std::string& end = "@Binary\r\n") {
  const Bytes container = Container(1, {1, 2, 3});
  return Joined(lines + end, {Section(static_cast<std::uint32_t>(container.size()), "QctIcmForUse.qct"),
                              ByteBuilder().U32(0, 0), container});
}

class LegacyFile : public ::testing::Test {
 protected:
  // True if a profile of these bytes loads; `reason_` is why not.
  bool Load(const Bytes& bytes, CProfileData& data) {
    WriteBytes(folder_.File("a.qpf"), bytes);
    CNvxFile file;
    EXPECT_TRUE(file.Open(path_.c_str(), kGenericRead, kShareRead, kOpenExisting));
    Diagnosis diagnosis;
    file.SetDiagnosis(&diagnosis);
    CProfileFileQPFv1 format;
    const bool loaded = format.LoadData(file, &data, false);
    reason_.clear();
    for (const Finding& finding : diagnosis.Findings()) {
      if (finding.severity == Severity::kError && finding.place.empty()) reason_ = finding.rule;
    }
    EXPECT_TRUE(loaded || !reason_.empty());
    return loaded;
  }
  bool Loads(const Bytes& bytes) {
    CProfileData data;
    return Load(bytes, data);
  }
  std::string ReasonAgainst(const Bytes& bytes) { return Loads(bytes) ? "loads" : reason_; }

  std::unique_ptr<CProfileFile> Detect(const Bytes& bytes) {
    WriteBytes(folder_.File("a.qpf"), bytes);
    return std::unique_ptr<CProfileFile>(CProfileFile::CreateProfileFile(path_.c_str(), true));
  }

  // The lines of passes in the file.
  std::size_t PassCodes() const {
    const Bytes bytes = ReadBytes(folder_.File("a.qpf"));
    const std::string text(bytes.begin(), bytes.end());
    std::size_t codes = 0;
    for (std::size_t at = 0; (at = text.find("Pass_Code:", at)) != text.npos; ++at) ++codes;
    return codes;
  }

  ScopedLanguage language_{"en_US.UTF-8"};
  LegacyFolder folder_;
  std::u16string path_ = folder_.WideFile("a.qpf");
  std::string reason_;
};

TEST_F(LegacyFile, LoadsHeaderSectionsAndContainer) {
  const Bytes container = Container(1, {1, 2, 3});
  const Bytes bytes =
      Joined(kLines + "Halftone_Code: 12x\r\nSeparateWay_Code:-3\r\nCreateTime_String:12:05:09 03/14/99\r\n@Binary\r\n",
             {Section(5, "notes.txt"), Section(7, "QctIcmForUse.qct"), Section(2, ""), ByteBuilder().U32(0, 0),
              ByteBuilder().Text("notes--"), container});
  CProfileData data;
  ASSERT_TRUE(Load(bytes, data));
  EXPECT_EQ(data.GetProfileInfo()->FullPath, path_);
  EXPECT_EQ(TextOf(*data.GetProfileInfo()),
            "FileName=a.qpf ModelCode=0042 ModelSubCode=07 InternalCode=13 ScanResolution=720 FeedResolution=1080 "
            "RenderingScan=360 RenderingFeed=540 Expand=4 ColorsetCode=12 InkTypeCode=5 DotType=1 InkMakerCode=3 "
            "InkVersion=2 MediaCode=0815 MediaName=Glossy Film RevisionCode=FFFF DatabaseKey=-1,-1,-1,-1,-1 "
            "HalftoneCode=12 SeparateWayCode=-3 ProfileMajorVersion=1 PrinterComment=Test printer PX CreateTime=yes "
            "wYear=1999 wMonth=3 wDay=14 wHour=12 wMinute=5 wSecond=9 UpdateTime=yes LayoutNumber=1 Unused=-1,-1 "
            "Text=yes Printer_Label=PX InkSet_Label=SetA Media_Code=0815 Media_Label=Film Media_Eng=Glossy Film "
            "Media_Jpn=Kotaku Dpi_Code=7201080");
  EXPECT_EQ(data.GetEntryCount(1), 1);
  EXPECT_EQ(data.GetProfileDataEntry(1, 6)->GetSize(), 3u);
}

TEST_F(LegacyFile, SavesTheExactBytesOfBothVersions) {
  const ScopedVariable zone("TZ", "UTC");
  const ScopedVariable epoch("SOURCE_DATE_EPOCH", "951830645");  // 2000-02-29 13:24:05
  CProfileData data;
  FillLegacyProfile(data, {}, {});
  for (const auto& [route, type] : {std::pair{1u, 6u}, {2u, 7u}}) {
    AddEntry(data, type, Bytes(3, static_cast<std::uint8_t>(type)), route).SetComplete(true);
  }
  const auto expected = [](int version, const std::vector<Bytes>& blocks) {
    return Joined(
        "Printer_Label:PX\r\nInkSet_Label:SetA\r\nMedia_Code:0000000815\r\nMedia_Label:Glossy Film\r\n"
        "Media_Eng:%11%Glossy Film\r\nMedia_Jpn:%6%Kotaku\r\nDpi_Code:107201080\r\nHalftone_Code:3\r\n"
        "Pass_Support:2\r\nPass_Code:4\r\nPass_Code:8\r\nRipVersion_Code:1\r\nProfileVersion_Code:" +
            std::to_string(version) + "\r\nSeparateWay_Code:0\r\nCreateTime_String:13:24:05 02/29/100\r\n@Binary\r\n",
        blocks);
  };
  const Bytes first = ByteBuilder().U32(331, 17).Text("QctIcmForUse.qct").U8(0);
  const Bytes second = ByteBuilder().U32(331, 17).Text("QctGryForUse.qct").U8(0);
  const Bytes end = ByteBuilder().Zero(8);

  ASSERT_TRUE(CProfileFileQPFv1().SaveData(path_.c_str(), &data, 2));
  EXPECT_EQ(ReadBytes(folder_.File("a.qpf")), expected(1, {second, end, Container(2, {7, 7, 7}, 7)}));
  ASSERT_TRUE(CProfileFileQPFv2().SaveData(path_.c_str(), &data, 99));
  const Bytes saved = ReadBytes(folder_.File("a.qpf"));
  EXPECT_EQ(saved, expected(2, {first, second, end, Container(1, {6, 6, 6}), Container(2, {7, 7, 7}, 7)}));

  // The field of the codes ends before the number of passes does.
  data.GetProfileInfo()->Text.Pass_Support = 1000;
  ASSERT_TRUE(CProfileFileQPFv2().SaveData(path_.c_str(), &data, 0));
  EXPECT_EQ(PassCodes(), std::size(data.GetProfileInfo()->Text.Pass_Code));
  data.GetProfileInfo()->Text.Pass_Support = 2;
  data.GetProfileInfo()->LayoutNumber = kNoView;
  ASSERT_TRUE(CProfileFileQPFv2().SaveData(path_.c_str(), &data, 0));
  EXPECT_EQ(data.GetProfileInfo()->LayoutNumber, kTextView) << "the view that was written is the one that holds";
  EXPECT_EQ(ReadBytes(folder_.File("a.qpf")), saved);

  CProfileAccess access;
  CError error;
  ASSERT_TRUE(access.Init(path_.c_str(), &error));
  EXPECT_EQ(access.GetProfileLoadFormat(), 3);
  EXPECT_TRUE(access.IsICCRoot() && access.IsGrayBalanceRoot());
  access.GetProfileInfo()->Text.Pass_Support = 0;
  ASSERT_TRUE(CProfileFileQPFv2().SaveData(path_.c_str(), access.GetProfileData(), 0));
  EXPECT_EQ(ReadBytes(folder_.File("a.qpf")).size(), saved.size() - 2 * std::strlen("Pass_Code:4\r\n"));
  EXPECT_EQ(PassCodes(), 0u);
}

TEST_F(LegacyFile, AFailedSaveLeavesTheOldFile) {
  WriteBytes(folder_.File("a.qpf"), {1, 2, 3});
  CProfileData data;
  FillLegacyProfile(data, {6}, {});
  EXPECT_FALSE(CProfileFileQPFv2().SaveData(path_.c_str(), &data, 0)) << "no route 2";
  EXPECT_FALSE(CProfileFileQPFv1().SaveData(path_.c_str(), &data, 2));
  std::strcpy(data.GetProfileInfo()->Text.Media_Label, "two\nlines");
  EXPECT_FALSE(CProfileFileQPFv1().SaveData(path_.c_str(), &data, 1));
  EXPECT_EQ(ReadBytes(folder_.File("a.qpf")), (Bytes{1, 2, 3}));
  std::strcpy(data.GetProfileInfo()->Text.Media_Label, "two lines");
  EXPECT_TRUE(CProfileFileQPFv1().SaveData(path_.c_str(), &data, 1));
}

TEST_F(LegacyFile, TakesValuesApart) {
  Probe probe;
  std::uint32_t scan = 1, feed = 2, dotType = 3;
  for (const char* const code : {"", "720", "720108", "0107201080"}) {
    EXPECT_FALSE(probe.GetOutputSetting(code, scan, feed, dotType)) << code;
  }
  EXPECT_EQ(scan + feed + dotType, 6u);
  using Setting = std::tuple<std::uint32_t, std::uint32_t, std::uint32_t>;
  const std::pair<const char*, Setting> kCodes[] = {{"7201080", {720, 1080, 1}},   {"07201080", {720, 1080, 1}},
                                                    {"14401080", {1440, 1080, 1}}, {"107201080", {720, 1080, 2}},
                                                    {"007201080", {720, 1080, 1}}, {"207201080", {720, 1080, 1}}};
  for (const auto& [code, setting] : kCodes) {
    EXPECT_TRUE(probe.GetOutputSetting(code, scan, feed, dotType)) << code;
    EXPECT_EQ(Setting(scan, feed, dotType), setting) << code;
  }

  const auto erased = [&](const char* value) {
    char out[256] = "before";
    probe.EraseCountFromMediaName(value, out);
    return std::string(out);
  };
  const std::pair<const char*, const char*> kNames[] = {{"%12%Glossy Paper", "Glossy Paper"},
                                                        {"Plain", "Plain"},
                                                        {"%", "%"},
                                                        {"%%x", "x"},
                                                        {"a%b%c", "b%c"},
                                                        {"%5%", ""},
                                                        {"", "before"}};
  for (const auto& [name, rest] : kNames) EXPECT_EQ(erased(name), rest) << name;

  const auto year = [&](const char* text) {
    SYSTEMTIME time{7, 7, 7, 7, 7, 7, 7, 7};
    probe.ConvertStringToTime(text, &time);
    EXPECT_EQ(time.wDayOfWeek, 7);
    EXPECT_EQ(time.wMilliseconds, 7);
    const int parts = time.wHour * 1000000 + time.wMinute * 10000 + time.wMonth * 100 + time.wDay;
    EXPECT_EQ(parts, time.wYear == 7 ? 7070707 : 12050314);
    return time.wYear;
  };
  const std::pair<const char*, int> kYears[] = {{"99", 1999}, {"91", 1991}, {"90", 2090}, {"100", 2000}, {"01", 2001}};
  for (const auto& [text, number] : kYears) {
    EXPECT_EQ(year((std::string("12:05:09 03/14/") + text).c_str()), number) << text;
  }
  EXPECT_EQ(year("12:05:09 03/14"), 7);
}

TEST_F(LegacyFile, ReadsLinesByItsOwnRules) {
  CProfileData data;
  std::string lines = kLines;
  for (std::size_t at = 0; (at = lines.find("\r\n", at)) != lines.npos; at += 4) lines.replace(at, 2, "\n\r\n\n");
  ASSERT_TRUE(
      Load(SimpleProfile(lines + "no colon\r@Binary \r@Binaryx:1\nMedia_Label :no key\rMedia_Label:last:one\r\n" +
                         "Extra:" + std::string(249, 'x') + "\r\n"),
           data));
  EXPECT_STREQ(data.GetProfileInfo()->Text.Media_Label, "last:one");

  // The text ends exactly at its line end; a section size may start with the bytes of one.
  for (const char* const end : {"@Binary\r\n", "@Binary\n"}) {
    const Bytes container = Container(1, {1});
    for (const std::uint32_t size : {10u, 13u, 0x0D0Au}) {
      const Bytes bytes =
          Joined(kLines + end, {Section(size, "other"), ByteBuilder().Zero(8), Bytes(size, 0xEE), container});
      EXPECT_TRUE(Loads(bytes)) << end << size;
    }
  }
  EXPECT_TRUE(Loads(SimpleProfile(kLines, "@Binary\r")));
}

TEST_F(LegacyFile, MediaNamesTakeOverTheNameBefore) {
  const struct {
    const char *locale, *english, *japanese, *label, *name, *textEnglish, *textJapanese;
  } kCases[] = {
      {"en", "%1%E", "%1%J", "L", "E", "E", "J"}, {"ja", "%1%E", "%1%J", "L", "J", "E", "J"},
      {"en", "", "J", "L", "L", "J", "J"},        {"en", "E", "", "L", "E", "E", "E"},
      {"ja", "E", "", "L", "L", "E", "L"},        {"ja", "", "", "L", "L", "L", "L"},
      {"en", "%0%", "", "L", "L", "", "L"},       {"ja", "E", "", "", "", "", ""},
  };
  for (const auto& item : kCases) {
    const ScopedLanguage locale(item.locale);
    CProfileData data;
    const std::string lines =
        kLines + "Media_Eng:" + item.english + "\nMedia_Jpn:" + item.japanese + "\nMedia_Label:" + item.label + "\n";
    if (*item.name == 0) {
      EXPECT_EQ(ReasonAgainst(SimpleProfile(lines)), "text header: no media name");
      continue;
    }
    ASSERT_TRUE(Load(SimpleProfile(lines), data));
    EXPECT_EQ(data.GetProfileInfo()->MediaName, Widen(item.name));
    EXPECT_STREQ(data.GetProfileInfo()->Text.Media_Eng, item.textEnglish);
    EXPECT_STREQ(data.GetProfileInfo()->Text.Media_Jpn, item.textJapanese);
  }
}

TEST_F(LegacyFile, TextIsThatOfTheCodePage) {
  {
    const ScopedLanguage japanese("ja_JP.UTF-8");
    folder_.WriteTable(ConversionTable() + "[Printer.\x83\x5D]\nModelCode=1\nModelSubCode=2\nInternalCode=3\nComment=" +
                       "\x83\x76\x83\x8A\x83\x93\x83\x5E\n[Printer.123:Scan.720:Feed.1080]\nRendering_Scan=1\n" +
                       "Rendering_Feed=0\nExpand=0\n");
    CProfileData data;
    ASSERT_TRUE(Load(SimpleProfile(kLines + "Printer_Label:\x83\x5D\nMedia_Jpn:%4%\x8C\xF5\x91\xF2\n"), data));
    EXPECT_EQ(data.GetProfileInfo()->MediaName, std::u16string(u"光沢"));
    EXPECT_EQ(data.GetProfileInfo()->PrinterComment, std::u16string(u"プリンタ"));
    // A field cuts behind a whole character.
    std::string longName = "x";
    for (int i = 0; i < 70; ++i) longName += "\x8C\xF5";
    ASSERT_TRUE(Load(SimpleProfile(kLines + "Media_Jpn:" + longName + "\n"), data));
    EXPECT_EQ(std::string(data.GetProfileInfo()->Text.Media_Jpn), longName.substr(0, 63));
    ASSERT_TRUE(Load(SimpleProfile(kLines + "Media_Jpn:" + longName.substr(1) + "\n"), data));
    EXPECT_EQ(std::string(data.GetProfileInfo()->Text.Media_Jpn), longName.substr(1, 62));
    EXPECT_EQ(std::u16string(data.GetProfileInfo()->MediaName).size(), 64u);
  }
  CProfileData data;
  ASSERT_TRUE(Load(SimpleProfile(kLines + "Media_Eng:%6%Pap\xEAter \x80\n"), data));
  EXPECT_EQ(data.GetProfileInfo()->MediaName, std::u16string(u"Papêter €"));

  // Characters of two words are kept whole or left out.
  const ScopedVariable page("NVXPROFILE_CODEPAGE", "65001");
  for (const std::size_t before : {62u, 63u, 64u}) {
    folder_.WriteTable(TableWithout(ConversionTable(), "Comment") +
                       "[Printer.PX]\nComment=" + std::string(before, 'c') + "😀\n");
    ASSERT_TRUE(Load(SimpleProfile(kLines), data));
    EXPECT_EQ(std::u16string(data.GetProfileInfo()->PrinterComment),
              std::u16string(before, u'c') + (before == 62 ? u"😀" : u""));
  }
}

TEST_F(LegacyFile, EachRequiredValueIsNamedWhenItIsMissing) {
  for (const char* const key : {"Printer_Label", "InkSet_Label", "Dpi_Code", "Media_Code"}) {
    std::string reason = "text header: no value for ";
    EXPECT_EQ(ReasonAgainst(SimpleProfile(kLines + key + ":\r\n")), reason + key);
  }
  EXPECT_EQ(ReasonAgainst(SimpleProfile(kLines + "Dpi_Code:720\n")), "text header: Dpi_Code has not 7, 8 or 9 digits");

  ASSERT_TRUE(Loads(SimpleProfile(kLines)));
  const char* const kOutput = "Printer.00420713:Scan.720:Feed.1080";
  const struct {
    const char *section, *key;
  } kKeys[] = {{"Printer.PX", "ModelCode"}, {"Printer.PX", "ModelSubCode"}, {"Printer.PX", "InternalCode"},
               {"Inkset.SetA", "Maker"},    {"Inkset.SetA", "Ink"},         {"Inkset.SetA", "Colorset"},
               {"Inkset.SetA", "Ver"},      {kOutput, "Rendering_Scan"},    {kOutput, "Rendering_Feed"},
               {kOutput, "Expand"}};
  for (const auto& item : kKeys) {
    const std::string reason = std::string("conversion table: no key ") + item.key + " in [" + item.section + "]";
    const std::string without = TableWithout(ConversionTable(), item.key);
    folder_.WriteTable(without);
    EXPECT_EQ(ReasonAgainst(SimpleProfile(kLines)), reason);
    EXPECT_EQ(Detect(SimpleProfile(kLines)), nullptr);
    folder_.WriteTable(without + "[" + item.section + "]\n" + item.key + "=" +
                       (std::string_view(item.section) == "Printer.PX" ? "\n" : "-1\n"));
    EXPECT_EQ(ReasonAgainst(SimpleProfile(kLines)), reason) << "empty or -1";
  }
  folder_.WriteTable(TableWithout(ConversionTable(), "Comment"));
  EXPECT_TRUE(Loads(SimpleProfile(kLines))) << "the comment may be missing";

  const ScopedVariable elsewhere("NVXPROFILE_PROFILE_DIR", folder_.File("none"));
  EXPECT_EQ(ReasonAgainst(SimpleProfile(kLines)), "conversion table: no file " + folder_.File("none/QPFConvert.qpd"));
}

TEST_F(LegacyFile, RefusesBrokenTextsAndTables) {
  const Bytes end = ByteBuilder().Zero(8);
  const Bytes container = Container(1, {1});
  const auto withTable = [&](const std::vector<Bytes>& blocks) { return Joined(kLines + "@Binary\r\n", blocks); };
  const Bytes huge = Section(0xFFFFFFFF, "x");
  const std::pair<Bytes, const char*> kCases[] = {
      {Joined(kLines, {}), "text header: no line \"@Binary\""},
      {Joined(kLines + "@binary\n@Binary\t\n", {}), "text header: no line \"@Binary\""},
      {SimpleProfile(kLines + std::string(256, 'x') + "\n"), "text header: line of more than 255 characters"},
      {SimpleProfile(kLines + std::string(255, 'x') + "\n"), "loads"},
      {withTable({}), "section table: no end record"},
      {withTable({Section(1, "a"), Bytes(7, 0)}), "section table: no end record"},
      {withTable({ByteBuilder().U32(1, 257).Zero(600)}), "section table: name of more than 255 characters"},
      {withTable({ByteBuilder().U32(1, 256).Fill('x', 256).Zero(300)}), "section table: name without its end"},
      {withTable({ByteBuilder().U32(1, 100).Zero(50)}), "section table: name cut short"},
      {withTable({Section(0, std::string(255, 'n')), end, container}), "loads"},
      {withTable({huge, end, container}), "section table: sections beyond the end"},
      {withTable({huge, huge, Section(2, ""), end, container}), "section table: sections beyond the end"},
      {withTable({Section(1, "x"), end, container}), "container header: wrong magic"},
  };
  for (const auto& [bytes, reason] : kCases) EXPECT_EQ(ReasonAgainst(bytes), reason);

  const Bytes good = SimpleProfile(kLines);
  for (std::size_t size = 0; size < good.size(); ++size) {
    EXPECT_FALSE(Loads(First(good, size))) << size;
  }
  CNvxMemFile memory(const_cast<std::uint8_t*>(good.data()), static_cast<std::uint32_t>(good.size()));
  CProfileData data;
  EXPECT_FALSE(CProfileFileQPFv1().LoadData(memory, &data, true)) << "a real file only";
  EXPECT_FALSE(CProfileFileQPFv1().LoadData(memory, nullptr, true));
}

TEST_F(LegacyFile, TheVersionDecidesTheFormat) {
  const auto formatOf = [&](const std::string& lines) {
    const std::unique_ptr<CProfileFile> file = Detect(SimpleProfile(lines));
    return file ? file->GetMyFormat() : 0;
  };
  EXPECT_EQ(formatOf(kLines), 2);
  EXPECT_EQ(formatOf(kLines + "ProfileVersion_Code: 2.5\n"), 3);
  EXPECT_EQ(formatOf(kLines + "ProfileVersion_Code:3\n"), 0);
  EXPECT_EQ(formatOf(kLines + "ProfileVersion_Code:\n"), 0) << "no version";
  EXPECT_EQ(formatOf(kLines + "Dpi_Code:1\n"), 0);
  EXPECT_EQ(Detect(Joined(kLines + "@Binary\r\n", {})), nullptr) << "no section table";
  EXPECT_EQ(formatOf("\r\n" + kLines), 0) << "does not start with the key";

  CProfileAccess access;
  CError error;
  EXPECT_FALSE(access.Init(path_.c_str(), &error));
  EXPECT_EQ(error.GetErrorCommentW(), u"Profile: File Format Error (file name:" + path_ + u")");
  WriteBytes(folder_.File("a.qpf"), SimpleProfile(kLines + "ProfileVersion_Code:2\n"));
  EXPECT_FALSE(access.Init(path_.c_str(), &error)) << "the second container is missing";
  EXPECT_EQ(error.GetErrorCommentW(), u"Profile: Load Error (file name:" + path_ + u")");
}

TEST_F(LegacyFile, ABinaryViewMakesRoomForTheText) {
  const auto fillBinary = [](CProfileData& data) {
    data.GetProfileInfo()->LayoutNumber = kBinaryView;
    data.GetProfileInfo()->Binary = {};
    data.GetProfileInfo()->Binary.ModelNumber = 0x41414141;
    data.SetMediaInfo(std::vector<tagMedia>(2));
  };
  CProfileData data;
  fillBinary(data);
  ASSERT_TRUE(Load(SimpleProfile(kLines), data));
  EXPECT_STREQ(data.GetProfileInfo()->Text.Printer_Label, "PX");
  EXPECT_EQ(data.GetProfileInfo()->Text.Pass_Support, 0u);
  const Bytes before = ReadBytes(folder_.File("a.qpf"));
  fillBinary(data);
  const std::string binary = TextOf(*data.GetProfileInfo());
  EXPECT_FALSE(CProfileFileQPFv1().SaveData(path_.c_str(), &data, 1)) << "there are no labels to write";
  EXPECT_EQ(ReadBytes(folder_.File("a.qpf")), before);
  EXPECT_EQ(TextOf(*data.GetProfileInfo()), binary);
}

}  // namespace
}  // namespace nvx::test
