// The file formats: one row each.
#include <nvxprofile/entry_types.h>

#include <algorithm>
#include <iterator>

namespace nvx {
namespace {

constexpr FormatType kTypes[] = {
    {kContainer, "container", "entry-table container", ".qct", false, false, false},
    {kText1, "text-1", "text-headed profile, version 1", ".qpf", true, false, true},
    {kText2, "text-2", "text-headed profile, version 2", ".qpf", true, false, true},
    {kPrinterProfile, "printer-profile", "ICC-based printer profile", ".icc", false, true, true},
    {kPlainIcc, "icc", "plain ICC profile", ".icc", false, false, false},
};

template <class Is>
const FormatType* Find(Is is) {
  const auto* const found = std::find_if(std::begin(kTypes), std::end(kTypes), is);
  return found != std::end(kTypes) ? found : nullptr;
}

}  // namespace

std::span<const FormatType> FormatTypes() { return kTypes; }

const FormatType* FindFormatType(int format) {
  return Find([=](const FormatType& type) { return type.format == format; });
}

const FormatType* FindFormatType(std::string_view name) {
  return Find([=](const FormatType& type) { return type.name == name; });
}

}  // namespace nvx
