#include "support/model_machine.h"

#include "core/payload.h"
#include "support/entries.h"
#include "support/forms_in_memory.h"
#include "support/random_model.h"

#include <nvxprofile/calibration_history.h>
#include <nvxprofile/curve_entry.h>
#include <nvxprofile/media_property.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file_qpf.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace nvx::test {
namespace {

using Contents = Bytes;

bool SaysAll(const CProfileDataEntry& entry) { return PayloadKeeper::SaysAll(entry); }

void Push(Contents& contents, const void* value, std::size_t size) {
  const auto* const bytes = static_cast<const std::uint8_t*>(value);
  contents.insert(contents.end(), bytes, bytes + size);
}

// The description of a container travels with its entry, the next ID with its children.
void DescribeContainer(const CContainerEntry& container, Knowledge& knowledge) {
  const tag_ContainerData& description = *container.GetChildData().GetContainerData();
  Push(knowledge.contents, &description.Value, sizeof description.Value);
  Push(knowledge.contents, &description.Time, sizeof description.Time);
  Push(knowledge.contents, description.Name, 40);
  if (const auto* const history = dynamic_cast<const CCalibrationHistoryEntry*>(&container)) {
    const std::uint32_t id = history->PeekNextID();
    Push(knowledge.contents, &id, sizeof id);
  }
  for (CProfileDataEntry* const child : container.GetChildData().Children()) {
    knowledge.children.push_back(KnowledgeOf(*child));
    knowledge.children.back().label.clear();
  }
}

Contents ContentsOf(CProfileDataEntry& entry) {
  const SharedBytes form = SaysAll(entry) ? PayloadKeeper::FormOf(entry) : SharedBytes();
  // A payload that its form cannot carry is looked at by its bytes; no operation here makes one.
  return form.IsEmpty() ? BytesOf(entry) : Contents(form.Data(), form.Data() + form.Size());
}

// The same in an entry of its own, as a load would make it.
std::unique_ptr<CProfileDataEntry> Reread(CProfileDataEntry& entry) {
  std::unique_ptr<CProfileDataEntry> copy = NewEntry(entry.GetUsedType());
  copy->SetComplete(entry.IsComplete());
  copy->SetOptionInfo(entry.GetOptionInfo());
  copy->SetLabelString(entry.GetLabelString());
  SetBytes(*copy, BytesOf(entry));
  copy->BufferToData();
  if (auto* const container = dynamic_cast<CContainerEntry*>(copy.get())) {
    container->SetContainerData(std::as_const(dynamic_cast<CContainerEntry&>(entry)).GetChildData().GetContainerData());
  }
  return copy;
}

// What a profile of the current generation gives back: all samples count as 16 bits.
Knowledge As16Bit(CProfileDataEntry& entry) {
  if (dynamic_cast<CProfileCurveEntry*>(&entry) == nullptr || !SaysAll(entry)) return KnowledgeOf(entry);
  const std::unique_ptr<CProfileDataEntry> copy = CloneEntry(entry);
  copy->RenewBuffer();
  dynamic_cast<CProfileCurveEntry&>(*copy).TakeSamplesAs16Bit();
  return KnowledgeOf(*copy);
}

}  // namespace

Knowledge KnowledgeOf(CProfileDataEntry& entry) {
  Knowledge knowledge{entry.GetUsedType(),
                      entry.GetFormatType(),
                      entry.IsComplete(),
                      entry.GetOptionInfo(),
                      entry.GetLabelString(),
                      {},
                      {}};
  const auto* const container = dynamic_cast<const CContainerEntry*>(&entry);
  if (container != nullptr && SaysAll(entry)) {
    DescribeContainer(*container, knowledge);
  } else {
    knowledge.contents = ContentsOf(entry);
  }
  return knowledge;
}

ModelMachine::ModelMachine(Choose choose, std::u16string folder)
    : choose_(std::move(choose)),
      path_(std::move(folder) + u"/model.icc"),
      random_(choose_(0xFFFFFFFF)),
      data_(std::make_unique<CProfileData>()) {
  FillRandomProfile(*data_, random_);
}

ModelMachine::~ModelMachine() = default;

std::string ModelMachine::Step() {
  static constexpr std::pair<const char*, Operation> kOperations[] = {
      {"add", &ModelMachine::Add},
      {"walk", &ModelMachine::Walk},
      {"save as container", &ModelMachine::SaveContainer},
      {"save as profile", &ModelMachine::SaveProfile},
      {"change history", &ModelMachine::ChangeHistory},
  };
  static constexpr std::pair<const char*, EntryOperation> kEntryOperations[] = {
      {"remove", &ModelMachine::Remove},   {"damage", &ModelMachine::Damage}, {"parse", &ModelMachine::Parse},
      {"rebuild", &ModelMachine::Rebuild}, {"edit", &ModelMachine::Edit},     {"clone", &ModelMachine::Clone},
      {"copy", &ModelMachine::CopyOver},   {"import", &ModelMachine::Import},
  };
  const auto said = [](const char* name, const std::string& broken) {
    return broken.empty() ? broken : std::string(name) + ": " + broken;
  };
  const std::uint32_t choice = choose_(std::size(kOperations) + std::size(kEntryOperations));
  const Picture before = Look();
  if (choice < std::size(kOperations)) {
    const auto& [name, operation] = kOperations[choice];
    return said(name, (this->*operation)(before));
  }
  CProfileDataEntry* const entry = Any();
  if (entry == nullptr) return {};
  const std::size_t index = IndexOf(entry);
  const auto& [name, operation] = kEntryOperations[choice - std::size(kOperations)];
  const std::string broken = (this->*operation)(*entry, before);
  const bool isRemoved = operation == &ModelMachine::Remove;
  return said(name, broken.empty() && !isRemoved && !SameBut(before, Look(), index) ? "other entries changed" : broken);
}

ModelMachine::Picture ModelMachine::Look() const {
  Picture picture;
  for (CProfileDataEntry* const entry : data_->Entries()) picture.entries.push_back(KnowledgeOf(*entry));
  for (const auto& [number, route] : data_->Routes()) {
    for (CProfileDataEntry* const entry : route->Entries()) picture.routes[number].push_back(IndexOf(entry));
  }
  return picture;
}

std::size_t ModelMachine::IndexOf(const CProfileDataEntry* entry) const {
  const auto& entries = data_->Entries();
  return static_cast<std::size_t>(std::find(entries.begin(), entries.end(), entry) - entries.begin());
}

bool ModelMachine::SameBut(Picture a, Picture b, std::size_t index) {
  if (index >= a.entries.size() || index >= b.entries.size()) return false;
  a.entries[index] = b.entries[index] = Knowledge();
  return a == b;
}

CProfileDataEntry* ModelMachine::Any() {
  const auto count = static_cast<std::uint32_t>(data_->Entries().Count());
  return count != 0 ? data_->Entries().At(choose_(count)) : nullptr;
}

std::unique_ptr<CProfileDataEntry> ModelMachine::NewEntry(std::uint32_t usedType) {
  random_.seed(choose_(0xFFFFFFFF));
  return MakeRandomEntry(usedType, random_);
}

std::uint32_t ModelMachine::AnyRoute() {
  constexpr std::uint32_t kRoutes[] = {1, 2, 4, 4, 4, 8, 256, 512, 1024, 2048};
  return kRoutes[choose_(std::size(kRoutes))];
}

std::string ModelMachine::Add(const Picture& before) {
  std::unique_ptr<CProfileDataEntry> entry = NewEntry(1 + choose_(30));
  if (!entry) return {};
  Picture expected = before;
  const std::uint32_t route = AnyRoute();
  const auto present = std::find_if(expected.entries.begin(), expected.entries.end(),
                                    [&](const Knowledge& k) { return k.usedType == entry->GetUsedType(); });
  expected.routes[route].push_back(static_cast<std::size_t>(present - expected.entries.begin()));
  const bool isNew = present == expected.entries.end();
  if (isNew) expected.entries.push_back(KnowledgeOf(*entry));
  if (data_->SetProfileDataEntry(entry.release(), route) != isNew) return "the result is wrong";
  return Look() == expected ? "" : "the model is another";
}

std::string ModelMachine::Remove(CProfileDataEntry& entry, const Picture& before) {
  const std::size_t index = IndexOf(&entry);
  const std::uint32_t route = AnyRoute();
  CProfileDataEntry* const removed = data_->RemoveProfileDataEntry(entry.GetUsedType(), route);
  if (removed == nullptr) return Look() == before ? "" : "nothing was removed, and yet something is gone";
  if (removed != &entry) return "another entry was removed";
  const Knowledge knowledge = KnowledgeOf(*removed);
  if (IndexOf(removed) == data_->Entries().Count()) delete removed;
  return knowledge == before.entries[index] ? "" : "the removed entry is another";
}

std::string ModelMachine::Damage(CProfileDataEntry& entry, const Picture&) {
  if (entry.GetSize() == 0) return {};
  Contents bytes = BytesOf(entry);
  if (choose_(2) == 0) {
    bytes.resize(choose_(static_cast<std::uint32_t>(bytes.size())) + 1);
  } else {
    bytes[choose_(static_cast<std::uint32_t>(std::min<std::size_t>(bytes.size(), 512)))] =
        static_cast<std::uint8_t>(choose_(256));
  }
  SetBytes(entry, bytes);
  if (BytesOf(entry) != bytes) return "the bytes are others";
  return entry.DataToBuffer() ? "bytes that nobody read were replaced" : "";
}

std::string ModelMachine::Parse(CProfileDataEntry& entry, const Picture&) {
  const Contents bytes = BytesOf(entry);
  const bool parsed = entry.BufferToData();
  if (BytesOf(entry) != bytes) return "the bytes are others";
  if (!parsed && !bytes.empty() && SaysAll(entry)) return "a refused form counts as whole";
  return {};
}

std::string ModelMachine::Rebuild(CProfileDataEntry& entry, const Picture& before) {
  const Contents bytes = BytesOf(entry);
  const bool whole = SaysAll(entry);
  const bool rebuilt = entry.DataToBuffer();
  if (Look() != before) return "what the entry knows changed";
  if (!rebuilt) return BytesOf(entry) == bytes ? "" : "a refusal changed the bytes";
  if (!whole) return "bytes that the payload does not say were replaced";
  const std::unique_ptr<CProfileDataEntry> again = Reread(entry);
  return KnowledgeOf(*again) == before.entries[IndexOf(&entry)] ? "" : "the new buffer says something else";
}

std::string ModelMachine::Edit(CProfileDataEntry& entry, const Picture& before) {
  const bool whole = SaysAll(entry);
  bool edited = false;
  if (auto* const curves = dynamic_cast<CProfileCurveEntry*>(&entry)) {
    CCurveDataEntry* const curve = curves->GetCurveData()->Curves().At(0);
    if (curve != nullptr) curve->SetSlotNo(curve->GetSlotNo() + 1);
    edited = curve != nullptr;
  } else if (auto* const media = dynamic_cast<CMediaPropertyEntry*>(&entry)) {
    media->GetMediaPropertyData()->AddTail(CMediaPropertyDataEntry::CreateMediaPropertyDataEntry(1, 1));
    edited = true;
  }
  const bool differs = KnowledgeOf(entry) != before.entries[IndexOf(&entry)];
  if (differs != (edited && whole)) return "an edit of a payload that says all shows, and no other";
  if (edited && !whole && entry.RenewBuffer()) return "an edit that cannot be written is said to be";
  return {};
}

std::string ModelMachine::Walk(const Picture&) {
  const auto entries = data_->Entries().Count();
  std::size_t walked = 0;
  bool more = data_->GetEntryStartPos();
  while (more && walked <= entries) {
    CProfileDataEntry* const entry = data_->GetNextEntry(more);
    ++walked;
    data_->GetProfileDataEntryFromList(1 + choose_(30));
    entry->RenewBuffer();
  }
  if (walked != entries) return "a walk over the entries lost its way";
  for (const auto& [number, route] : data_->Routes()) {
    const auto count = route->Entries().Count();
    walked = 0;
    more = route->GetHeadPos();
    while (more && walked <= count) {
      route->GetNext(more);
      ++walked;
      data_->GetProfileDataEntry(number, 1 + choose_(30));
    }
    if (walked != count) return "a walk over a route lost its way";
  }
  return {};
}

std::string ModelMachine::SaveContainer(const Picture& before) {
  const std::uint32_t route = AnyRoute();
  const auto saved = SaveBytes<CProfileFileQCT>(*data_, route);
  if (Look() != before) return "a save changed the model";
  if (!saved) return data_->IsSpecifiedRoute(route) ? "an existing route is not saved" : "";
  CProfileData loaded;
  if (!LoadBytes<CProfileFileQCT>(*saved, loaded)) return "what was saved does not load";
  for (CProfileDataEntry* const entry : data_->GetProfileRoute(route)->Entries()) {
    CProfileDataEntry* const again = loaded.GetProfileDataEntry(route, entry->GetUsedType());
    if (again == nullptr) return "an entry is gone";
    if (!(ImageOf(*again) == ImageOf(*entry))) {
      const bool recomputed = entry->GetFormatType() == CProfileDataEntry::kFormatIcc;
      if (!recomputed || BytesOf(*again) != BytesOf(*entry)) return "an entry is another";
    }
  }
  return {};
}

std::string ModelMachine::SaveProfile(const Picture& before) {
  for (CProfileDataEntry* const entry : data_->Entries()) {
    if (!entry->RenewBuffer()) return {};
  }
  const _tagDeviceProfileInfo record = *data_->GetProfileInfo();
  const std::u16string path = choose_(4) == 0 ? path_ + u"/none" : path_;
  if (!CProfileFileQPFv3().SaveData(path.c_str(), data_.get(), kSaveCalibration | kSaveReplaceProfile)) {
    const _tagDeviceProfileInfo& now = *data_->GetProfileInfo();
    const bool same = now.LayoutNumber == record.LayoutNumber && now.UpdateTimeValue == record.UpdateTimeValue &&
                      now.ProfileMinorVersion == record.ProfileMinorVersion &&
                      std::memcmp(&now.Text, &record.Text, sizeof now.Text) == 0;
    return same && Look() == before ? "" : "a failed save changed the model";
  }
  if (Look().entries != before.entries) return "a save changed the entries";
  CProfileAccess access;
  CError error;
  if (!access.Init(path.c_str(), &error)) {
    // Routes of one tag hold one entry of one type; what a caller puts there beside it is not the form's.
    return {};
  }
  for (CProfileDataEntry* const entry : data_->GetProfileRoute(kRouteMain)->Entries()) {
    CProfileDataEntry* const again = access.GetProfileData()->GetProfileDataEntry(kRouteMain, entry->GetUsedType());
    if (again == nullptr) return "an entry is gone";
    if (entry->GetUsedType() == CProfileDataEntry::kIcm || entry->GetSize() == 0) continue;
    const std::unique_ptr<CProfileDataEntry> reread = Reread(*entry);
    if (As16Bit(*reread) != KnowledgeOf(*again)) return "an entry is another";
  }
  return {};
}

std::string ModelMachine::Clone(CProfileDataEntry& entry, const Picture& before) {
  const Contents bytes = BytesOf(entry);
  const std::unique_ptr<CProfileDataEntry> copy = CloneEntry(entry);
  if (Look() != before || BytesOf(entry) != bytes) return "the source changed";
  if (!copy) return "an entry has no copy";
  if (BytesOf(*copy) != bytes) return "the copy has other bytes";
  return KnowledgeOf(*copy) == before.entries[IndexOf(&entry)] ? "" : "the copy knows something else";
}

std::string ModelMachine::CopyOver(CProfileDataEntry& entry, const Picture& before) {
  const std::unique_ptr<CProfileDataEntry> target = NewEntry(entry.GetUsedType());
  const Knowledge old = KnowledgeOf(*target);
  const bool copied = entry.Copy(*target);
  if (Look() != before) return "the source changed";
  if (!copied) return KnowledgeOf(*target) == old ? "" : "a refusal changed the target";
  if (entry.GetSize() == 0) return {};
  if (BytesOf(*target) != BytesOf(entry)) return "the bytes are others";
  const bool parsed = target->BufferToData();
  return !SaysAll(entry) || parsed || entry.GetSize() == 0 ? "" : "the copy of a whole entry does not parse";
}

std::string ModelMachine::Import(CProfileDataEntry& entry, const Picture& before) {
  const std::unique_ptr<CProfileDataEntry> source = NewEntry(entry.GetUsedType());
  if (choose_(2) == 0 && source->GetSize() != 0) {
    Contents bytes = BytesOf(*source);
    bytes.resize(choose_(static_cast<std::uint32_t>(bytes.size())) + 1);
    SetBytes(*source, bytes);
    source->BufferToData();
  }
  const Contents bytes = BytesOf(entry);
  const std::size_t index = IndexOf(&entry);
  const bool imported = entry.DoImport(source.get());
  const Picture after = Look();
  if (!SameBut(before, after, index)) return "other entries changed";
  // Curves take their samples one after the other until one has no partner.
  const bool curves = dynamic_cast<CProfileCurveEntry*>(&entry) != nullptr;
  if (!imported && !curves && (after != before || BytesOf(entry) != bytes)) return "a refusal changed the entry";
  if (imported && !SaysAll(entry) && after.entries[index].contents != BytesOf(*source) && after != before) {
    return "what was taken over cannot be written";
  }
  return {};
}

std::string ModelMachine::ChangeHistory(const Picture& before) {
  auto* const history = dynamic_cast<CCalibrationHistoryEntry*>(
      data_->GetProfileDataEntryFromList(CProfileDataEntry::kCalibrationHistory));
  if (history == nullptr) return {};
  const std::size_t index = IndexOf(history);
  const auto& children = std::as_const(*history).GetChildData().Children();
  const std::size_t count = children.Count();
  const auto unchanged = [&](const char* what) { return Look() == before ? std::string() : std::string(what); };
  switch (choose_(4)) {
    case 0: {
      NewCalibration calibration;
      calibration.name = u"new";
      calibration.linearization = std::make_unique<CCalibrationLinearizationEntry>();
      if (AddCalibration(*history, std::move(calibration)) == nullptr)
        return unchanged("a refusal changed the history");
      if (children.Count() < count + 1) return "the calibration is not there";
      break;
    }
    case 1: {
      const std::unique_ptr<CProfileDataEntry> entry = NewEntry(CProfileDataEntry::kCalibrationHistory);
      auto& source = dynamic_cast<CCalibrationHistoryEntry&>(*entry);
      const Knowledge theirs = KnowledgeOf(source);
      const auto imported = ImportCalibrations(*history, source);
      if (KnowledgeOf(source) != theirs) return "the source of an import changed";
      if (!imported) return unchanged("a refused import changed the history");
      if (children.Count() < count + imported->size()) return "calibrations are gone";
      break;
    }
    case 2: {
      if (count == 0) return {};
      const std::size_t place = choose_(static_cast<std::uint32_t>(count));
      const std::unique_ptr<CProfileDataEntry> child(history->RemoveProfileDataEntry(static_cast<int>(place)));
      Knowledge knowledge = KnowledgeOf(*child);
      knowledge.label.clear();
      const auto& known = before.entries[index].children;
      if (!known.empty() && !(knowledge == known[place])) return "the removed child is another";
      break;
    }
    default: {
      const bool rebuilt = history->DataToBuffer();
      if (!rebuilt) return unchanged("a refusal changed the history");
      if (!history->BufferToData()) return "a rebuilt history does not parse";
      return unchanged("a rebuilt history is another");
    }
  }
  return SameBut(before, Look(), index) ? "" : "other entries changed";
}

}  // namespace nvx::test
