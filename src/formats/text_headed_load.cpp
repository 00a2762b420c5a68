// Reading of the text-headed form.
#include "core/stream.h"
#include "core/text.h"
#include "formats/record_views.h"
#include "formats/text_header.h"
#include "platform/locale.h"

#include <nvxprofile/entry_types.h>
#include <nvxprofile/profile_file_text.h>

#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace platform = nvx::platform;
namespace header_key = nvx::header_key;

namespace {

constexpr std::size_t kMediaNameRoom = 256;
constexpr std::int32_t kNoDatabaseKey = -1;

using Values = std::map<std::string, std::string>;

struct OutputSetting {
  std::uint32_t scan = 0;
  std::uint32_t feed = 0;
  std::uint32_t dotType = 1;
};

std::optional<OutputSetting> ParseDpiCode(std::string_view code) {
  if (code.size() < 7 || code.size() > 9) return std::nullopt;
  OutputSetting setting;
  if (code.size() == 9) {
    if (code.front() == '1') setting.dotType = 2;
    code.remove_prefix(1);
  }
  const std::size_t feedStart = code.size() - 4;
  setting.scan = static_cast<std::uint32_t>(nvx::LeadingNumber(code.substr(0, feedStart)));
  setting.feed = static_cast<std::uint32_t>(nvx::LeadingNumber(code.substr(feedStart)));
  return setting;
}

// "%5%Glass" is "Glass". The first character is never taken for the second percent sign.
std::string_view WithoutCount(std::string_view value) {
  const std::size_t percent = value.find('%', 1);
  return percent == value.npos ? value : value.substr(percent + 1);
}

std::optional<SYSTEMTIME> ParseTime(std::string_view text, SYSTEMTIME time) {
  constexpr std::array<char, 5> kSeparators{':', ':', ' ', '/', '/'};
  std::array<std::uint16_t*, 5> parts{&time.wHour, &time.wMinute, &time.wSecond, &time.wMonth, &time.wDay};
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const std::size_t end = text.find(kSeparators[i]);
    if (end == text.npos) return std::nullopt;
    *parts[i] = static_cast<std::uint16_t>(nvx::LeadingNumber(text.substr(0, end)));
    text.remove_prefix(end + 1);
  }
  const std::int32_t year = nvx::LeadingNumber(text);
  time.wYear = static_cast<std::uint16_t>(static_cast<std::uint32_t>(year) + (year > 90 ? 1900u : 2000u));
  return time;
}

void StoreWide(char16_t* out, std::size_t size, std::string_view text) {
  nvx::CopyText(out, size, nvx::Fitting(platform::AnsiToWide(text), size));
}

template <std::size_t N>
void StoreWide(char16_t (&field)[N], std::string_view text) {
  StoreWide(field, N, text);
}

// Narrow text in a field, cut between characters.
template <std::size_t N>
void StoreAnsi(char (&field)[N], std::string_view text) {
  nvx::CopyText(field, platform::CutAnsi(text, N - 1));
}

// Fills an information record from the values of a text header.
class HeaderAnalysis {
 public:
  HeaderAnalysis(CQPFConvertTable& table, const Values& header, _tagDeviceProfileInfo& info)
      : table_(table), header_(header), info_(info) {}

  bool Run() {
    if (!TakePrinter() || !TakeInkSet() || !TakeOutput() || !TakeMedia()) return false;
    TakeOptionalValues();
    return true;
  }
  // Why Run gave false.
  std::string& Failure() { return failure_; }

 private:
  std::string_view Value(const char* key) const {
    const auto found = header_.find(key);
    return found != header_.end() ? std::string_view(found->second) : std::string_view();
  }

  bool Fail(std::string_view reason) {
    failure_ = reason;
    return false;
  }
  bool FailWithout(const char* key) { return Fail("text header: no value for " + std::string(key)); }

  bool TakePrinter() {
    const std::string label(Value(header_key::kPrinterLabel));
    if (label.empty()) return FailWithout(header_key::kPrinterLabel);
    if (!table_.GetModelCodes(label.c_str(), info_.ModelCode, info_.ModelSubCode, info_.InternalCode)) {
      return Fail(table_.GetFailure());
    }
    StoreAnsi(info_.Text.Printer_Label, label);
    table_.GetPrinterComment(label.c_str(), info_.PrinterComment);
    return true;
  }

  bool TakeInkSet() {
    const std::string label(Value(header_key::kInkSetLabel));
    if (label.empty()) return FailWithout(header_key::kInkSetLabel);
    const char* const name = label.c_str();
    if (!table_.GetInkMaker(name, info_.InkMakerCode) || !table_.GetInkType(name, info_.InkTypeCode) ||
        !table_.GetInkColorset(name, info_.ColorsetCode) || !table_.GetInkVersion(name, info_.InkVersion)) {
      return Fail(table_.GetFailure());
    }
    StoreAnsi(info_.Text.InkSet_Label, label);
    return true;
  }

  bool TakeOutput() {
    const std::string_view code = Value(header_key::kDpiCode);
    if (code.empty()) return FailWithout(header_key::kDpiCode);
    const std::optional<OutputSetting> setting = ParseDpiCode(code);
    if (!setting) return Fail("text header: Dpi_Code has not 7, 8 or 9 digits");
    info_.ScanResolution = setting->scan;
    info_.FeedResolution = setting->feed;
    info_.DotType = static_cast<std::int32_t>(setting->dotType);
    if (!table_.GetRenderingSetting(info_.ModelCode, info_.ModelSubCode, info_.InternalCode, setting->scan,
                                    setting->feed, info_.RenderingScan, info_.RenderingFeed, info_.Expand)) {
      return Fail(table_.GetFailure());
    }
    StoreAnsi(info_.Text.Dpi_Code, code);
    return true;
  }

  bool TakeMedia() {
    const std::string_view code = Value(header_key::kMediaCode);
    if (code.empty()) return FailWithout(header_key::kMediaCode);
    StoreWide(info_.MediaCode, code);
    StoreAnsi(info_.Text.Media_Code, code);
    return TakeMediaNames();
  }

  // One name runs through all steps: an empty value lets a step take over the name of the step before.
  bool TakeMediaNames() {
    std::string_view name;
    const auto take = [&](const char* key) {
      const std::string_view value = Value(key);
      if (!value.empty()) name = WithoutCount(value);
    };
    const bool japanese = platform::PrimaryLanguage() == platform::kLanguageJapanese;
    take(japanese ? header_key::kMediaJapanese : header_key::kMediaEnglish);
    if (name.empty()) name = Value(header_key::kMediaLabel);
    if (name.empty()) return Fail("text header: no media name");
    StoreWide(info_.MediaName, name);
    take(header_key::kMediaJapanese);
    StoreAnsi(info_.Text.Media_Jpn, name);
    take(header_key::kMediaEnglish);
    StoreAnsi(info_.Text.Media_Eng, name);
    StoreAnsi(info_.Text.Media_Label, Value(header_key::kMediaLabel));
    return true;
  }

  void TakeOptionalValues() {
    nvx::CopyText(info_.RevisionCode, std::u16string_view(u"FFFF"));
    if (const std::string_view version = Value(header_key::kProfileVersion); !version.empty()) {
      info_.ProfileMajorVersion = static_cast<std::uint32_t>(nvx::LeadingNumber(version));
      info_.ProfileMinorVersion = 0;
    }
    if (const std::string_view code = Value(header_key::kHalftoneCode); !code.empty()) {
      info_.HalftoneCode = nvx::LeadingNumber(code);
    }
    if (const std::string_view code = Value(header_key::kSeparateWay); !code.empty()) {
      info_.SeparateWayCode = nvx::LeadingNumber(code);
    }
    for (std::int32_t& databaseKey : info_.DatabaseKey) databaseKey = kNoDatabaseKey;
    if (const std::string_view time = Value(header_key::kCreateTime); !time.empty()) {
      info_.CreateTime = ParseTime(time, info_.CreateTime).value_or(info_.CreateTime);
    }
  }

  CQPFConvertTable& table_;
  const Values& header_;
  _tagDeviceProfileInfo& info_;
  std::string failure_;
};

}  // namespace

CProfileFileQPFv1::CProfileFileQPFv1() : CProfileFileQPFv1(1) {}
CProfileFileQPFv1::CProfileFileQPFv1(std::int32_t headerVersion, CQPFConvertTable table)
    : table_(std::move(table)), headerVersion_(headerVersion) {
  SetMyFormat(nvx::kText1);
}
CProfileFileQPFv1::~CProfileFileQPFv1() = default;

CProfileFileQPFv2::CProfileFileQPFv2() : CProfileFileQPFv1(2) { SetMyFormat(nvx::kText2); }
CProfileFileQPFv2::CProfileFileQPFv2(const CProfileFileQPFv1& other)
    : CProfileFileQPFv1(2, other.GetConversionTable()) {
  SetMyFormat(nvx::kText2);
}
CProfileFileQPFv2::~CProfileFileQPFv2() = default;

bool CProfileFileQPFv1::LoadHeader(CNvxFile& file, CProfileData* data) {
  if (data == nullptr) return false;
  _tagDeviceProfileInfo& info = *data->GetProfileInfo();
  nvx::SelectTextView(info);
  file.GetPathName(info.FullPath);
  // The model keeps the path, so that there has to be one.
  if (file.GetPath().empty()) return nvx::Refuse(file, "text header: the stream has no path");
  nvx::TextHeader header;
  if (!nvx::ReadTextHeader(file, header)) return false;
  if (file.Seek(header.end, nvx::kFromBegin) != header.end) {
    return nvx::Refuse(file, "text header: ends beyond the stream");
  }
  if (!AnalyzeHeaderString(&info, header.values)) return nvx::RefuseAt(file, 0, failure_);
  return LoadCotDataSection(file, data);
}

bool CProfileFileQPFv1::AnalyzeHeaderString(_tagDeviceProfileInfo* info, const Values& header) {
  HeaderAnalysis analysis(table_, header, *info);
  const bool usable = analysis.Run();
  failure_ = std::move(analysis.Failure());
  return usable;
}

bool CProfileFileQPFv1::GetOutputSetting(const std::string& dpiCode, std::uint32_t& scan, std::uint32_t& feed,
                                         std::uint32_t& dotType) {
  const std::optional<OutputSetting> setting = ParseDpiCode(dpiCode);
  if (!setting) return false;
  scan = setting->scan;
  feed = setting->feed;
  dotType = setting->dotType;
  return true;
}

void CProfileFileQPFv1::EraseCountFromMediaName(const std::string& value, char* out) {
  if (value.empty()) return;
  nvx::CopyText(out, kMediaNameRoom, WithoutCount(value));
}

void CProfileFileQPFv1::ConvertStringToTime(const char* text, SYSTEMTIME* out) {
  *out = ParseTime(nvx::TextOf(text), *out).value_or(*out);
}

void CProfileFileQPFv1::ConvertCharToWChar(const char* text, char16_t* out, std::size_t size) {
  StoreWide(out, size, nvx::TextOf(text));
}

bool CProfileFileQPFv1::LoadCotDataSection(CNvxFile& file, CProfileData*) {
  std::uint64_t skip = 0;
  while (true) {
    nvx::SectionRecord section;
    if (!nvx::ReadRecord(file, section)) return nvx::Refuse(file, "section table: no end record");
    if (section.IsEndMark()) break;
    char name[nvx::kLongestSectionName + 1];
    if (section.nameLength > sizeof name) return nvx::Refuse(file, "section table: name of more than 255 characters");
    if (!nvx::ReadExact(file, name, section.nameLength)) return nvx::Refuse(file, "section table: name cut short");
    std::string_view text(name, section.nameLength);
    text = text.substr(0, text.find('\0'));
    if (text.size() > nvx::kLongestSectionName) return nvx::Refuse(file, "section table: name without its end");
    if (text.find(nvx::kContainerMark) == text.npos) skip += section.size;
  }
  if (!nvx::Holds(file, skip, 1)) return nvx::Refuse(file, "section table: sections beyond the end");
  SetOffsetLoadPoint(static_cast<std::uint32_t>(file.GetPosition() + skip));
  return true;
}

bool CProfileFileQPFv1::LoadContainer(CNvxFile& file, CProfileData* data) {
  CProfileFileQCT container;
  container.SetOffsetLoadPoint(GetOffsetLoadPoint());
  return container.LoadData(file, data, false);
}

bool CProfileFileQPFv1::LoadEntries(CNvxFile& file, CProfileData* data) { return LoadContainer(file, data); }

bool CProfileFileQPFv2::LoadData(CNvxFile& file, CProfileData* data, bool headerOnly) {
  return CProfileFile::LoadData(file, data, headerOnly);
}

bool CProfileFileQPFv2::LoadEntries(CNvxFile& file, CProfileData* data) {
  if (!LoadContainer(file, data)) return false;
  SetOffsetLoadPoint(file.GetPosition());
  return LoadContainer(file, data);
}
