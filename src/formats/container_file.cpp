#include "core/payload.h"
#include "core/stream.h"
#include "core/text.h"
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
  if (!entry) {
    nvx::Refuse(file, "entry header: unknown used type");
    return nullptr;
  }
  if (entry->GetFormatType() != header.formatType) {
    nvx::Refuse(file, "entry header: format type does not belong to the used type");
    return nullptr;
  }
  nvx::PayloadKeeper::SetEmpty(*entry);
  entry->SetComplete(header.complete != 0);
  entry->SetOptionInfo(header.optionInfo);
  entry->SetLabelString(header.label);
  return entry;
}

// The bytes behind the body magic; nothing if they do not stand in the stream.
std::optional<std::uint32_t> BodySize(CNvxFile& file, const ContainerEntryHeader& header) {
  if (header.bodySize < ContainerEntryHeader::kBodyMagicSize) {
    nvx::Refuse(file, "entry header: body size below 4");
    return std::nullopt;
  }
  const std::uint32_t size = header.bodySize - ContainerEntryHeader::kBodyMagicSize;
  if (nvx::Holds(file, size, 1)) return size;
  nvx::Refuse(file, "entry header: body size beyond the end");
  return std::nullopt;
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
    const std::optional<std::uint32_t> size = BodySize(file, header);
    if (!size || !take(std::move(entry), *size)) return false;
  }
  return true;
}

// Parses an entry's buffer, which starts at `offset` of the stream.
void Parse(CNvxFile& file, std::uint32_t offset, CProfileDataEntry& entry) {
  const nvx::DiagnosisScope scope(file.GetDiagnosis(), offset,
                                  [&] { return "entry " + std::to_string(entry.GetUsedType()); });
  nvx::ParseInto(file.GetDiagnosis(), entry);
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
  if (!nvx::ReadRecord(file, header)) return nvx::Refuse(file, "container header: cut short");
  if (header.magic != ContainerHeader::kMagic) return nvx::Refuse(file, "container header: wrong magic");
  if (header.version != ContainerHeader::kVersion) return nvx::Refuse(file, "container header: wrong version");
  entryCount_ = header.entryCount;
  route_ = header.route;
  return true;
}

bool CProfileFileQCT::LoadEntryHeader(CNvxFile& file) {
  DeleteContents();
  const std::uint32_t start = offsetLoadPoint_ + headerSize_;
  if (start < offsetLoadPoint_ || file.Seek(start, nvx::kFromBegin) != start) {
    return nvx::Refuse(file, "entry table: starts beyond the end");
  }
  if (!nvx::Holds(file, entryCount_, kEntryHeaderSize)) return nvx::Refuse(file, "entry table: count beyond the end");
  entryHeaders_.resize(entryCount_);
  const std::uint32_t size = entryCount_ * kEntryHeaderSize;
  if (size != 0 && !nvx::ReadExact(file, entryHeaders_.front().data(), size)) {
    DeleteContents();
    return nvx::Refuse(file, "entry table: cut short");
  }
  for (const EntryHeaderRecord& record : entryHeaders_) {
    if (nvx::LoadLittle<std::uint32_t>(record.data()) == ContainerEntryHeader::kMagic) continue;
    const auto index = static_cast<std::uint64_t>(&record - entryHeaders_.data());
    DeleteContents();
    return nvx::RefuseAt(file, start + index * kEntryHeaderSize, "entry header: wrong magic");
  }
  return true;
}

bool CProfileFileQCT::LoadEntries(CNvxFile& file, CProfileData* data) {
  return LoadEntryHeader(file) &&
         WalkBodies(file, entryHeaders_, [&](std::unique_ptr<CProfileDataEntry> entry, std::uint32_t size) {
           const std::uint32_t offset = file.GetDiagnosis() != nullptr ? file.GetPosition() : 0;
           if (!nvx::PayloadKeeper::Take(*entry, file, size)) return nvx::Refuse(file, "entry body: cut short");
           // An entry whose payload does not parse keeps its bytes.
           Parse(file, offset, *entry);
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
