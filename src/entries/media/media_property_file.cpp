#include "core/stream.h"
#include "entries/media/media_property_records.h"

#include <nvxprofile/media_property.h>

#include <algorithm>

using nvx::MediaPropertyBlock;
using nvx::MediaPropertyEntryHeader;
using nvx::MediaPropertyHeader;

namespace {

// The block that an entry header describes, without values.
CMediaPropertyDataEntry* MakeBlock(CNvxFile& file, const MediaPropertyEntryHeader& header) {
  auto* const block = CMediaPropertyDataEntry::CreateMediaPropertyDataEntry(header.usedType, header.parameterMax);
  if (header.parameterMax != static_cast<std::uint32_t>(block->GetParameterMax())) {
    nvx::Warn(file, file.GetPosition(), "entry header: parameter count does not belong to the used type");
  }
  return block;
}

bool ReadValues(CNvxFile& file, CMediaPropertyDataEntry& block) {
  if (nvx::Remaining(file) < nvx::kRecordSize<MediaPropertyBlock>) {
    nvx::Warn(file, file.GetPosition(), "data block: cut short, the rest reads as zero");
  }
  const auto stored = nvx::ReadRecordPadded<MediaPropertyBlock>(file);
  if (stored.magic != MediaPropertyBlock::kMagic) return nvx::Refuse(file, "data block: wrong signature");
  for (std::int32_t i = 0; i < block.GetParameterMax(); ++i) block.SetParameter(i, stored.parameters[i]);
  return true;
}

MediaPropertyEntryHeader HeaderOf(const CMediaPropertyDataEntry& block) {
  MediaPropertyEntryHeader header;
  header.usedType = block.GetUsedType();
  header.parameterMax = static_cast<std::uint32_t>(block.GetParameterMax());
  return header;
}

MediaPropertyBlock ValuesOf(CMediaPropertyDataEntry& block) {
  MediaPropertyBlock values;
  std::copy_n(block.GetRefBuffer(), CMediaPropertyDataEntry::kParameterRoom, values.parameters);
  return values;
}

}  // namespace

CMediaPropertyFile::~CMediaPropertyFile() = default;

bool CMediaPropertyFile::LoadHeader(CNvxFile& file) {
  file.SeekToBegin();
  MediaPropertyHeader header;
  if (!nvx::ReadRecord(file, header)) return nvx::RefuseAt(file, 0, "media property: header cut short");
  if (header.magic != MediaPropertyHeader::kMagic) return nvx::RefuseAt(file, 0, "media property: wrong signature");
  if (header.version != MediaPropertyHeader::kVersion) return nvx::RefuseAt(file, 8, "media property: wrong version");
  entryCount_ = header.entryCount;
  headerRead_ = true;
  return true;
}

bool CMediaPropertyFile::LoadFile(CNvxFile& file, CMediaPropertyData* data) {
  if (data == nullptr || (!headerRead_ && !LoadHeader(file))) return false;
  if (!nvx::Holds(file, entryCount_, nvx::kRecordSize<MediaPropertyEntryHeader>)) {
    return nvx::Refuse(file, "media property: entry count beyond the end");
  }
  for (std::uint32_t i = 0; i < entryCount_; ++i) {
    data->AddTail(MakeBlock(file, nvx::ReadRecordPadded<MediaPropertyEntryHeader>(file)));
  }
  const auto& blocks = data->Entries();
  return std::all_of(blocks.begin(), blocks.end(),
                     [&](CMediaPropertyDataEntry* block) { return ReadValues(file, *block); });
}

bool CMediaPropertyFile::SaveFile(CNvxFile& file, CMediaPropertyData* data) {
  if (data == nullptr) return false;
  const auto& blocks = data->Entries();
  MediaPropertyHeader header;
  header.entryCount = static_cast<std::uint32_t>(blocks.Count());
  return nvx::WriteForm(file, header, blocks, HeaderOf,
                        [&](CMediaPropertyDataEntry& block) { return nvx::WriteRecord(file, ValuesOf(block)); });
}
