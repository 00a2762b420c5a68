// What a profile says about itself.
#include "core/text.h"
#include "modern/profile_state.h"

#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/text_conversion.h>

#include <algorithm>
#include <ctime>

namespace nvx {
namespace {

using std::chrono::seconds;
using std::chrono::sys_seconds;

template <class Unit, std::size_t N>
std::string TextOfField(const Unit (&field)[N]) {
  if constexpr (std::is_same_v<Unit, char>) {
    return Utf8OfAnsi(FieldText(field));
  } else {
    return WideToUtf8(FieldText(field));
  }
}

// Records of the older generations have local time alone.
std::optional<sys_seconds> TimeOf(std::int64_t value, const SYSTEMTIME& local) {
  if (value != 0) return sys_seconds(seconds(value));
  if (local.wYear < 1970) return std::nullopt;
  std::tm parts{};
  parts.tm_year = local.wYear - 1900;
  parts.tm_mon = local.wMonth - 1;
  parts.tm_mday = local.wDay;
  parts.tm_hour = local.wHour;
  parts.tm_min = local.wMinute;
  parts.tm_sec = local.wSecond;
  parts.tm_isdst = -1;
  return sys_seconds(seconds(std::mktime(&parts)));
}

void ReadMediaNames(const _tagDeviceProfileInfo& record, ProfileInfo& info) {
  constexpr std::uint16_t kEnglish = 9;
  constexpr std::uint16_t kJapanese = 17;
  if (record.LayoutNumber == kTextView) {
    info.defaultMediaName = TextOfField(record.Text.Media_Label);
    info.mediaNames = {{kJapanese, TextOfField(record.Text.Media_Jpn)}, {kEnglish, TextOfField(record.Text.Media_Eng)}};
  }
  if (record.LayoutNumber != kBinaryView) return;
  const _tagDeviceProfileInfo::BinaryView& view = record.Binary;
  info.defaultMediaName = TextOfField(view.DefaultMediaName);
  info.createModule = TextOfField(view.CreateModule);
  info.maker = TextOfField(view.MakerText);
  for (std::uint32_t i = 0; view.MediaInfo != nullptr && i < view.MediaInfoCount; ++i) {
    info.mediaNames.push_back({view.MediaInfo[i].Language, TextOfField(view.MediaInfo[i].Name)});
  }
}

// A number that the record shows with that many digits; one that is wider than its text stays what it is unless it is
// given anew.
std::uint32_t NumberField(const std::string& text, std::size_t digits, const char* what) {
  const bool isNumber = !text.empty() && text.size() <= digits &&
                        std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!isNumber) Fail(std::string(what) + ": not 1 to " + std::to_string(digits) + " digits");
  return static_cast<std::uint32_t>(std::stoul(text));
}

std::vector<tagMedia> MediaTableOf(const std::vector<MediaName>& names) {
  std::vector<tagMedia> table(names.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    table[i].Language = names[i].language;
    CopyText(table[i].Name, WideField(names[i].text, 64, "media name"));
  }
  return table;
}

// Puts into the record what is not as it was, so that the rest keeps what no text shows.
class RecordChange {
 public:
  RecordChange(const ProfileInfo& before, const ProfileInfo& after, _tagDeviceProfileInfo& record)
      : before_(before), after_(after), record_(record) {}

  void Run() {
    auto& view = record_.Binary;
    Number(&ProfileInfo::modelCode, 4, "model code", view.ModelNumber);
    Number(&ProfileInfo::modelSubCode, 2, "model sub code", view.ModelSubNumber);
    Number(&ProfileInfo::internalCode, 2, "internal code", view.InternalNumber);
    Number(&ProfileInfo::mediaCode, 9, "media code", view.MediaNumber);
    Text(&ProfileInfo::defaultMediaName, "default media name", view.DefaultMediaName);
    Text(&ProfileInfo::createModule, "create module", view.CreateModule);
    Text(&ProfileInfo::maker, "maker", view.MakerText);
    Text(&ProfileInfo::revision, "revision", view.StoredRevisionCode);
    Values();
  }

 private:
  void Number(std::string ProfileInfo::*field, std::size_t digits, const char* what, std::uint32_t& number) const {
    if (after_.*field != before_.*field) number = NumberField(after_.*field, digits, what);
  }

  template <std::size_t N>
  void Text(std::string ProfileInfo::*field, const char* what, char16_t (&text)[N]) const {
    if (after_.*field != before_.*field) CopyText(text, WideField(after_.*field, N - 1, what));
  }

  void Values() const {
    if (after_.created != before_.created) {
      record_.CreateTimeValue = after_.created ? after_.created->time_since_epoch().count() : 0;
      // As a time it would be none, and a save would put the present in its place.
      if (after_.created && record_.CreateTimeValue == 0) Fail("time of creation: 0");
    }
    record_.ScanResolution = after_.scanResolution;
    record_.FeedResolution = after_.feedResolution;
    record_.ColorsetCode = after_.colorsetCode;
    record_.InkTypeCode = after_.inkTypeCode;
    record_.InkMakerCode = after_.inkMakerCode;
    record_.InkVersion = after_.inkVersion;
    record_.DotType = after_.dotType;
    record_.HalftoneCode = after_.halftoneCode;
    record_.SeparateWayCode = after_.separateWayCode;
    record_.OutputThirdValue = after_.outputThirdValue;
    std::copy(after_.databaseKey.begin(), after_.databaseKey.end(), record_.DatabaseKey);
  }

  const ProfileInfo& before_;
  const ProfileInfo& after_;
  _tagDeviceProfileInfo& record_;
};

}  // namespace

void WorkOut(_tagDeviceProfileInfo& record) {
  const std::u16string_view revision = FieldText(record.Binary.StoredRevisionCode);
  // Of none a load makes this.
  CopyText(record.RevisionCode, revision.empty() ? std::u16string_view(u"FFFF") : revision);
  CProfileFileQPFv3 format;
  format.SetPrinterFileToData(&record);
  format.SetupMediaFileToData(&record);
  record.CreateTime = {};
  if (record.CreateTimeValue != 0) format.ConvertTime64ToSYSTEMTIME(record.CreateTimeValue, &record.CreateTime);
}

ProfileInfo Profile::Info() const {
  const _tagDeviceProfileInfo& record = state_->Record();
  ProfileInfo info;
  info.fileName = WideToPath(FieldText(record.FileName));
  info.majorVersion = record.ProfileMajorVersion;
  info.minorVersion = record.ProfileMinorVersion;
  info.created = TimeOf(record.CreateTimeValue, record.CreateTime);
  info.updated = TimeOf(record.UpdateTimeValue, record.UpdateTime);
  info.modelCode = TextOfField(record.ModelCode);
  info.modelSubCode = TextOfField(record.ModelSubCode);
  info.internalCode = TextOfField(record.InternalCode);
  info.mediaCode = TextOfField(record.MediaCode);
  info.mediaName = TextOfField(record.MediaName);
  ReadMediaNames(record, info);
  info.revision = TextOfField(record.RevisionCode);
  info.printerComment = TextOfField(record.PrinterComment);
  info.scanResolution = record.ScanResolution;
  info.feedResolution = record.FeedResolution;
  info.renderingScan = record.RenderingScan;
  info.renderingFeed = record.RenderingFeed;
  info.expand = record.Expand;
  info.colorsetCode = record.ColorsetCode;
  info.inkTypeCode = record.InkTypeCode;
  info.inkMakerCode = record.InkMakerCode;
  info.inkVersion = record.InkVersion;
  info.dotType = record.DotType;
  info.halftoneCode = record.HalftoneCode;
  info.separateWayCode = record.SeparateWayCode;
  info.outputThirdValue = record.OutputThirdValue;
  info.outputFourthValue = record.OutputFourthValue;
  std::copy(std::begin(record.DatabaseKey), std::end(record.DatabaseKey), info.databaseKey.begin());
  return info;
}

void Profile::SetInfo(const ProfileInfo& info) {
  if (!state_->IsPrinterProfile()) Fail("only printer profiles take this information");
  const ProfileInfo before = Info();
  _tagDeviceProfileInfo record = state_->Record();
  RecordChange(before, info, record).Run();
  const std::vector<tagMedia> names = MediaTableOf(info.mediaNames);
  if (info.mediaNames != before.mediaNames) {
    state_->Model().SetMediaInfo(names);
    record.Binary.MediaInfo = state_->Record().Binary.MediaInfo;
    record.Binary.MediaInfoCount = state_->Record().Binary.MediaInfoCount;
  }
  WorkOut(record);
  state_->Record() = record;
}

}  // namespace nvx
