// An information record as a text in which all of it can be compared.
#pragma once

#include "platform/locale.h"
#include "support/recorded_fields.h"

namespace nvx::test {

struct ShownValue {
  std::string operator()(std::int64_t number) const { return number != 0 ? std::to_string(number) : ""; }
  std::string operator()(bool flag) const { return flag ? "yes" : ""; }
  std::string operator()(const std::string& text) const { return text; }
  std::string operator()(const std::u16string& text) const { return platform::WideToUtf8(text); }
  std::string operator()(std::size_t) const { return ""; }
  std::string operator()(const ByteList& bytes) const { return (*this)(NumberList(bytes.begin(), bytes.end())); }
  std::string operator()(const NumberList& numbers) const {
    if (std::count(numbers.begin(), numbers.end(), 0) == std::ssize(numbers)) return "";
    std::string list;
    for (const std::int64_t number : numbers) list += "," + std::to_string(number);
    return list.substr(1);
  }
};

// The fields but for the path, "ModelCode=0042 DatabaseKey=1,2,3,4,5", without those that are empty or 0. Groups
// are "CreateTime=yes", the items of a list "0=yes", and their fields follow.
inline std::string TextOf(const _tagDeviceProfileInfo& info) {
  Recorder recorder;
  TellFields(info, recorder);
  std::string text;
  for (const std::string& place : recorder.told.places) {
    const std::string value = std::visit(ShownValue(), recorder.told.values.at(place));
    if (!value.empty() && place != "FullPath")
      text += (text.empty() ? "" : " ") + place.substr(place.rfind('/') + 1) + "=" + value;
  }
  return text;
}

}  // namespace nvx::test
