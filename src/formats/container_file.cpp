#include "core/stream.h"
#include "core/text.h"
#include "formats/container_records.h"

#include <nvxprofile/profile_file.h>

#include <limits>
#include <memory>
#include <string>

using nvx::ContainerEntryHeader;
using nvx::ContainerHeader;

namespace {

// Calls visit(entry) for each entry of the route in order until one gives false.
template <class Visit>
bool ForEachEntry(CProfileRoute& route, Visit visit) {
  bool more = route.GetHeadPos();
  while (more) {
    if (!visit(*route.GetNext(more))) return false;
  }
  return true;
}

ContainerEntryHeader HeaderOf(CProfileDataEntry& entry) {
  ContainerEntryHeader header;
  header.usedType = entry.GetUsedType();
  header.formatType = entry.GetFormatType();
  header.bodySize = entry.GetSize() + ContainerEntryHeader::kBodyMagicSize;
  header.complete = entry.IsComplete() ? 1 : 0;
  header.optionInfo = entry.GetOptionInfo();
  nvx::CopyText(header.label, nvx::TextOf(entry.GetLabelString()));
  return header;
}

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
  entry->SetComplete(header.complete != 0);
  entry->SetOptionInfo(header.optionInfo);
  entry->SetLabelString(header.label);
  return entry;
}

// Reads an entry's bytes and parses them. An entry whose payload does not parse keeps its bytes.
bool ReadBody(CNvxFile& file, const ContainerEntryHeader& header, CProfileDataEntry& entry) {
  if (header.bodySize < ContainerEntryHeader::kBodyMagicSize)
    return nvx::Refuse(file, "entry header: body size below 4");
  const std::uint32_t size = header.bodySize - ContainerEntryHeader::kBodyMagicSize;
  if (!nvx::Holds(file, size, 1)) return nvx::Refuse(file, "entry header: body size beyond the end");
  const std::uint32_t offset = file.GetDiagnosis() != nullptr ? file.GetPosition() : 0;
  if (size != 0 && !nvx::ReadExact(file, entry.GetBuffer(size), size))
    return nvx::Refuse(file, "entry body: cut short");
  const nvx::DiagnosisScope scope(file.GetDiagnosis(), offset,
                                  [&] { return "entry " + std::to_string(header.usedType); });
  entry.SetDiagnosis(file.GetDiagnosis());
  entry.BufferToData();
  entry.SetDiagnosis(nullptr);
  return true;
}

}  // namespace

CProfileFileQCT::CProfileFileQCT() { SetMyFormat(1); }
CProfileFileQCT::~CProfileFileQCT() = default;

void CProfileFileQCT::DeleteContents() { entryHeaders_.clear(); }

std::uint64_t CProfileFileQCT::GetSavedSize(CProfileData& data, std::uint32_t route) {
  CProfileRoute* const place = data.GetProfileRoute(route);
  if (place == nullptr) return 0;
  std::uint64_t size = kHeaderSize;
  ForEachEntry(*place, [&](CProfileDataEntry& entry) {
    size += std::uint64_t{kEntryHeaderSize} + ContainerEntryHeader::kBodyMagicSize + entry.GetSize();
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
  if (!LoadEntryHeader(file)) return false;
  for (const EntryHeaderRecord& record : entryHeaders_) {
    const auto header = nvx::DecodeRecord<ContainerEntryHeader>(record.data());
    if (!nvx::ReadMagic(file, ContainerEntryHeader::kBodyMagic)) return nvx::Refuse(file, "entry body: wrong magic");
    std::unique_ptr<CProfileDataEntry> entry = MakeEntry(file, header);
    if (!entry || !ReadBody(file, header, *entry)) return false;
    data->SetProfileDataEntry(entry.release(), route_);
  }
  return true;
}

bool CProfileFileQCT::SaveHeader(CNvxFile& file, CProfileData* data, std::uint32_t route) {
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
           constexpr std::uint32_t kLargest =
               std::numeric_limits<std::uint32_t>::max() - ContainerEntryHeader::kBodyMagicSize;
           return entry.GetSize() <= kLargest && nvx::WriteRecord(file, HeaderOf(entry));
         });
}

bool CProfileFileQCT::SaveBody(CNvxFile& file, CProfileData* data, std::uint32_t route) {
  return SaveEntryHeaders(file, data, route) &&
         ForEachEntry(*data->GetProfileRoute(route), [&](CProfileDataEntry& entry) {
           return nvx::WriteMagic(file, ContainerEntryHeader::kBodyMagic) &&
                  nvx::WriteExact(file, entry.GetRefBuffer(), entry.GetSize());
         });
}
