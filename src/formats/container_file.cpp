#include "core/text.h"
#include "entries/entry_listing.h"
#include "formats/container_entries.h"

#include <nvxprofile/entry_types.h>
#include <nvxprofile/profile_file.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>

using nvx::ContainerEntryHeader;
using nvx::ContainerHeader;
using nvx::ForEachEntry;

namespace {

// The entry that a record describes, without bytes; null for an unknown type or one whose form is another.
std::unique_ptr<CProfileDataEntry> MakeEntry(CNvxFile& file, const ContainerEntryHeader& header) {
  std::unique_ptr<CProfileDataEntry> entry(
      CProfileDataEntry::CreateDataEntry(static_cast<CProfileDataEntry::UsedType>(header.usedType)));
  if (!nvx::CheckForm(file, header, entry.get())) return nullptr;
  nvx::PayloadKeeper::SetEmpty(*entry);
  entry->SetComplete(header.complete != 0);
  entry->SetOptionInfo(header.optionInfo);
  entry->SetLabelString(header.label);
  return entry;
}

// Walks the bodies from where the stream stands. For each record take(entry, size) gets its entry, with the stream at
// the `size` bytes of its buffer, and moves the stream behind them.
template <class Take>
bool WalkBodies(CNvxFile& file, const std::vector<nvx::RecordBytes<ContainerEntryHeader>>& records, Take take) {
  for (const auto& record : records) {
    const auto header = nvx::DecodeRecord<ContainerEntryHeader>(record.data());
    if (!nvx::ReadMagic(file, ContainerEntryHeader::kBodyMagic)) return nvx::Refuse(file, "entry body: wrong magic");
    std::unique_ptr<CProfileDataEntry> entry = MakeEntry(file, header);
    if (!entry) return false;
    const std::optional<std::uint32_t> size = nvx::BodySize(file, header);
    if (!size || !take(std::move(entry), *size)) return false;
  }
  return true;
}

// An entry on two routes of a text-headed profile stands in both of its tables.
bool SayTheSame(CProfileDataEntry& a, CProfileDataEntry& b) {
  const auto bytes = a.Bytes();
  const auto others = b.Bytes();
  return std::equal(bytes.begin(), bytes.end(), others.begin(), others.end()) && a.IsComplete() == b.IsComplete() &&
         a.GetOptionInfo() == b.GetOptionInfo() && std::strcmp(a.GetLabelString(), b.GetLabelString()) == 0;
}

}  // namespace

bool nvx::WriteEntryHeader(CNvxFile& file, CProfileDataEntry& entry, std::uint32_t size) {
  if (size > std::numeric_limits<std::uint32_t>::max() - ContainerEntryHeader::kBodyMagicSize) return false;
  ContainerEntryHeader header;
  header.usedType = entry.GetUsedType();
  header.formatType = entry.GetFormatType();
  header.bodySize = size + ContainerEntryHeader::kBodyMagicSize;
  header.complete = entry.IsComplete() ? 1 : 0;
  header.optionInfo = entry.GetOptionInfo();
  CopyText(header.label, TextOf(entry.GetLabelString()));
  return WriteRecord(file, header);
}

bool nvx::WriteEntryBody(CNvxFile& file, CProfileDataEntry& entry, std::uint32_t size) {
  return WriteMagic(file, ContainerEntryHeader::kBodyMagic) && WriteExact(file, entry.Bytes().data(), size);
}

CProfileFileQCT::CProfileFileQCT() { SetMyFormat(nvx::kContainer); }
CProfileFileQCT::~CProfileFileQCT() = default;

void CProfileFileQCT::DeleteContents() { entryHeaders_.clear(); }

std::uint64_t CProfileFileQCT::GetSavedSize(const CProfileData& data, std::uint32_t route) {
  const CProfileRoute* const place = data.GetProfileRoute(route);
  if (place == nullptr) return 0;
  std::uint64_t size = kHeaderSize;
  ForEachEntry(*place, [&](CProfileDataEntry& entry) {
    size += std::uint64_t{nvx::kEntryOverhead} + entry.GetSize();
    return true;
  });
  return size;
}

bool CProfileFileQCT::LoadHeader(CNvxFile& file, CProfileData*) {
  file.Seek(offsetLoadPoint_, nvx::kFromBegin);
  ContainerHeader header;
  if (!nvx::ReadChecked(file, header)) return false;
  entryCount_ = header.entryCount;
  route_ = header.route;
  return true;
}

bool CProfileFileQCT::LoadEntryHeader(CNvxFile& file) {
  return nvx::ReadEntryHeaders<ContainerEntryHeader>(file, std::uint64_t{offsetLoadPoint_} + headerSize_, entryCount_,
                                                     "entry table", entryHeaders_);
}

bool CProfileFileQCT::LoadEntries(CNvxFile& file, CProfileData* data) {
  return LoadEntryHeader(file) &&
         WalkBodies(file, entryHeaders_, [&](std::unique_ptr<CProfileDataEntry> entry, std::uint32_t size) {
           const std::uint32_t offset = file.GetDiagnosis() != nullptr ? file.GetPosition() : 0;
           if (!nvx::PayloadKeeper::Take(*entry, file, size)) return nvx::Refuse(file, "entry body: cut short");
           nvx::ParseListed(file, offset, *entry, [&] { return std::to_string(entry->GetUsedType()); });
           CProfileDataEntry* const present = data->GetProfileDataEntryFromList(entry->GetUsedType());
           const bool isLost = present != nullptr && !SayTheSame(*present, *entry);
           if (!data->SetProfileDataEntry(entry.release(), route_) && isLost) {
             nvx::PassOver(file, "entry header: the profile has another entry of this used type already, which stays");
           }
           return true;
         });
}

bool CProfileFileQCT::CheckEntries(CNvxFile& file) {
  return LoadEntryHeader(file) &&
         WalkBodies(file, entryHeaders_, [&](const std::unique_ptr<CProfileDataEntry>&, std::uint32_t size) {
           file.Seek(size, nvx::kFromPosition);
           return true;
         });
}

bool CProfileFileQCT::SaveHeader(CNvxFile& file, CProfileData* data, std::uint32_t route) {
  if (!data->IsSpecifiedRoute(route)) return false;
  ContainerHeader header;
  header.targetType = data->GetTargetType();
  header.route = route;
  header.deviceType = data->GetDeviceType();
  header.entryCount = static_cast<std::uint32_t>(data->GetEntryCount(route));
  entryCount_ = header.entryCount;
  route_ = route;
  return nvx::WriteRecord(file, header);
}

bool CProfileFileQCT::SaveEntryHeaders(CNvxFile& file, CProfileData* data, std::uint32_t route) {
  CProfileRoute* const place = data->GetProfileRoute(route);
  return place != nullptr && ForEachEntry(*place, [&](CProfileDataEntry& entry) {
           return nvx::WriteEntryHeader(file, entry, entry.GetSize());
         });
}

bool CProfileFileQCT::SaveBody(CNvxFile& file, CProfileData* data, std::uint32_t route) {
  return SaveEntryHeaders(file, data, route) &&
         ForEachEntry(*data->GetProfileRoute(route),
                      [&](CProfileDataEntry& entry) { return nvx::WriteEntryBody(file, entry, entry.GetSize()); });
}
