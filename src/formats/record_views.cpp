#include "formats/record_views.h"

#include "core/text.h"
#include "formats/text_header.h"
#include "platform/locale.h"

#include <array>
#include <string>

namespace nvx {
namespace {

using BinaryView = _tagDeviceProfileInfo::BinaryView;

void Select(_tagDeviceProfileInfo& info, std::uint32_t view) {
  // The text view is the greater one, so that this empties both.
  if (info.LayoutNumber != kNoView && info.LayoutNumber != view) info.Text = {};
  info.LayoutNumber = view;
}

std::uint32_t Number(std::u16string_view text) { return static_cast<std::uint32_t>(LeadingNumber(text)); }

struct MediaNames {
  std::u16string japanese;
  std::u16string english;
};

// A record without the text view has the one name that it shows.
MediaNames NamesOf(const _tagDeviceProfileInfo& info) {
  if (info.LayoutNumber == kTextView) {
    return {platform::AnsiToWide(FieldText(info.Text.Media_Jpn)), platform::AnsiToWide(FieldText(info.Text.Media_Eng))};
  }
  const std::u16string shown(FieldText(info.MediaName));
  return {shown, shown};
}

std::uint32_t MediaNumberOf(const _tagDeviceProfileInfo& info) {
  return info.LayoutNumber == kTextView ? static_cast<std::uint32_t>(LeadingNumber(FieldText(info.Text.Media_Code)))
                                        : Number(FieldText(info.MediaCode));
}

}  // namespace

void SelectTextView(_tagDeviceProfileInfo& info) { Select(info, kTextView); }
void SelectBinaryView(_tagDeviceProfileInfo& info) { Select(info, kBinaryView); }

void ConvertToBinaryView(CProfileData& data) {
  _tagDeviceProfileInfo& info = *data.GetProfileInfo();
  if (info.LayoutNumber == kBinaryView) return;
  const MediaNames names = NamesOf(info);
  BinaryView view{};
  view.ModelNumber = Number(FieldText(info.ModelCode));
  view.ModelSubNumber = Number(FieldText(info.ModelSubCode));
  view.InternalNumber = Number(FieldText(info.InternalCode));
  view.MediaNumber = MediaNumberOf(info);
  CopyText(view.DefaultMediaName, names.english);
  SelectBinaryView(info);
  info.Binary = view;
  std::array<tagMedia, 2> media;
  media[0].Language = platform::kLanguageJapanese;
  CopyText(media[0].Name, names.japanese);
  media[1].Language = platform::kLanguageEnglish;
  CopyText(media[1].Name, names.english);
  data.SetMediaInfo(media);
}

void UseBinaryView(CProfileData& data) {
  _tagDeviceProfileInfo& info = *data.GetProfileInfo();
  info.LayoutNumber == kTextView ? ConvertToBinaryView(data) : SelectBinaryView(info);
}

}  // namespace nvx
