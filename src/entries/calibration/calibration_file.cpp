// The form that holds the children of a container.
#include "core/replacing_file.h"
#include "core/text.h"
#include "entries/calibration/calibration_records.h"
#include "entries/entry_listing.h"

#include <nvxprofile/calibration.h>

#include <algorithm>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <utility>

using nvx::CalibrationEntryHeader;
using nvx::CalibrationHeader;

namespace {

// The entry as a container whose description travels in its entry header; null for all others.
CContainerEntry* DescribedContainer(CProfileDataEntry& entry) {
  const std::uint32_t usedType = entry.GetUsedType();
  const bool described =
      usedType == CProfileDataEntry::kCalibrationHistory || usedType == CProfileDataEntry::kCalibrationContainer;
  return described ? entry.AsContainer() : nullptr;
}

CalibrationEntryHeader HeaderOf(CProfileDataEntry& entry) {
  CalibrationEntryHeader header;
  header.bodySize = entry.GetSize() + CalibrationEntryHeader::kBodyMagicSize;
  header.usedType = entry.GetUsedType();
  header.formatType = entry.GetFormatType();
  header.complete = entry.IsComplete() ? 1 : 0;
  header.optionInfo = entry.GetOptionInfo();
  if (CContainerEntry* const container = DescribedContainer(entry)) {
    const tag_ContainerData& description = *container->GetContainerData();
    header.value = description.Value;
    header.time = description.Time;
    nvx::CopyText(header.name, nvx::FieldText(description.Name));
  }
  return header;
}

// Fills a container from entry headers and bodies. A form may name one child any number of times, and many children:
// they are found through an index, and a child whose buffer a header leaves alone is not parsed again, so that the work
// stays in proportion to the bytes.
class ChildLoader {
 public:
  ChildLoader(CNvxFile& file, CContainerData& data) : file_(file), data_(data) {
    for (CProfileDataEntry* const child : data.Children()) {
      index_.try_emplace(Key(child->GetUsedType(), child->GetOptionInfo()), Child{child, false});
    }
  }

  // Loads the entry of a header, the stream standing at its body.
  bool Load(const CalibrationEntryHeader& header) {
    if (!nvx::ReadMagic(file_, CalibrationEntryHeader::kBodyMagic)) {
      return nvx::Refuse(file_, "calibration entry body: wrong magic");
    }
    const Key key(header.usedType, header.optionInfo);
    const auto found = index_.find(key);
    if (found != index_.end()) {
      // A second body for one child takes the place of the first.
      if (found->second.parsed && header.bodySize > CalibrationEntryHeader::kBodyMagicSize) {
        nvx::PassOver(file_, "calibration entry header: an entry before has this used type and option info");
      }
      return nvx::CheckForm(file_, header, found->second.entry) && Fill(header, found->second);
    }

    std::unique_ptr<CProfileDataEntry> entry(
        CProfileDataEntry::CreateDataEntry(static_cast<CProfileDataEntry::UsedType>(header.usedType)));
    if (!nvx::CheckForm(file_, header, entry.get())) return false;
    entry->SetOptionInfo(header.optionInfo);
    nvx::PayloadKeeper::SetEmpty(*entry);
    data_.SetLevelOfChild(*entry);
    Child child{entry.get(), false};
    if (!Fill(header, child)) return false;
    index_.emplace(key, child);
    data_.Insert(data_.Children().Count(), std::move(entry));
    return true;
  }

 private:
  using Key = std::pair<std::uint32_t, std::uint32_t>;  // used type and option info

  struct Child {
    CProfileDataEntry* entry;
    bool parsed;  // from the buffer that it has now
  };

  bool Fill(const CalibrationEntryHeader& header, Child& child) {
    CProfileDataEntry& entry = *child.entry;
    entry.SetComplete(header.complete != 0);
    const std::uint32_t offset = file_.GetDiagnosis() != nullptr ? file_.GetPosition() : 0;
    if (!ReadBody(header, child)) return false;
    if (!child.parsed) nvx::ParseListed(file_, offset, entry, [&] { return NameOf(entry); });
    child.parsed = true;
    if (CContainerEntry* const container = DescribedContainer(entry)) {
      tag_ContainerData& description = *container->GetContainerData();
      description.Value = header.value;
      description.Time = header.time;
      nvx::CopyText(description.Name, nvx::FieldText(header.name));
    }
    return true;
  }

  bool ReadBody(const CalibrationEntryHeader& header, Child& child) {
    const std::optional<std::uint32_t> size = nvx::BodySize(file_, header);
    if (!size) return false;
    if (*size == 0) return true;
    child.parsed = false;
    if (!nvx::PayloadKeeper::Take(*child.entry, file_, *size)) {
      return nvx::Refuse(file_, "calibration entry body: cut short");
    }
    return true;
  }

  static std::string NameOf(CProfileDataEntry& entry) {
    return std::to_string(entry.GetUsedType()) + "." + std::to_string(entry.GetOptionInfo());
  }

  CNvxFile& file_;
  CContainerData& data_;
  std::map<Key, Child> index_;
};

}  // namespace

CProfileFileCalibration::CProfileFileCalibration() = default;
CProfileFileCalibration::~CProfileFileCalibration() = default;

void CProfileFileCalibration::DeleteContents() { entryHeaders_.clear(); }

bool CProfileFileCalibration::LoadData(CNvxFile& file, CContainerData* data, bool headerOnly) {
  if (data == nullptr || !LoadHeader(file, data)) return false;
  return headerOnly || LoadEntries(file, data);
}

bool CProfileFileCalibration::LoadData(const char16_t* path, CContainerData* data, bool headerOnly) {
  CNvxFile file;
  return file.Open(path, nvx::kGenericRead, nvx::kShareRead, nvx::kOpenExisting) && LoadData(file, data, headerOnly);
}

bool CProfileFileCalibration::SaveData(CNvxFile& file, CContainerData* data) {
  return data != nullptr && SaveHeader(file, data) && SaveBody(file, data);
}

bool CProfileFileCalibration::SaveData(const char16_t* path, CContainerData* data) {
  return data != nullptr && nvx::SaveByReplacing(path, [&](CNvxFile& file) { return SaveData(file, data); });
}

bool CProfileFileCalibration::LoadHeader(CNvxFile& file, CContainerData*) {
  if (file.Seek(offsetLoadPoint_, nvx::kFromBegin) != offsetLoadPoint_) {
    return nvx::Refuse(file, "calibration header: starts beyond the end");
  }
  CalibrationHeader header;
  if (!nvx::ReadChecked(file, header)) return false;
  entryCount_ = header.entryCount;
  optionValue_ = header.optionValue;
  return true;
}

bool CProfileFileCalibration::LoadEntryHeader(CNvxFile& file) {
  return nvx::ReadEntryHeaders<CalibrationEntryHeader>(file, std::uint64_t{offsetLoadPoint_} + headerSize_, entryCount_,
                                                       "calibration entry table", entryHeaders_);
}

bool CProfileFileCalibration::LoadEntries(CNvxFile& file, CContainerData* data) {
  if (!LoadEntryHeader(file)) return false;
  ChildLoader loader(file, *data);
  return std::all_of(entryHeaders_.begin(), entryHeaders_.end(), [&](const EntryHeaderRecord& record) {
    return loader.Load(nvx::DecodeRecord<CalibrationEntryHeader>(record.data()));
  });
}

bool CProfileFileCalibration::SaveHeader(CNvxFile& file, CContainerData* data) {
  entryCount_ = static_cast<std::uint32_t>(data->Children().Count());
  CalibrationHeader header;
  header.entryCount = entryCount_;
  header.optionValue = optionValue_;
  return nvx::WriteRecord(file, header);
}

bool CProfileFileCalibration::SaveEntryHeaders(CNvxFile& file, CContainerData* data) {
  constexpr std::uint32_t kLargest = std::numeric_limits<std::uint32_t>::max() - CalibrationEntryHeader::kBodyMagicSize;
  const auto& children = data->Children();
  return std::all_of(children.begin(), children.end(), [&](CProfileDataEntry* child) {
    return child->GetSize() <= kLargest && nvx::WriteRecord(file, HeaderOf(*child));
  });
}

bool CProfileFileCalibration::SaveBody(CNvxFile& file, CContainerData* data) {
  if (!SaveEntryHeaders(file, data)) return false;
  const auto& children = data->Children();
  return std::all_of(children.begin(), children.end(), [&](CProfileDataEntry* child) {
    return nvx::WriteMagic(file, CalibrationEntryHeader::kBodyMagic) &&
           nvx::WriteExact(file, child->Bytes().data(), child->GetSize());
  });
}
