// Writing of the text-headed form.
#include "core/stream.h"
#include "core/text.h"
#include "formats/record_views.h"
#include "formats/text_header.h"
#include "platform/clock.h"

#include <nvxprofile/profile_file_text.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <limits>
#include <string_view>

namespace header_key = nvx::header_key;

namespace {

constexpr std::int32_t kRipVersion = 1;
constexpr std::int32_t kSeparateWay = 0;

// Lines of a key, a colon and a value.
class HeaderLines {
 public:
  void Add(const char* key, std::string_view value) {
    text_ += key;
    text_ += ':';
    text_ += value;
    text_ += "\r\n";
    // A value that ends its line early would come back as another one.
    isWhole_ = isWhole_ && value.find_first_of("\r\n") == value.npos;
  }
  void Add(const char* key, std::int32_t value) { Add(key, std::to_string(value)); }
  void AddCounted(const char* key, std::string_view value) {
    Add(key, "%" + std::to_string(value.size()) + "%" + std::string(value));
  }
  void AddTime(const char* key, const SYSTEMTIME& time) {
    const int year = time.wYear <= 2000 ? time.wYear - 1900 : time.wYear - 2000;
    char text[64];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d %02d/%02d/%02d", time.wHour, time.wMinute, time.wSecond,
                  time.wMonth, time.wDay, year);
    Add(key, std::string_view(text));
  }
  void AddEnd() {
    text_ += nvx::kTextHeaderEnd;
    text_ += "\r\n";
  }

  bool IsWhole() const { return isWhole_; }
  const std::string& Text() const { return text_; }

 private:
  std::string text_;
  bool isWhole_ = true;
};

bool WriteTableEnd(CNvxFile& file) { return nvx::WriteRecord(file, nvx::SectionRecord{}); }

bool SaveContainer(CNvxFile& file, CProfileData* data, std::uint32_t route) {
  return CProfileFileQCT().SaveData(file, data, route);
}

}  // namespace

bool CProfileFileQPFv1::SaveHeader(CNvxFile& file, CProfileData* data, std::uint32_t) {
  _tagDeviceProfileInfo& info = *data->GetProfileInfo();
  // A record of the current generation has no labels, and a file without them does not load.
  if (info.LayoutNumber == nvx::kBinaryView) return false;
  nvx::SelectTextView(info);
  const _tagDeviceProfileInfo::TextView& view = info.Text;
  HeaderLines lines;
  lines.Add(header_key::kPrinterLabel, nvx::FieldText(view.Printer_Label));
  lines.Add(header_key::kInkSetLabel, nvx::FieldText(view.InkSet_Label));
  lines.Add(header_key::kMediaCode, nvx::FieldText(view.Media_Code));
  lines.Add(header_key::kMediaLabel, nvx::FieldText(view.Media_Label));
  lines.AddCounted(header_key::kMediaEnglish, nvx::FieldText(view.Media_Eng));
  lines.AddCounted(header_key::kMediaJapanese, nvx::FieldText(view.Media_Jpn));
  lines.Add(header_key::kDpiCode, nvx::FieldText(view.Dpi_Code));
  lines.Add(header_key::kHalftoneCode, info.HalftoneCode);
  lines.Add(header_key::kPassSupport, static_cast<std::int32_t>(view.Pass_Support));
  const std::size_t passes = std::min<std::size_t>(view.Pass_Support, std::size(view.Pass_Code));
  for (std::size_t i = 0; i < passes; ++i) {
    lines.Add(header_key::kPassCode, static_cast<std::int32_t>(view.Pass_Code[i]));
  }
  lines.Add(header_key::kRipVersion, kRipVersion);
  lines.Add(header_key::kProfileVersion, headerVersion_);
  lines.Add(header_key::kSeparateWay, kSeparateWay);
  constexpr SYSTEMTIME kEpoch{1970, 1, 0, 1, 0, 0, 0, 0};
  lines.AddTime(header_key::kCreateTime, nvx::platform::LocalTime(TimesOfSave(0).saved).value_or(kEpoch));
  lines.AddEnd();
  return lines.IsWhole() && nvx::WriteExact(file, lines.Text().data(), static_cast<std::uint32_t>(lines.Text().size()));
}

bool CProfileFileQPFv1::SaveCotEntryHeader(CNvxFile& file, CProfileData* data, std::uint32_t route) {
  CProfileRoute* const place = data->GetProfileRoute(route);
  if (place == nullptr) return false;
  char name[32] = {};
  place->GetQctInnerName(name);
  const std::uint64_t size = GetSavedSize(*data, route);
  if (size > std::numeric_limits<std::uint32_t>::max()) return false;
  nvx::SectionRecord section;
  section.size = static_cast<std::uint32_t>(size);
  section.nameLength = static_cast<std::uint32_t>(nvx::FieldText(name).size()) + 1;
  return nvx::WriteRecord(file, section) && nvx::WriteExact(file, name, section.nameLength);
}

bool CProfileFileQPFv1::SaveBody(CNvxFile& file, CProfileData* data, std::uint32_t route) {
  return SaveCotEntryHeader(file, data, route) && WriteTableEnd(file) && SaveContainer(file, data, route);
}

bool CProfileFileQPFv2::SaveBody(CNvxFile& file, CProfileData* data, std::uint32_t) {
  return SaveCotEntryHeader(file, data, nvx::kRouteIccRoot) && SaveCotEntryHeader(file, data, nvx::kRouteGrayBalance) &&
         WriteTableEnd(file) && SaveContainer(file, data, nvx::kRouteIccRoot) &&
         SaveContainer(file, data, nvx::kRouteGrayBalance);
}
