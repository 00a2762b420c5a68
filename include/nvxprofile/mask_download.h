// The entries of a profile that carry print masks. The forms stand in docs/formats/mask_download.md.
#pragma once

#include <nvxprofile/export.h>
#include <nvxprofile/mask.h>
#include <nvxprofile/profile_entry.h>

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace nvx {
struct WeftBlockHeader;
}

// The header of a stream of data blocks.
struct tagWeftHeader {
  std::uint32_t VersionMajor = 0;
  std::uint32_t VersionMinor = 0;
  std::uint32_t DataCount = 0;  // blocks
  std::uint32_t Reserved[2] = {};
};

// One data block. Its arrays belong to the entry that it is part of, come from new[], and are null where their count
// is 0.
struct tagWeftDatas {
  std::uint32_t BlockType = 0;
  std::uint32_t* Values = nullptr;
  std::uint8_t* Bytes = nullptr;
  std::uint32_t ValueCount = 0;
  std::uint32_t ByteCount = 0;
};

// Data blocks of a few fixed types: the type alone, and no stored count, says how many values and bytes a block has.
//
//   type   values   bytes   version   carries
//      1       16       0       1.0
//      2        1       0       1.0
//      3        1       0       1.0   mask parameter
//      4        3       0       1.1   printer mask parameters
//      5        0       2       2.0   the block of CMaskDownloadIncludePatternEntry
//      6        0     164       3.0   output information
class NVX_EXPORT CMaskDownLoadEntry : public CProfileDataEntry {
 public:
  CMaskDownLoadEntry();
  ~CMaskDownLoadEntry() override;

  // Copies the values of the source's blocks of types 3, 4 and 6 into this entry's, where both have one; the source's
  // buffer is parsed before. True even if nothing was copied; false if the source is no CMaskDownLoadEntry, and if the
  // buffer of this entry is unread or was read in part.
  bool DoImport(CProfileDataEntry* source) override;

  // False for an empty buffer and for one too short for the header, with the entry as it was. False for block headers
  // that the stream does not hold and for a wrong magic of one: the blocks stay as they were. False for a body that is
  // cut short or of a type above 6: the blocks before it are there; and for a wrong magic of a body: there are no
  // blocks. The header is the stream's in all these cases. A block type of 0 loads as type 3. The entry's version is
  // afterwards that of its last block's type.
  bool BufferToData() override;

  // False, with the buffer as it was, for what could not be read back: a data count above the number of blocks, or a
  // block whose counts are not those of its type; and for a buffer that is unread or was read in part.
  bool DataToBuffer() override;

  // Back to an empty header with `dataCount` blocks; SetWeftDataParameter(index, type) then gives each its type.
  void Initialize(std::uint32_t dataCount = 1);

  // Gives a block its type, new zero-filled arrays in the place of the present ones, and the entry the version of that
  // type. Type 0 stands for 3, and an index without a block for 0. A type above 6 changes nothing, and so does a call
  // on an entry without blocks.
  void SetWeftDataParameter(std::uint32_t index, std::uint32_t type);

  // First block of that type, null if there is none. It stays the entry's and is valid until the next Initialize or
  // BufferToData; its arrays also only until its next SetWeftDataParameter.
  tagWeftDatas* GetWeftData(std::uint32_t type);
  const tagWeftDatas* GetWeftData(std::uint32_t type) const;

  // All blocks, in the order of the stream; valid as long as GetWeftData's result.
  std::span<tagWeftDatas> GetWeftBlocks() {
    OpenPayload();
    return blocks_;
  }
  std::span<const tagWeftDatas> GetWeftBlocks() const { return blocks_; }

  // These stay the entry's. The total size is in bytes and set by DataToBuffer.
  tagWeftHeader* GetWeftHeader() {
    OpenPayload();
    return &header_;
  }
  const tagWeftHeader* GetWeftHeader() const { return &header_; }
  std::uint32_t* GetWeftDataCount() { return &GetWeftHeader()->DataCount; }
  std::uint32_t* GetWeftTotalSize() { return &totalSize_; }

  // Type of the first block as the last load read it, valid until the next load; null if that load read no block header
  // and before any load.
  std::uint32_t* GetWeftUsedType();
  const std::uint32_t* GetWeftUsedType() const;

  // True for versions below 4.1.
  bool IsSuportVersion(const tagWeftHeader* header) const;

 protected:
  CMaskDownLoadEntry(UsedType usedType, FormatType formatType, bool display);

  // Parts of the stream behind its header.
  virtual bool LoadWeftDataHeader(CNvxFile& file);
  virtual bool LoadWeftData(CNvxFile& file);
  // Bytes written to the stream; 0 if there is nothing to write or it cannot be written.
  virtual std::uint32_t SaveWeftDataHeader(CNvxFile& file);
  virtual std::uint32_t SaveWeftData(CNvxFile& file);

  // Bytes that SaveWeftData writes; nothing if the form cannot carry what there is.
  virtual std::optional<std::uint64_t> GetWeftDataSize();

  // For the subclasses: the header, and the block headers as they were read.
  std::uint32_t GetDataCount() const { return header_.DataCount; }
  void SetHeader(const tagWeftHeader& header) { header_ = header; }
  const std::vector<nvx::WeftBlockHeader>& GetLoadedBlockHeaders() const { return blockHeaders_; }

 private:
  void DeleteBlocks();
  bool LoadBlock(CNvxFile& file, std::uint32_t index);
  void ShapeBlock(std::uint32_t index, std::uint32_t type);

  tagWeftHeader header_;
  std::vector<tagWeftDatas> blocks_;
  std::vector<nvx::WeftBlockHeader> blockHeaders_;  // as the last load read them
  std::uint32_t totalSize_ = 0;
};

// The mask parameter list and the mask pattern table in one block. Usable at once after construction, with both empty.
class NVX_EXPORT CMaskDownloadIncludePatternEntry : public CMaskDownLoadEntry {
 public:
  CMaskDownloadIncludePatternEntry();
  ~CMaskDownloadIncludePatternEntry() override;

  CDataObject* GetFormatData() override;              // null
  bool DoImport(CProfileDataEntry* source) override;  // false; imports nothing

  // Both stay the entry's. BufferToData fills them anew. It gives false unless the stream holds exactly one block, of
  // type 5, and where CMaskParameterFile or CMaskPatternFile does; DataToBuffer gives false where CMaskParameterFile
  // does and for a data count other than 1.
  CMaskParameterData* GetMaskParameterData() {
    OpenPayload();
    return &parameters_;
  }
  CMaskPatternData* GetMaskPatternData() {
    OpenPayload();
    return &patterns_;
  }
  const CMaskParameterData* GetMaskParameterData() const { return &parameters_; }
  const CMaskPatternData* GetMaskPatternData() const { return &patterns_; }

 protected:
  bool LoadWeftData(CNvxFile& file) override;
  std::uint32_t SaveWeftDataHeader(CNvxFile& file) override;
  std::uint32_t SaveWeftData(CNvxFile& file) override;
  std::optional<std::uint64_t> GetWeftDataSize() override;

 private:
  // The body of the one block.
  bool WriteLists(CNvxFile& file);

  CMaskParameterData parameters_;
  CMaskPatternData patterns_;
};
