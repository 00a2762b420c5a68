// Which class belongs to an entry type: one row each.
#include <nvxprofile/lut.h>
#include <nvxprofile/media_property.h>
#include <nvxprofile/model_info.h>
#include <nvxprofile/profile_entry.h>

#include <array>

namespace {

using Make = CProfileDataEntry* (*)();

template <class Entry>
CProfileDataEntry* New() {
  return new Entry;
}

struct Row {
  CProfileDataEntry::UsedType usedType;
  Make make;
};

constexpr std::array kRows{
    Row{CProfileDataEntry::kModel, New<CModelEntry>},
    Row{CProfileDataEntry::kSeparateChroma, New<CSeparateChromaEntry>},
    Row{CProfileDataEntry::kInfo, New<CInfoEntry>},
    Row{CProfileDataEntry::kMediaProperty, New<CMediaPropertyEntry>},
};

}  // namespace

CProfileDataEntry* CProfileDataEntry::CreateDataEntry(UsedType usedType) {
  for (const Row& row : kRows) {
    if (row.usedType == usedType) return row.make();
  }
  return nullptr;
}
