// The table of entry types against the classes and the files that it speaks of.
#include "formats/qpf_tags.h"

#include <nvxprofile/calibration.h>
#include <nvxprofile/curve_entry.h>
#include <nvxprofile/entry_types.h>
#include <nvxprofile/profile_file_icc.h>
#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/profile_file_text.h>

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <typeinfo>

namespace {

TEST(EntryTypes, SayWhatTheClassesSay) {
  std::set<std::string_view> names;
  std::uint32_t last = 0;
  for (const nvx::EntryType& type : nvx::EntryTypes()) {
    SCOPED_TRACE(type.name);
    const std::unique_ptr<CProfileDataEntry> entry(CProfileDataEntry::CreateDataEntry(type.usedType));
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->GetUsedType(), type.usedType);
    EXPECT_EQ(entry->GetFormatType(), type.formatType);
    EXPECT_EQ(entry->IsDisplayEnable(), type.isDisplayed);
    const CProfileDataEntry& made = *entry;
    EXPECT_NE(std::string(typeid(made).name()).find(type.className), std::string::npos);
    EXPECT_EQ(entry->AsCurveEntry(), dynamic_cast<CProfileCurveEntry*>(entry.get()));
    EXPECT_EQ(entry->AsContainer(), dynamic_cast<CContainerEntry*>(entry.get()));
    EXPECT_GT(type.usedType, last);
    last = type.usedType;
    EXPECT_TRUE(names.insert(type.name).second);
    EXPECT_EQ(nvx::FindEntryType(type.usedType), &type);
    EXPECT_EQ(nvx::FindEntryType(type.name), &type);
    EXPECT_STREQ(nvx::FindEntryType(type.className)->className.data(), type.className.data());
  }
  EXPECT_EQ(names.size(), 26u);
  EXPECT_EQ(nvx::FindEntryType(11), nullptr);
  EXPECT_EQ(nvx::FindEntryType("none"), nullptr);
  EXPECT_EQ(CProfileDataEntry::CreateDataEntry(static_cast<CProfileDataEntry::UsedType>(11)), nullptr);
}

TEST(EntryTypes, StandWhereFilesKeepThem) {
  for (const nvx::RouteTag& tag : {nvx::kReplaceProfileTag, nvx::kCalibrationTag, nvx::kMaskDownloadTag,
                                   nvx::kLargeParameterTag, nvx::kSpecialColorTag}) {
    std::size_t count = 0;
    for (const nvx::EntryType& type : nvx::EntryTypes()) {
      EXPECT_EQ(type.route == tag.route, std::string(type.tag) == tag.name) << type.name;
      count += type.route == tag.route ? 1 : 0;
    }
    EXPECT_EQ(count, tag.route == nvx::kRouteMaskDownload ? 2u : 1u) << tag.name;
  }
}

TEST(FormatTypes, SayWhatTheClassesSay) {
  EXPECT_EQ(nvx::FindFormatType("container")->format, CProfileFileQCT().GetMyFormat());
  EXPECT_EQ(nvx::FindFormatType("text-1")->format, CProfileFileQPFv1().GetMyFormat());
  EXPECT_EQ(nvx::FindFormatType("text-2")->format, CProfileFileQPFv2().GetMyFormat());
  EXPECT_EQ(nvx::FindFormatType("printer-profile")->format, CProfileFileQPFv4().GetMyFormat());
  EXPECT_EQ(nvx::FindFormatType("icc")->format, CProfileFileICC().GetMyFormat());
  for (const nvx::FormatType& type : nvx::FormatTypes()) {
    EXPECT_EQ(nvx::FindFormatType(type.format), &type);
    const bool isText = type.extension == ".qpf";
    EXPECT_EQ(isText, type.format == nvx::kText1 || type.format == nvx::kText2) << type.name;
    EXPECT_EQ(type.isConverted, isText) << type.name;
    EXPECT_EQ(type.hasRoutes, type.format == nvx::kPrinterProfile) << type.name;
    EXPECT_EQ(type.hasRecord, type.isConverted || type.hasRoutes) << type.name;
  }
  EXPECT_EQ(nvx::FindFormatType(5), nullptr);
  EXPECT_EQ(nvx::FindFormatType("none"), nullptr);
}

}  // namespace
