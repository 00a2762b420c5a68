// The device settings that belong to a medium: heaters, feed, dot, wave, mask, blower and UV values, in small blocks of
// numbers. The form stands in docs/formats/media_property.md.
#pragma once

#include <nvxprofile/cursor_list.h>
#include <nvxprofile/data_object.h>
#include <nvxprofile/export.h>
#include <nvxprofile/file.h>
#include <nvxprofile/profile_entry.h>

#include <array>
#include <cstdint>

namespace nvx {

// What a block of a media property set stands for.
enum MediaBlock : std::uint32_t {
  kMediaCorrect = 1,
  kMediaHeater = 2,
  kMediaWave = 3,
  kMediaFeedSpeed = 4,
  kMediaWaveForm = 5,
  kMediaDotSize = 6,
  kMediaPassDensity = 7,
  kMediaPassMask = 8,
  kMediaUvMode = 9,
  kMediaTopBlower = 10,
  kMediaFeedDirection = 11,
};

}  // namespace nvx

// One block: up to 16 signed numbers of one kind.
class NVX_EXPORT CMediaPropertyDataEntry : public CDataEntryObject {
 public:
  static constexpr std::int32_t kParameterRoom = 16;

  // A new block after SetUsedType; the caller owns it until it is added to a set.
  static CMediaPropertyDataEntry* CreateMediaPropertyDataEntry(std::uint32_t usedType, std::uint32_t parameterCount);

  CMediaPropertyDataEntry() = default;
  CMediaPropertyDataEntry(const CMediaPropertyDataEntry&) = delete;
  CMediaPropertyDataEntry& operator=(const CMediaPropertyDataEntry&) = delete;
  ~CMediaPropertyDataEntry() override;

  // 0 until it is set.
  std::uint32_t GetUsedType() const { return usedType_; }

  // Each type has its number of parameters; types 2, 6 and 9 take `parameterCount` instead if it is not 0, up to 16. A
  // type that is not in nvx::MediaBlock has none. The parameters themselves stay.
  void SetUsedType(std::uint32_t usedType, std::uint32_t parameterCount);

  // Parameters in use, 0 to 16.
  std::int32_t GetParameterMax() const { return parameterMax_; }
  // 0 for an index below 0 or above 15; below that also what is not in use.
  std::int32_t GetParameter(std::int32_t index) const;
  // False, and nothing stored, for an index that is not in use.
  bool SetParameter(std::int32_t index, std::int32_t value);
  // All 16 parameters, as a save writes them; valid as long as the block.
  std::int32_t* GetRefBuffer() { return parameters_.data(); }

 private:
  std::uint32_t usedType_ = 0;
  std::int32_t parameterMax_ = 0;
  std::array<std::int32_t, kParameterRoom> parameters_{};
};

// The blocks in order, with one cursor that GetHeadPosition, GetNext and Find share. Owns them, whatever auto-delete
// says.
class NVX_EXPORT CMediaPropertyData : public CDataObject {
 public:
  CMediaPropertyData() = default;
  CMediaPropertyData(const CMediaPropertyData&) = delete;
  CMediaPropertyData& operator=(const CMediaPropertyData&) = delete;
  virtual ~CMediaPropertyData();

  // Takes the block over, also where the heap is exhausted on the way. False for null, which changes nothing.
  bool AddTail(CMediaPropertyDataEntry* entry);
  // Destroys all blocks.
  void DeleteMediaProperty();
  // The first block of that type, null if there is none; moves the cursor.
  CMediaPropertyDataEntry* Find(std::uint32_t usedType);
  // Puts the cursor on the first block; false if there is none.
  bool GetHeadPosition() { return entries_.Head(); }
  // The block at the cursor; `more` says whether another follows. Null at the end.
  CMediaPropertyDataEntry* GetNext(bool& more) { return entries_.Next(more); }
  int GetPropertyCount() const { return static_cast<int>(entries_.Count()); }
  // The same blocks for walks and searches that leave the cursor alone.
  const nvx::CursorList<CMediaPropertyDataEntry>& Entries() const { return entries_; }

 private:
  nvx::CursorList<CMediaPropertyDataEntry> entries_;
};

// Reads or writes a set; made for one load or one save.
class NVX_EXPORT CMediaPropertyFile : public CDataFile {
 public:
  // Reads the header from the start of the stream; false unless signature and version are right.
  virtual bool LoadHeader(CNvxFile& file);
  // Adds the stored blocks to the set, which is empty before. False for a null set. On false the set keeps what was
  // read so far. A parameter count above 16 counts as 16; parameters that are not in use are not restored.
  virtual bool LoadFile(CNvxFile& file, CMediaPropertyData* data);
  // Writes 16 bytes and 88 for each block. False for a null set, and if the stream refuses the bytes.
  virtual bool SaveFile(CNvxFile& file, CMediaPropertyData* data);
  virtual ~CMediaPropertyFile();

 private:
  std::uint32_t entryCount_ = 0;
  bool headerRead_ = false;
};

// Entry type 16. The length of its buffer after DataToBuffer is a multiple of 1024 bytes.
class NVX_EXPORT CMediaPropertyEntry : public CProfileDataEntry {
 public:
  CMediaPropertyEntry();
  ~CMediaPropertyEntry() override;

  CDataObject* GetFormatData() override;
  bool BufferToData() override;
  bool DataToBuffer() override;

  // The set, which lives as long as the entry, open to changes and for reading alone.
  CMediaPropertyData* GetMediaPropertyData() {
    OpenPayload();
    return &data_;
  }
  const CMediaPropertyData* GetMediaPropertyData() const { return &data_; }

 private:
  CMediaPropertyData data_;
};
