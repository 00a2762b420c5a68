#include "loading.h"

#include "json_text.h"
#include "numbers.h"
#include "terminal.h"

#include <nvxprofile/entry_types.h>
#include <nvxprofile/error.h>
#include <nvxprofile/text_conversion.h>

#include <algorithm>
#include <utility>

namespace nvx::tool {

bool LoadProfile(const std::string& path, CProfileAccess& access) { return LoadProfile(path, InputFile(path), access); }

bool LoadProfile(const std::string& path, const InputFile& input, CProfileAccess& access) {
  if (!input.Failure().empty()) {
    PrintErrorOf(path, input.Failure());
    return false;
  }
  CError error;
  if (!access.Init(input.Path().c_str(), &error)) {
    PrintErrorOf(path, WhyNotLoaded(input.Path()));
    return false;
  }
  if (path == kStandardStream) {
    // The temporary file is nobody's business.
    _tagDeviceProfileInfo& info = *access.GetProfileInfo();
    std::fill(std::begin(info.FileName), std::end(info.FileName), u'\0');
    std::fill(std::begin(info.FullPath), std::end(info.FullPath), u'\0');
    info.FileName[0] = u'-';
  }
  return true;
}

std::string WhyNotLoaded(const std::u16string& path) {
  Diagnosis diagnosis;
  DiagnoseProfile(path.c_str(), diagnosis);
  return FirstError(diagnosis, path);
}

std::string FirstError(const Diagnosis& diagnosis, const std::u16string& path) {
  for (const Finding& finding : diagnosis.Findings()) {
    if (finding.severity != Severity::kError) continue;
    if (finding.rule == "file: cannot be opened") return WhyNotOpened(WideToPath(path));
    return finding.place.empty() ? finding.rule : finding.place + ": " + finding.rule;
  }
  return "cannot be loaded";
}

void PrintErrorOf(const std::string& file, const std::string& message) { PrintError(file + ": " + message); }

std::string_view FormatName(int format) {
  const FormatType* const type = FindFormatType(format);
  return type != nullptr ? type->title : "unknown";
}

std::string_view ClassName(std::uint32_t usedType) {
  const EntryType* const type = FindEntryType(usedType);
  return type != nullptr ? type->className : std::string_view();
}

std::string_view EntryName(std::uint32_t usedType) {
  const EntryType* const type = FindEntryType(usedType);
  return type != nullptr ? type->name : std::string_view();
}

std::uint32_t UsedTypeByName(std::string_view name) {
  if (const EntryType* const type = FindEntryType(name)) return type->usedType;
  const std::uint32_t number = NumberOf<std::uint32_t>(name).value_or(0);
  return FindEntryType(number) != nullptr ? number : 0;
}

std::vector<CProfileDataEntry*> EntriesOf(CProfileRoute& route) {
  std::vector<CProfileDataEntry*> entries;
  bool more = route.GetHeadPos();
  while (more) entries.push_back(route.GetNext(more));
  return entries;
}

std::vector<CProfileRoute*> RoutesOf(CProfileData& data) {
  std::vector<CProfileRoute*> routes;
  bool more = data.GetRouteStartPos();
  while (more) routes.push_back(data.GetNextRoute(more));
  return routes;
}

std::string MessageOf(const CError& error) { return WideToUtf8(error.GetErrorCommentW()); }

std::string TextOf(const Json& json) { return JsonText(json, JsonLayout::kIndented) + "\n"; }
void PrintJson(const Json& json) { WriteStandardOutput(TextOf(json)); }
void PrintJsonLine(const Json& json) { PrintLine(JsonText(json, JsonLayout::kLine)); }

void JsonOfFiles::Print(const Json& document) { PrintText(TextOf(document)); }

void JsonOfFiles::PrintText(const std::string& document) {
  if (isArray_) WriteStandardOutput(isFirst_ ? "[\n" : ",\n");
  isFirst_ = false;
  WriteStandardOutput(document);
}

void JsonOfFiles::End() {
  if (isArray_) WriteStandardOutput(isFirst_ ? "[]\n" : "]\n");
}

}  // namespace nvx::tool
