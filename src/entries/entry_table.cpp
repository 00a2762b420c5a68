// Which class belongs to an entry type: one row each.
#include <nvxprofile/large_parameter.h>
#include <nvxprofile/profile_entry.h>

namespace {

using Make = CProfileDataEntry* (*)();

template <class Entry>
[[maybe_unused]] CProfileDataEntry* New() {
  return new Entry;
}

struct Row {
  CProfileDataEntry::UsedType usedType;
  Make make;
};

constexpr Row kRows[] = {
    {CProfileDataEntry::kLargeParameter, New<CLargeParameterEntry>},
};

}  // namespace

CProfileDataEntry* CProfileDataEntry::CreateDataEntry(UsedType usedType) {
  for (const Row& row : kRows) {
    if (row.usedType == usedType) return row.make();
  }
  return nullptr;
}
