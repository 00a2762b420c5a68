// Which class belongs to an entry type: one row each.
#include <nvxprofile/icm_entry.h>
#include <nvxprofile/profile_entry.h>

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

constexpr Row kRows[] = {
    {CProfileDataEntry::kIcm, New<CICMEntry>},
    {CProfileDataEntry::kReplaceProfile, New<CReplaceProfileEntry>},
};

}  // namespace

CProfileDataEntry* CProfileDataEntry::CreateDataEntry(UsedType usedType) {
  for (const Row& row : kRows) {
    if (row.usedType == usedType) return row.make();
  }
  return nullptr;
}
