#include "core/form.h"
#include "entries/media/media_property_records.h"

#include <nvxprofile/media_property.h>

#include <algorithm>

using nvx::MediaPropertyBlock;
using nvx::MediaPropertyEntryHeader;
using nvx::MediaPropertyHeader;

namespace {

using EntryHeaders = nvx::RecordTable<MediaPropertyEntryHeader>;

// The block that an entry header describes, without values.
CMediaPropertyDataEntry* MakeBlock(CNvxFile& file, const EntryHeaders& headers, std::uint32_t index) {
  const MediaPropertyEntryHeader header = headers.At(index);
  auto* const block = CMediaPropertyDataEntry::CreateMediaPropertyDataEntry(header.usedType, header.parameterMax);
  if (header.parameterMax != static_cast<std::uint32_t>(block->GetParameterMax())) {
    nvx::Warn(file, headers.OffsetOf(index), "entry header: parameter count does not belong to the used type");
  }
  return block;
}

bool ReadValues(CNvxFile& file, CMediaPropertyDataEntry& block) {
  const std::uint32_t start = file.GetPosition();
  nvx::RecordBytes<MediaPropertyBlock> bytes{};
  if (!nvx::ReadExact(file, bytes.data(), nvx::kRecordSize<MediaPropertyBlock>)) {
    nvx::Warn(file, start, "data block: cut short, the rest reads as zero");
  }
  if (!nvx::CheckConstants<MediaPropertyBlock>(file, start, bytes.data())) return false;
  const auto stored = nvx::DecodeRecord<MediaPropertyBlock>(bytes.data());
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
  if (!nvx::ReadChecked(file, header)) return false;
  entryCount_ = header.entryCount;
  headerRead_ = true;
  return true;
}

bool CMediaPropertyFile::LoadFile(CNvxFile& file, CMediaPropertyData* data) {
  if (data == nullptr || (!headerRead_ && !LoadHeader(file))) return false;
  EntryHeaders headers;
  if (!headers.Read(file, entryCount_, "media property entry headers")) return false;
  for (std::uint32_t i = 0; i < headers.Count(); ++i) data->AddTail(MakeBlock(file, headers, i));
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
