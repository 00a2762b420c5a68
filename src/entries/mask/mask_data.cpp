// The mask parameter list and the mask pattern table in memory.
#include <nvxprofile/mask.h>

#include <algorithm>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace {

template <class Entry>
using Entries = std::vector<std::unique_ptr<Entry>>;

template <class Entry>
Entries<Entry> CopiesOf(const nvx::CursorList<Entry>& list) {
  Entries<Entry> copies;
  copies.reserve(list.Count());
  for (const Entry* entry : list) copies.push_back(std::make_unique<Entry>(*entry));
  return copies;
}

template <class Entry>
void Append(Entries<Entry> entries, nvx::CursorList<Entry>& list) {
  list.Reserve(list.Count() + entries.size());
  for (std::unique_ptr<Entry>& entry : entries) list.Append(std::move(entry));
}

// Empties the list of an object that owns its entries with auto-delete and borrows them without.
template <class Entry>
void Empty(CDataObject& owner, nvx::CursorList<Entry>& list) {
  owner.IsAutoDelete() ? list.Clear() : list.LetGo();
}

std::uint32_t At(const std::vector<std::uint32_t>& values, int index) {
  const auto place = static_cast<std::size_t>(index);
  return place < values.size() ? values[place] : 0;
}

// The old bytes live until the new ones are made, so that a block may be set from itself.
nvx::SharedBytes CopyOf(const std::uint8_t* data, std::uint32_t size) {
  return data != nullptr ? nvx::SharedBytes({data, size}) : nvx::SharedBytes();
}

bool HasLowerID(const CMaskPatternDataEntry* entry, std::uint32_t id) { return entry->GetMaskPatternID() < id; }

}  // namespace

CMaskParameterDataEntry::~CMaskParameterDataEntry() = default;

CMaskParameterDataEntry* CMaskParameterDataEntry::CreateEntry() { return new (std::nothrow) CMaskParameterDataEntry; }

void CMaskParameterDataEntry::DeleteContents() {
  paramData_ = nvx::SharedBytes();
  layerColors_.clear();
  usePatternIDs_.clear();
}

void CMaskParameterDataEntry::AddLayerColor(std::uint32_t color) {
  layerColors_.insert(std::upper_bound(layerColors_.begin(), layerColors_.end(), color), color);
}

std::uint32_t CMaskParameterDataEntry::GetLeyerColor(int index) const { return At(layerColors_, index); }
std::uint32_t CMaskParameterDataEntry::GetUsePatternID(int index) const { return At(usePatternIDs_, index); }

void CMaskParameterDataEntry::SetParamDataBuffer(const std::uint8_t* data, std::uint32_t size) {
  paramData_ = CopyOf(data, size);
}

CMaskParameterData::CMaskParameterData(const CMaskParameterData& other) : CDataObject(other) {
  SetAutoDelete(true);
  ::Append(CopiesOf(other.entries_), entries_);
}

CMaskParameterData& CMaskParameterData::operator=(const CMaskParameterData& other) {
  if (this == &other) return *this;
  auto copies = CopiesOf(other.entries_);
  DeleteContents();
  ::Append(std::move(copies), entries_);
  CDataObject::operator=(other);
  SetAutoDelete(true);
  return *this;
}

CMaskParameterData::~CMaskParameterData() { CMaskParameterData::DeleteContents(); }

void CMaskParameterData::DeleteContents() { Empty(*this, entries_); }

bool CMaskParameterData::AddTail(CMaskParameterDataEntry* entry) {
  if (entry == nullptr) return false;
  if (IsAutoDelete()) {
    entries_.Append(std::unique_ptr<CMaskParameterDataEntry>(entry));
  } else {
    entries_.AppendBorrowed(entry);
  }
  return true;
}

void CMaskParameterData::Append(std::vector<std::unique_ptr<CMaskParameterDataEntry>> entries) {
  ::Append(std::move(entries), entries_);
}

CMaskParameterDataEntry* CMaskParameterData::GetEntry(std::uint32_t pass, std::uint32_t specialColorsetCode,
                                                      std::uint32_t printMethod, std::uint32_t layerColorCount,
                                                      const std::uint32_t*) const {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [=](const CMaskParameterDataEntry* entry) {
    return entry->GetPass() == pass && entry->GetSpecialColorsetCode() == specialColorsetCode &&
           entry->GetPrintMethod() == printMethod && entry->GetLayerColorCount() == layerColorCount;
  });
  return found != entries_.end() ? *found : nullptr;
}

CMaskPatternDataEntry::~CMaskPatternDataEntry() = default;

CMaskPatternDataEntry* CMaskPatternDataEntry::CreateEntry() { return new (std::nothrow) CMaskPatternDataEntry; }

void CMaskPatternDataEntry::SetMaskPatternBuffer(const std::uint8_t* data, std::uint32_t size) {
  pattern_ = CopyOf(data, size);
}

CMaskPatternData::CMaskPatternData(const CMaskPatternData& other) : CDataObject(other) {
  SetAutoDelete(true);
  Append(CopiesOf(other.entries_), entries_);
}

CMaskPatternData& CMaskPatternData::operator=(const CMaskPatternData& other) {
  if (this == &other) return *this;
  auto copies = CopiesOf(other.entries_);
  DeleteContents();
  Append(std::move(copies), entries_);
  CDataObject::operator=(other);
  SetAutoDelete(true);
  return *this;
}

CMaskPatternData::~CMaskPatternData() { CMaskPatternData::DeleteContents(); }

void CMaskPatternData::DeleteContents() { Empty(*this, entries_); }

bool CMaskPatternData::Add(CMaskPatternDataEntry* entry) {
  if (entry == nullptr) return false;
  const std::uint32_t id = entry->GetMaskPatternID();
  const auto place = std::lower_bound(entries_.begin(), entries_.end(), id, HasLowerID);
  if (place == entries_.end() || (*place)->GetMaskPatternID() != id) {
    const auto index = static_cast<std::size_t>(place - entries_.begin());
    if (IsAutoDelete()) {
      entries_.Insert(index, std::unique_ptr<CMaskPatternDataEntry>(entry));
    } else {
      entries_.InsertBorrowed(index, entry);
    }
    return true;
  }
  if (*place != entry) delete entry;
  return false;
}

CMaskPatternDataEntry* CMaskPatternData::GetEntry(int id) const {
  const auto wanted = static_cast<std::uint32_t>(id);
  const auto place = std::lower_bound(entries_.begin(), entries_.end(), wanted, HasLowerID);
  return place != entries_.end() && (*place)->GetMaskPatternID() == wanted ? *place : nullptr;
}

void CMaskPatternData::Merge(std::vector<std::unique_ptr<CMaskPatternDataEntry>> entries) {
  std::vector<CMaskPatternDataEntry*> merged;
  merged.reserve(entries_.Count() + entries.size());
  auto present = entries_.begin();
  for (const std::unique_ptr<CMaskPatternDataEntry>& entry : entries) {
    while (present != entries_.end() && HasLowerID(*present, entry->GetMaskPatternID())) merged.push_back(*present++);
    merged.push_back(entry.get());
  }
  merged.insert(merged.end(), present, entries_.end());

  // Nothing can fail from here on.
  entries_.Become(std::move(merged));
  for (std::unique_ptr<CMaskPatternDataEntry>& entry : entries) static_cast<void>(entry.release());
}
