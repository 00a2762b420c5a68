// The pieces of the text-headed form: its text and the records of its section table; docs/formats/text_header.md draws
// them.
#pragma once

#include "core/record.h"

#include <nvxprofile/file.h>
#include <nvxprofile/profile_info.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace nvx {

// What the file starts with, and the line that ends the text.
inline constexpr std::string_view kTextHeaderStart = "Printer_Label:";
inline constexpr std::string_view kTextHeaderEnd = "@Binary";

// Characters of a line, and of a section's name.
inline constexpr std::size_t kLongestLine = 255;
inline constexpr std::size_t kLongestSectionName = 255;

// What tells a section that holds a container by its name.
inline constexpr std::string_view kContainerMark = ".qct";

namespace header_key {
inline constexpr const char* kPrinterLabel = "Printer_Label";
inline constexpr const char* kInkSetLabel = "InkSet_Label";
inline constexpr const char* kMediaCode = "Media_Code";
inline constexpr const char* kMediaLabel = "Media_Label";
inline constexpr const char* kMediaEnglish = "Media_Eng";
inline constexpr const char* kMediaJapanese = "Media_Jpn";
inline constexpr const char* kDpiCode = "Dpi_Code";
inline constexpr const char* kHalftoneCode = "Halftone_Code";
inline constexpr const char* kPassSupport = "Pass_Support";
inline constexpr const char* kPassCode = "Pass_Code";
inline constexpr const char* kRipVersion = "RipVersion_Code";
inline constexpr const char* kProfileVersion = "ProfileVersion_Code";
inline constexpr const char* kSeparateWay = "SeparateWay_Code";
inline constexpr const char* kCreateTime = "CreateTime_String";
}  // namespace header_key

struct TextHeader {
  std::map<std::string, std::string> values;  // by key; of the keys that a load looks at alone
  std::uint32_t end = 0;                      // offset of the first byte behind the text
};

// Reads the text from the start of the stream up to the end of the line "@Binary". Any run of CR and LF ends a line but
// this one, which ends with CR LF or one of them alone: what follows belongs to the section table. False for a text
// without that line and for a line that is too long.
bool ReadTextHeader(CNvxFile& file, TextHeader& header);

// The start of a record of the section table; the name follows.
struct SectionRecord {
  std::uint32_t size = 0;        // bytes of the section's content
  std::uint32_t nameLength = 0;  // bytes of the name with its terminator

  bool IsEndMark() const { return size == 0 && nameLength == 0; }

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Number("section size", record.size);
    codec.Number("name length", record.nameLength);
  }
};

static_assert(kRecordSize<SectionRecord> == 8);

// Leading decimal digits behind blanks and an optional sign, limited to 32 bits; 0 for text without any.
std::int32_t LeadingNumber(std::string_view text);
std::int32_t LeadingNumber(std::u16string_view text);

}  // namespace nvx
