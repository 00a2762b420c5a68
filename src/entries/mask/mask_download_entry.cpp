// The entries that carry print masks.
#include "core/form.h"
#include "core/payload.h"
#include "entries/mask/mask_download_records.h"

#include <nvxprofile/mask_download.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

using nvx::WeftBlockHeader;
using nvx::WeftHeaderRecord;
using nvx::WeftOutputRecord;

namespace {

// What a block of a type holds.
struct BlockKind {
  std::uint32_t valueCount;
  std::uint32_t byteCount;
  std::uint32_t versionMajor;
  std::uint32_t versionMinor;
};

constexpr BlockKind kBlockKinds[] = {
    {16, 0, 1, 0}, {1, 0, 1, 0}, {1, 0, 1, 0},
    {3, 0, 1, 1},  {0, 2, 2, 0}, {0, nvx::kRecordSize<WeftOutputRecord>, 3, 0},
};

constexpr std::uint32_t kMaskType = 3;  // also what type 0 stands for
constexpr std::uint32_t kPrinterMaskType = 4;
constexpr std::uint32_t kIncludePatternType = 5;

// Null for a type without a row.
constexpr const BlockKind* KindOf(std::uint32_t type) {
  return type >= 1 && type <= std::size(kBlockKinds) ? &kBlockKinds[type - 1] : nullptr;
}

std::uint64_t BodySize(std::uint64_t valueCount, std::uint64_t byteCount) {
  return WeftBlockHeader::kBodyMagicSize + sizeof(std::uint32_t) * valueCount + byteCount;
}

// A block that would load as it is.
bool IsSound(const tagWeftDatas& block) {
  const BlockKind* const kind = KindOf(block.BlockType);
  return kind != nullptr && block.ValueCount == kind->valueCount && block.ByteCount == kind->byteCount &&
         (block.Values != nullptr || block.ValueCount == 0) && (block.Bytes != nullptr || block.ByteCount == 0);
}

bool WriteBody(CNvxFile& file, const tagWeftDatas& block) {
  std::uint8_t values[sizeof(std::uint32_t) * 16];
  static_assert(sizeof values == sizeof(std::uint32_t) * kBlockKinds[0].valueCount);
  nvx::StoreLittleRun(values, block.Values, block.ValueCount);
  return nvx::WriteMagic(file, WeftBlockHeader::kBodyMagic) &&
         nvx::WriteExact(file, values, block.ValueCount * std::uint32_t{sizeof(std::uint32_t)}) &&
         nvx::WriteExact(file, block.Bytes, block.ByteCount);
}

}  // namespace

CMaskDownLoadEntry::CMaskDownLoadEntry() : CMaskDownLoadEntry(kMaskDownload, kFormatMaskDownload, true) {}

CMaskDownLoadEntry::CMaskDownLoadEntry(UsedType usedType, FormatType formatType, bool display)
    : CProfileDataEntry(usedType, formatType, display) {}

CMaskDownLoadEntry::~CMaskDownLoadEntry() { DeleteBlocks(); }

void CMaskDownLoadEntry::DeleteBlocks() {
  for (const tagWeftDatas& block : blocks_) {
    delete[] block.Values;
    delete[] block.Bytes;
  }
  blocks_.clear();
}

void CMaskDownLoadEntry::Initialize(std::uint32_t dataCount) {
  OpenPayload();
  DeleteBlocks();
  header_ = tagWeftHeader();
  header_.DataCount = dataCount;
  blocks_.resize(dataCount);
}

void CMaskDownLoadEntry::SetWeftDataParameter(std::uint32_t index, std::uint32_t type) {
  OpenPayload();
  ShapeBlock(index, type);
}

void CMaskDownLoadEntry::ShapeBlock(std::uint32_t index, std::uint32_t type) {
  if (type == 0) type = kMaskType;
  if (index >= header_.DataCount || index >= blocks_.size()) index = 0;
  const BlockKind* const kind = KindOf(type);
  if (kind == nullptr || blocks_.empty()) return;

  auto values = kind->valueCount != 0 ? std::make_unique<std::uint32_t[]>(kind->valueCount) : nullptr;
  auto bytes = kind->byteCount != 0 ? std::make_unique<std::uint8_t[]>(kind->byteCount) : nullptr;
  tagWeftDatas& block = blocks_[index];
  delete[] block.Values;
  delete[] block.Bytes;
  block = {type, values.release(), bytes.release(), kind->valueCount, kind->byteCount};
  header_.VersionMajor = kind->versionMajor;
  header_.VersionMinor = kind->versionMinor;
}

tagWeftDatas* CMaskDownLoadEntry::GetWeftData(std::uint32_t type) {
  OpenPayload();
  return const_cast<tagWeftDatas*>(std::as_const(*this).GetWeftData(type));
}

const tagWeftDatas* CMaskDownLoadEntry::GetWeftData(std::uint32_t type) const {
  const auto found = std::find_if(blocks_.begin(), blocks_.end(),
                                  [type](const tagWeftDatas& block) { return block.BlockType == type; });
  return found != blocks_.end() ? &*found : nullptr;
}

std::uint32_t* CMaskDownLoadEntry::GetWeftUsedType() {
  return const_cast<std::uint32_t*>(std::as_const(*this).GetWeftUsedType());
}

const std::uint32_t* CMaskDownLoadEntry::GetWeftUsedType() const {
  return blockHeaders_.empty() ? nullptr : &blockHeaders_.front().blockType;
}

bool CMaskDownLoadEntry::IsSuportVersion(const tagWeftHeader* header) const {
  if (header == nullptr) return false;
  return header->VersionMajor < 4 || (header->VersionMajor == 4 && header->VersionMinor == 0);
}

bool CMaskDownLoadEntry::DoImport(CProfileDataEntry* source) {
  auto* const from = dynamic_cast<CMaskDownLoadEntry*>(source);
  if (from == nullptr || !nvx::PayloadKeeper::SaysAll(*this)) return false;
  from->BufferToData();
  if (from == this) return true;
  for (const std::uint32_t type : {kMaskType, kPrinterMaskType, WeftOutputRecord::kBlockType}) {
    const tagWeftDatas* const theirs = std::as_const(*from).GetWeftData(type);
    tagWeftDatas* const ours = GetWeftData(type);
    if (theirs == nullptr || ours == nullptr || !IsSound(*theirs) || !IsSound(*ours)) continue;
    std::copy_n(theirs->Values, theirs->ValueCount, ours->Values);
    std::copy_n(theirs->Bytes, theirs->ByteCount, ours->Bytes);
  }
  return true;
}

bool CMaskDownLoadEntry::BufferToData() {
  return nvx::ParseBuffer(*this, [this](CNvxFile& file) {
    WeftHeaderRecord record;
    if (!nvx::ReadChecked(file, record)) return false;
    blockHeaders_.clear();
    header_ = record.header;
    return LoadWeftDataHeader(file) && LoadWeftData(file);
  });
}

bool CMaskDownLoadEntry::LoadWeftDataHeader(CNvxFile& file) {
  nvx::RecordTable<WeftBlockHeader> headers;
  if (!headers.Read(file, header_.DataCount, "mask download block headers", WeftBlockHeader::kBodyMagicSize) ||
      !headers.Check(file)) {
    return false;
  }
  blockHeaders_ = headers.All();
  return true;
}

bool CMaskDownLoadEntry::LoadWeftData(CNvxFile& file) {
  DeleteBlocks();
  blocks_.resize(header_.DataCount);
  for (std::uint32_t i = 0; i < header_.DataCount; ++i) {
    if (LoadBlock(file, i)) continue;
    blocks_.resize(std::min<std::size_t>(i, blocks_.size()));
    return false;
  }
  return true;
}

bool CMaskDownLoadEntry::LoadBlock(CNvxFile& file, std::uint32_t index) {
  const std::uint32_t stored = blockHeaders_[index].blockType;
  const BlockKind* const kind = KindOf(stored != 0 ? stored : kMaskType);
  if (kind == nullptr) return nvx::Refuse(file, "mask download block: unknown type");
  const nvx::StreamBlock magic(file, WeftBlockHeader::kBodyMagicSize);
  if (!magic.IsWhole()) return nvx::Refuse(file, "mask download block: cut short");
  if (nvx::LoadLittle<std::uint32_t>(magic.Data()) != WeftBlockHeader::kBodyMagic) {
    // Bodies that do not stand where they should put all before them in doubt.
    DeleteBlocks();
    return nvx::Refuse(file, "mask download block: wrong magic");
  }
  const std::uint32_t valueBytes = kind->valueCount * std::uint32_t{sizeof(std::uint32_t)};
  const nvx::StreamBlock values(file, valueBytes);
  const nvx::StreamBlock bytes(file, kind->byteCount);
  if (!values.IsWhole() || !bytes.IsWhole()) return nvx::Refuse(file, "mask download block: cut short");

  ShapeBlock(index, stored);
  nvx::LoadLittleRun(blocks_[index].Values, values.Data(), kind->valueCount);
  std::copy_n(bytes.Data(), kind->byteCount, blocks_[index].Bytes);
  return true;
}

bool CMaskDownLoadEntry::DataToBuffer() {
  if (!GetWeftDataSize()) return false;
  const bool rebuilt = nvx::RebuildBuffer(*this, nvx::BufferLength::kExact, [this](CNvxFile& file) {
    if (!nvx::WriteRecord(file, WeftHeaderRecord{header_})) return false;
    return (header_.DataCount == 0 || SaveWeftDataHeader(file) != 0) &&
           (header_.DataCount == 0 || SaveWeftData(file) != 0);
  });
  if (rebuilt) totalSize_ = GetSize();
  return rebuilt;
}

std::optional<std::uint64_t> CMaskDownLoadEntry::GetWeftDataSize() {
  if (header_.DataCount > blocks_.size()) return std::nullopt;
  const auto end = blocks_.begin() + header_.DataCount;
  if (!std::all_of(blocks_.begin(), end, IsSound)) return std::nullopt;
  std::uint64_t size = 0;
  for (auto block = blocks_.begin(); block != end; ++block) size += BodySize(block->ValueCount, block->ByteCount);
  return size;
}

std::uint32_t CMaskDownLoadEntry::SaveWeftDataHeader(CNvxFile& file) {
  if (!GetWeftDataSize()) return 0;
  std::uint32_t written = 0;
  for (std::uint32_t i = 0; i < header_.DataCount; ++i) {
    const tagWeftDatas& block = blocks_[i];
    WeftBlockHeader header;
    header.blockType = block.BlockType;
    header.length = static_cast<std::uint32_t>(BodySize(block.ValueCount, block.ByteCount));
    header.valueCount = block.ValueCount;
    header.byteCount = block.ByteCount;
    if (!nvx::WriteRecord(file, header)) return 0;
    written += nvx::kRecordSize<WeftBlockHeader>;
  }
  return written;
}

std::uint32_t CMaskDownLoadEntry::SaveWeftData(CNvxFile& file) {
  const std::optional<std::uint64_t> size = GetWeftDataSize();
  if (!size) return 0;
  for (std::uint32_t i = 0; i < header_.DataCount; ++i) {
    if (!WriteBody(file, blocks_[i])) return 0;
  }
  return static_cast<std::uint32_t>(*size);
}

CMaskDownloadIncludePatternEntry::CMaskDownloadIncludePatternEntry()
    : CMaskDownLoadEntry(kMaskDownloadIncludePattern, kFormatMaskDownloadIncludePattern, false) {
  const BlockKind& kind = *KindOf(kIncludePatternType);
  SetHeader({kind.versionMajor, kind.versionMinor, 1, {}});
}

CMaskDownloadIncludePatternEntry::~CMaskDownloadIncludePatternEntry() = default;

CDataObject* CMaskDownloadIncludePatternEntry::GetFormatData() { return nullptr; }
bool CMaskDownloadIncludePatternEntry::DoImport(CProfileDataEntry*) { return false; }

bool CMaskDownloadIncludePatternEntry::LoadWeftData(CNvxFile& file) {
  const std::vector<WeftBlockHeader>& headers = GetLoadedBlockHeaders();
  if (headers.size() != 1) return nvx::Refuse(file, "mask download with patterns: data count is not 1");
  if (headers.front().blockType != kIncludePatternType)
    return nvx::Refuse(file, "mask download with patterns: block type is not 5");
  if (!nvx::ReadMagic(file, WeftBlockHeader::kBodyMagic)) return nvx::Refuse(file, "mask download block: wrong magic");
  parameters_.DeleteContents();
  patterns_.DeleteContents();
  return CMaskParameterFile().LoadFile(file, &parameters_) && CMaskPatternFile().LoadFile(file, &patterns_);
}

bool CMaskDownloadIncludePatternEntry::WriteLists(CNvxFile& file) {
  return nvx::WriteMagic(file, WeftBlockHeader::kBodyMagic) && CMaskParameterFile().SaveFile(file, &parameters_) &&
         CMaskPatternFile().SaveFile(file, &patterns_);
}

std::optional<std::uint64_t> CMaskDownloadIncludePatternEntry::GetWeftDataSize() {
  if (GetDataCount() != 1 || !CMaskParameterFile::CanSave(parameters_)) return std::nullopt;
  const auto size = nvx::SizeOf([this](CNvxFile& file) { return WriteLists(file); });
  return size && *size <= UINT32_MAX ? size : std::nullopt;
}

std::uint32_t CMaskDownloadIncludePatternEntry::SaveWeftDataHeader(CNvxFile& file) {
  const std::optional<std::uint64_t> size = GetWeftDataSize();
  if (!size) return 0;
  const BlockKind& kind = *KindOf(kIncludePatternType);
  WeftBlockHeader header;
  header.blockType = kIncludePatternType;
  header.length = static_cast<std::uint32_t>(*size);
  header.valueCount = kind.valueCount;
  header.byteCount = kind.byteCount;
  return nvx::WriteRecord(file, header) ? nvx::kRecordSize<WeftBlockHeader> : 0;
}

std::uint32_t CMaskDownloadIncludePatternEntry::SaveWeftData(CNvxFile& file) {
  const std::optional<std::uint64_t> size = GetWeftDataSize();
  return size && WriteLists(file) ? static_cast<std::uint32_t>(*size) : 0;
}
