// The legacy text-headed profile: lines of text, a table of sections, and one or two entry-table containers. The form
// stands in docs/formats/text_header.md, the conversion table in docs/formats/conversion_table.md.
#pragma once

#include <nvxprofile/export.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/profile_info.h>
#include <nvxprofile/system_time.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace nvx::platform {
class IniFile;
}

// The INI file "QPFConvert.qpd", which turns labels of a text header into model, ink and resolution numbers. Its folder
// comes from the system's settings when the object is made; the file is read once, at the first lookup, and copies of
// the object share what was read. Labels are text of the ANSI code page. A lookup that gives false says in GetFailure
// why.
class NVX_EXPORT CQPFConvertTable {
 public:
  // Without a folder and without the file the table stays empty, and no lookup finds anything.
  CQPFConvertTable();

  // The three code texts of section "Printer.<label>", cut to their fields; false if one is empty or missing.
  bool GetModelCodes(const char* label, char16_t (&model)[5], char16_t (&subCode)[3], char16_t (&internal)[3]);
  // "Comment" of the same section, empty if missing; true if there is one.
  bool GetPrinterComment(const char* label, char16_t (&comment)[65]);

  // One key of section "Inkset.<label>" each; false, with the value left alone, for a missing key and for -1.
  bool GetInkMaker(const char* label, std::int32_t& value);
  bool GetInkType(const char* label, std::int32_t& value);
  bool GetInkColorset(const char* label, std::int32_t& value);
  bool GetInkVersion(const char* label, std::int32_t& value);

  // The three keys of section "Printer.<codes>:Scan.<scan>:Feed.<feed>"; false for a missing key and for -1.
  bool GetRenderingSetting(const char16_t* model, const char16_t* subCode, const char16_t* internal, std::uint32_t scan,
                           std::uint32_t feed, std::uint32_t& renderingScan, std::uint32_t& renderingFeed,
                           std::uint32_t& expand);

  // Why the last lookup gave false, such as "conversion table: no key Maker in [Inkset.X]". UTF-8.
  const std::string& GetFailure() const { return failure_; }

 private:
  const nvx::platform::IniFile& Table();
  bool GetInkNumber(const char* label, const char* key, std::int32_t& value);
  bool FailWithoutKey(const std::string& section, const char* key);

  std::string path_;  // UTF-8; empty if the table is not there
  std::shared_ptr<const nvx::platform::IniFile> table_;
  std::string failure_;
};

// Version 1, with one container. The record keeps the path of the stream, so a load works from a real file only. Text
// longer than its field is cut behind its last whole character.
class NVX_EXPORT CProfileFileQPFv1 : public CProfileFileQCT {
 public:
  CProfileFileQPFv1();
  ~CProfileFileQPFv1() override;

  // The table as the loads of this object use it.
  const CQPFConvertTable& GetConversionTable() const { return table_; }

 protected:
  explicit CProfileFileQPFv1(std::int32_t headerVersion, CQPFConvertTable table = {});

  // Reads text header and section table and leaves the stream behind the table. Makes LayoutNumber 1; of a binary view
  // that the record held nothing stays. False also for a line of 256 characters or more, for a text without
  // "@Binary", and for a section table that breaks its rules or does not end within the file.
  bool LoadHeader(CNvxFile& file, CProfileData* data) override;
  // Reads the container at the offset load point onto the route that its header names.
  bool LoadEntries(CNvxFile& file, CProfileData* data) override;
  // Writes the text header with the local time of the save. Makes LayoutNumber 1. False, with nothing written, for a
  // text with a line end in it and for a record with the binary view, which has no labels to write; false for a short
  // write.
  bool SaveHeader(CNvxFile& file, CProfileData* data, std::uint32_t route) override;
  // Writes section table and container of the one route, which must exist.
  bool SaveBody(CNvxFile& file, CProfileData* data, std::uint32_t route) override;

  // Fills the record from the keys and values of a header. False if a required value or a lookup in the conversion
  // table gives nothing; the record is then filled up to there.
  bool AnalyzeHeaderString(_tagDeviceProfileInfo* info, const std::map<std::string, std::string>& header);

  // Takes a resolution code of 7, 8 or 9 digits apart; false, with the results left alone, for another length.
  bool GetOutputSetting(const std::string& dpiCode, std::uint32_t& scan, std::uint32_t& feed, std::uint32_t& dotType);

  // Copies a media name without its count, as in "%5%Glass", into room for 256 bytes. An empty value leaves `out`.
  void EraseCountFromMediaName(const std::string& value, char* out);

  // "hh:mm:ss MM/DD/YY"; a year above 90 counts from 1900, any other from 2000. A text without one of the separators
  // leaves `out`; day of week and milliseconds stay in any case.
  void ConvertStringToTime(const char* text, SYSTEMTIME* out);

  // From the ANSI code page into room for `size` characters.
  void ConvertCharToWChar(const char* text, char16_t* out, std::size_t size);

  // Reads the section table and sets the offset load point behind the sections that are no containers. False if that
  // lies beyond the end of the stream.
  bool LoadCotDataSection(CNvxFile& file, CProfileData* data);

  // Writes the record of the route's container; false if there is no such route.
  bool SaveCotEntryHeader(CNvxFile& file, CProfileData* data, std::uint32_t route);

  // Reads the container at the offset load point.
  bool LoadContainer(CNvxFile& file, CProfileData* data);

 private:
  CQPFConvertTable table_;
  std::int32_t headerVersion_;  // written as ProfileVersion_Code
  std::string failure_;         // why AnalyzeHeaderString gave false
};

// Version 2, with the container of route 1 and behind it that of route 2. Both routes must exist for a save, whose
// route argument takes no part.
class NVX_EXPORT CProfileFileQPFv2 : public CProfileFileQPFv1 {
 public:
  CProfileFileQPFv2();
  // With the conversion table as the other object has read it.
  explicit CProfileFileQPFv2(const CProfileFileQPFv1& other);
  ~CProfileFileQPFv2() override;

  using CProfileFileQPFv1::LoadData;
  bool LoadData(CNvxFile& file, CProfileData* data, bool headerOnly) override;

 protected:
  bool LoadEntries(CNvxFile& file, CProfileData* data) override;
  bool SaveBody(CNvxFile& file, CProfileData* data, std::uint32_t route) override;
};
