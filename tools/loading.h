// What the commands have in common: loading a profile, and names for what is in it.
#pragma once

#include "files.h"
#include "payload.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/entry_types.h>
#include <nvxprofile/profile_access.h>

#include <string>
#include <string_view>
#include <vector>

namespace nvx::tool {

// Loads a profile, from standard input for "-". On failure the real cause goes to standard error and the result is
// false.
bool LoadProfile(const std::string& path, CProfileAccess& access);
// The same for a file that is at hand already; `path` is what the user calls it.
bool LoadProfile(const std::string& path, const InputFile& input, CProfileAccess& access);

// What keeps the file at `path` from loading: that it cannot be read, or the first rule that its bytes break, with the
// place.
std::string WhyNotLoaded(const std::u16string& path);

// The same out of what a look at the file found.
std::string FirstError(const Diagnosis& diagnosis, const std::u16string& path);

// Writes "nvxprofile: FILE: MESSAGE" to standard error.
void PrintErrorOf(const std::string& file, const std::string& message);

std::string_view FormatName(int format);
// Whether a profile of that format is text-headed, of either version.
inline bool IsTextHeaded(int format) { return format == kText1 || format == kText2; }
// Class name of an entry type, "CLinearizationEntry" for 6; empty for a type without a class.
std::string_view ClassName(std::uint32_t usedType);
// What an entry type is for, "linearization" for 6.
std::string_view EntryName(std::uint32_t usedType);
// The entry type with that name, or whose number the text is; 0 for none.
std::uint32_t UsedTypeByName(std::string_view name);

// The entries of a route, in order.
std::vector<CProfileDataEntry*> EntriesOf(CProfileRoute& route);
std::vector<CProfileRoute*> RoutesOf(CProfileData& data);

// The comment of an error record in UTF-8.
std::string MessageOf(const CError& error);

// The document as it is written, and the same to standard output.
std::string TextOf(const Json& json);
void PrintJson(const Json& json);
// The same on one line.
void PrintJsonLine(const Json& json);
// The documents of several files, as one that a parser reads: the one of a single file by itself, those of several
// files as an array. Each is written when it comes, so that no more than one is kept.
class JsonOfFiles {
 public:
  explicit JsonOfFiles(std::size_t fileCount) : isArray_(fileCount > 1) {}
  void Print(const Json& document);
  // The same as the text that TextOf would give.
  void PrintText(const std::string& document);
  // Behind the last one.
  void End();

 private:
  bool isArray_;
  bool isFirst_ = true;
};

}  // namespace nvx::tool
