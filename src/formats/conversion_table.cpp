// The conversion table of the text-headed form.
#include "core/text.h"
#include "platform/file_system.h"
#include "platform/locale.h"
#include "platform/settings.h"

#include <nvxprofile/profile_file_text.h>

#include <memory>
#include <optional>
#include <string_view>

namespace platform = nvx::platform;

namespace {

constexpr std::string_view kFileName = "QPFConvert.qpd";
constexpr std::size_t kLongestValue = 255;
constexpr std::int32_t kMissing = -1;

std::string PrinterSection(const char* label) { return "Printer." + std::string(nvx::TextOf(label)); }

// A value as the wide text of a field. An empty one counts as missing.
template <std::size_t N>
bool TakeText(const std::optional<std::string>& value, char16_t (&field)[N]) {
  const std::string_view text = value ? platform::CutAnsi(*value, kLongestValue) : std::string_view();
  nvx::CopyText(field, nvx::Fitting(platform::AnsiToWide(text), N));
  return !text.empty();
}

}  // namespace

CQPFConvertTable::CQPFConvertTable() {
  const std::string folder = platform::ProfileFolder();
  if (folder.empty()) {
    failure_ = "conversion table: no folder is set for it";
    return;
  }
  std::string path = folder + "/" + std::string(kFileName);
  if (!platform::FileExists(platform::PathToWide(path))) {
    failure_ = "conversion table: no file " + path;
  } else {
    path_ = std::move(path);
  }
}

const nvx::platform::IniFile& CQPFConvertTable::Table() {
  if (!table_)
    table_ = std::make_shared<const platform::IniFile>(path_.empty() ? platform::IniFile() : platform::IniFile(path_));
  return *table_;
}

bool CQPFConvertTable::FailWithoutKey(const std::string& section, const char* key) {
  if (path_.empty()) return false;
  failure_ = "conversion table: no key " + std::string(key) + " in [" +
             platform::WideToUtf8(platform::AnsiToWide(section)) + "]";
  return false;
}

bool CQPFConvertTable::GetModelCodes(const char* label, char16_t (&model)[5], char16_t (&subCode)[3],
                                     char16_t (&internal)[3]) {
  const std::string section = PrinterSection(label);
  const auto values = Table().Texts(section, {"ModelCode", "ModelSubCode", "InternalCode"});
  if (!TakeText(values[0], model)) return FailWithoutKey(section, "ModelCode");
  if (!TakeText(values[1], subCode)) return FailWithoutKey(section, "ModelSubCode");
  return TakeText(values[2], internal) || FailWithoutKey(section, "InternalCode");
}

bool CQPFConvertTable::GetPrinterComment(const char* label, char16_t (&comment)[65]) {
  const std::string section = PrinterSection(label);
  return TakeText(Table().Text(section, "Comment"), comment) || FailWithoutKey(section, "Comment");
}

bool CQPFConvertTable::GetInkNumber(const char* label, const char* key, std::int32_t& value) {
  const std::string section = "Inkset." + std::string(nvx::TextOf(label));
  const std::int32_t number = platform::IniInteger(Table().Text(section, key), kMissing);
  if (number == kMissing) return FailWithoutKey(section, key);
  value = number;
  return true;
}

bool CQPFConvertTable::GetInkMaker(const char* label, std::int32_t& value) {
  return GetInkNumber(label, "Maker", value);
}
bool CQPFConvertTable::GetInkType(const char* label, std::int32_t& value) { return GetInkNumber(label, "Ink", value); }
bool CQPFConvertTable::GetInkColorset(const char* label, std::int32_t& value) {
  return GetInkNumber(label, "Colorset", value);
}
bool CQPFConvertTable::GetInkVersion(const char* label, std::int32_t& value) {
  return GetInkNumber(label, "Ver", value);
}

bool CQPFConvertTable::GetRenderingSetting(const char16_t* model, const char16_t* subCode, const char16_t* internal,
                                           std::uint32_t scan, std::uint32_t feed, std::uint32_t& renderingScan,
                                           std::uint32_t& renderingFeed, std::uint32_t& expand) {
  std::u16string codes(nvx::TextOf(model));
  codes += nvx::TextOf(subCode);
  codes += nvx::TextOf(internal);
  const std::string section = "Printer." + platform::WideToAnsi(codes) + ":Scan." +
                              std::to_string(static_cast<std::int32_t>(scan)) + ":Feed." +
                              std::to_string(static_cast<std::int32_t>(feed));
  constexpr const char* kKeys[] = {"Rendering_Scan", "Rendering_Feed", "Expand"};
  std::uint32_t* const results[] = {&renderingScan, &renderingFeed, &expand};
  const auto values = Table().Texts(section, {kKeys[0], kKeys[1], kKeys[2]});
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::int32_t number = platform::IniInteger(values[i], kMissing);
    if (number == kMissing) return FailWithoutKey(section, kKeys[i]);
    *results[i] = static_cast<std::uint32_t>(number);
  }
  return true;
}
