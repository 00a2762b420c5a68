#include "loading.h"

#include "terminal.h"

#include <nvxprofile/error.h>
#include <nvxprofile/text_conversion.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace nvx::tool {
namespace {

struct EntryNames {
  std::uint32_t usedType;
  std::string_view className;
  std::string_view name;
};

constexpr std::array<EntryNames, 26> kEntries{{
    {1, "CModelEntry", "model"},
    {2, "CInkLimitEntry", "ink-limit"},
    {3, "CVariableInkLimitEntry", "variable-ink-limit"},
    {4, "CVariableEntry", "variable"},
    {5, "CSeparateLightEntry", "light-ink"},
    {6, "CLinearizationEntry", "linearization"},
    {7, "CGrayBalanceEntry", "gray-balance"},
    {8, "CSeparateChromaEntry", "chroma"},
    {9, "CUcrEntry", "ucr"},
    {10, "CICMEntry", "icc"},
    {14, "CInfoEntry", "info"},
    {16, "CMediaPropertyEntry", "media-property"},
    {17, "CMultiInkLimitEntry", "multi-ink-limit"},
    {18, "CReplaceProfileEntry", "replacement-icc"},
    {19, "CCalibrationHistoryEntry", "calibration-history"},
    {20, "CCalibrationContainerEntry", "calibration"},
    {21, "CCalibrationTargetEntry", "calibration-target"},
    {22, "CCalibrationInfoEntry", "calibration-info"},
    {23, "CCalibrationInklimitEntry", "calibration-ink-limit"},
    {24, "CCalibrationLinearizationEntry", "calibration-linearization"},
    {25, "CCalibrationGrayBalanceEntry", "calibration-gray-balance"},
    {26, "CCalibrationTargetEntry", "calibration-target-2"},
    {27, "CMaskDownLoadEntry", "mask-download"},
    {28, "CLargeParameterEntry", "large-parameter"},
    {29, "CMaskDownloadIncludePatternEntry", "mask-patterns"},
    {30, "CSpecialColorInfoEntry", "special-color"},
}};

const EntryNames* Find(std::uint32_t usedType) {
  const auto found =
      std::find_if(kEntries.begin(), kEntries.end(), [=](const EntryNames& e) { return e.usedType == usedType; });
  return found != kEntries.end() ? &*found : nullptr;
}

}  // namespace

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
  switch (format) {
    case 1:
      return "entry-table container";
    case 2:
      return "text-headed profile, version 1";
    case 3:
      return "text-headed profile, version 2";
    case 4:
      return "ICC-based printer profile";
    case 6:
      return "plain ICC profile";
    default:
      return "unknown";
  }
}

std::string_view ClassName(std::uint32_t usedType) {
  const EntryNames* const names = Find(usedType);
  return names != nullptr ? names->className : std::string_view();
}

std::string_view EntryName(std::uint32_t usedType) {
  const EntryNames* const names = Find(usedType);
  return names != nullptr ? names->name : std::string_view();
}

std::uint32_t UsedTypeByName(std::string_view name) {
  for (const EntryNames& entry : kEntries) {
    if (entry.name == name || entry.className == name) return entry.usedType;
  }
  std::uint32_t number = 0;
  const auto [rest, error] = std::from_chars(name.data(), name.data() + name.size(), number);
  return error == std::errc() && rest == name.data() + name.size() && Find(number) != nullptr ? number : 0;
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

void PrintJson(const Json& json) { PrintLine(json.dump(2, ' ', false, Json::error_handler_t::replace)); }
void PrintJsonLine(const Json& json) { PrintLine(json.dump(-1, ' ', false, Json::error_handler_t::replace)); }

void PrintJsonOfFiles(std::vector<Json> documents, std::size_t fileCount) {
  if (fileCount > 1) {
    PrintJson(Json(std::move(documents)));
  } else if (!documents.empty()) {
    PrintJson(documents.front());
  }
}

}  // namespace nvx::tool
