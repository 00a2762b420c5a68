// Which class belongs to an entry type: one row each.
#include <nvxprofile/mask_download.h>
#include <nvxprofile/profile_entry.h>

#include <array>

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

constexpr std::array kRows{
    Row{CProfileDataEntry::kMaskDownload, New<CMaskDownLoadEntry>},
    Row{CProfileDataEntry::kMaskDownloadIncludePattern, New<CMaskDownloadIncludePatternEntry>},
};

}  // namespace

CProfileDataEntry* CProfileDataEntry::CreateDataEntry(UsedType usedType) {
  for (const Row& row : kRows) {
    if (row.usedType == usedType) return row.make();
  }
  return nullptr;
}
