// The entry types and the file formats, one row each: numbers, names, and where things stand. Whoever lists, names or
// places entries or formats takes it from here.
#pragma once

#include <nvxprofile/export.h>
#include <nvxprofile/profile_entry.h>

#include <cstdint>
#include <span>
#include <string_view>

namespace nvx {

class FieldCodec;

// One row of the entry types.
struct EntryType {
  CProfileDataEntry::UsedType usedType;
  CProfileDataEntry::FormatType formatType;
  bool isDisplayed;                // what IsDisplayEnable says of a new entry
  std::string_view name;           // as documents and the tool call it, such as "ink-limit"
  std::string_view className;      // the class that CreateDataEntry makes
  std::uint32_t route;             // where a profile of the current generation has it
  const char* tag;                 // the private tag that keeps that route
  CProfileDataEntry* (*create)();  // makes a new entry, as CreateDataEntry does
  // What TellFields and FillFields call (nvxprofile/fields.h); null for a type whose payload has no fields.
  bool (*visit)(FieldCodec& codec, CProfileDataEntry& entry);
};

// All types in the order of their numbers.
NVX_EXPORT std::span<const EntryType> EntryTypes();
// Null for a number, and for a name or class name, that no row has. Of two types of one class the first counts.
NVX_EXPORT const EntryType* FindEntryType(std::uint32_t usedType);
NVX_EXPORT const EntryType* FindEntryType(std::string_view name);

// What CProfileFile::GetMyFormat gives.
enum ProfileFormat : int {
  kContainer = 1,
  kText1 = 2,
  kText2 = 3,
  kPrinterProfile = 4,
  kPlainIcc = 6,
};

// One row of the file formats.
struct FormatType {
  ProfileFormat format;
  std::string_view name;       // as documents call it, such as "printer-profile"
  std::string_view title;      // for people
  std::string_view extension;  // that its files usually have, with the dot
  bool isConverted;            // CConvertV2ToV3Profile makes a profile of the current generation of it
  bool hasRoutes;              // keeps the routes of current profiles apart, each in its tag
  bool hasRecord;              // keeps an information record
};

// All formats in the order of their numbers.
NVX_EXPORT std::span<const FormatType> FormatTypes();
// Null for what no row has.
NVX_EXPORT const FormatType* FindFormatType(int format);
NVX_EXPORT const FormatType* FindFormatType(std::string_view name);

}  // namespace nvx
