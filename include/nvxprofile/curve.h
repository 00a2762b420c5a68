// Curves: one table of samples for one ink, sets of them, and their binary form.
#pragma once

#include <nvxprofile/cursor_list.h>
#include <nvxprofile/data_object.h>
#include <nvxprofile/export.h>
#include <nvxprofile/file.h>

#include <cstdint>
#include <vector>

namespace nvx {
class CurveSetRefill;
}

// One curve. The class holds what belongs to every curve; the samples are held by the two classes below, which say what
// the virtual operations do. Here they hold nothing: null, 0 or false.
//
// DataType tells how the samples are to be read and follows the class on construction, but is a value of its own: a
// curve of 8-bit samples with DataType 2 holds 16-bit samples as raw bytes, low byte first.
class NVX_EXPORT CCurveDataEntry : public CDataEntryObject {
 public:
  // Values of DataType.
  enum typeData : std::uint32_t {
    kSamples8 = 1,
    kSamples16 = 2,
  };

  // Bytes of an ink name in memory, the terminator included.
  static constexpr std::uint32_t kInkNameLength = 256;

  // A new curve without samples, or null for a type other than 1 and 2. The caller owns it, until it is given to a set
  // that owns its curves.
  static CCurveDataEntry* CreateCurveDataEntry(typeData type);

  CCurveDataEntry() { inkName_[0] = 0; }
  CCurveDataEntry(const CCurveDataEntry&) = delete;
  CCurveDataEntry& operator=(const CCurveDataEntry&) = delete;
  ~CCurveDataEntry() override;

  // Destroys this object.
  virtual void Delete();

  // The value cut to the greatest sample and truncated to a whole number. A negative value, and one that is no number,
  // gives 0.
  virtual std::uint32_t MaxValueChk(float value);

  // The samples, which stay the curve's; valid until the number of samples changes. May be null for a curve without.
  virtual void* GetRefBuffer();

  // Bytes of the samples.
  virtual std::uint32_t GetSize();

  // Gives the curve as many zero samples as `size` bytes hold whole, and returns them. The samples before are lost.
  virtual void* GetBuffer(std::uint32_t size);

  // Takes all samples out.
  virtual void DeleteAllElement();

  // Number of samples.
  virtual std::uint32_t GetCount();

  // The greatest sample.
  virtual float GetMaxBitValue() = 0;

  // Appends the low bits of the value and returns the new number of samples.
  virtual std::uint32_t Add(std::uint32_t value);

  // False, with nothing stored, for an index at or beyond the number of samples. SetAt stores the low bits.
  virtual bool GetAt(std::uint32_t index, std::uint32_t& value);
  virtual bool SetAt(std::uint32_t index, std::uint32_t value);

  // Replaces the samples, Max and Min of the target by those of this curve, in the sample width of the target's class:
  //
  //   from 16 to 16 bits and 8 to 8 bits   as they are
  //   from 8 to 16 bits                    samples, Max and Min times 257, so that 255 becomes 65535
  //   from 8 bits with DataType 2          two bytes make a sample, Max and Min as they are; an odd last byte is left
  //     to 16 bits                         out, and Max and Min of the target then stay
  //   from 16 to 8 bits                    nothing happens
  //
  // A null target is ignored.
  virtual void CopyData(CCurveDataEntry* target);

  // Copies the attributes and calls CopyData. The target keeps its DataType; its samples are gone even where CopyData
  // does nothing. A copy onto itself changes nothing.
  void Copy(CCurveDataEntry& target);

  std::uint32_t GetDataType() const { return dataType_; }
  void SetDataType(std::uint32_t dataType) { dataType_ = dataType; }
  std::uint32_t GetDisplayRGB() const { return displayRgb_; }
  void SetDisplayRGB(std::uint32_t displayRgb) { displayRgb_ = displayRgb; }
  // The second key of a curve beside its ink.
  std::uint32_t GetExtendInfo() const { return extendInfo_; }
  void SetExtendInfo(std::uint32_t extendInfo) { extendInfo_ = extendInfo; }
  // The ink colour code: 32 bits are kept and copied, but the getter gives the low 8 bits only.
  std::uint32_t GetInkID() const { return inkId_ & 0xFFu; }
  void SetInkID(std::uint32_t inkId) { inkId_ = inkId; }
  std::uint32_t GetSlotNo() const { return slotNo_; }
  void SetSlotNo(std::uint32_t slotNo) { slotNo_ = slotNo; }
  std::uint32_t GetMax() const { return max_; }
  void SetMax(std::uint32_t max) { max_ = max; }
  std::uint32_t GetMin() const { return min_; }
  void SetMin(std::uint32_t min) { min_ = min; }

  // Cut to 255 bytes in memory, and to 91 bytes where the curve is saved. Null counts as empty.
  const char* GetInkName() const { return inkName_; }
  void SetInkName(const char* name);

 protected:
  explicit CCurveDataEntry(typeData type) : dataType_(type) { inkName_[0] = 0; }

 private:
  friend class nvx::CurveSetRefill;

  char inkName_[kInkNameLength];  // nobody's concern behind its terminator: histories have thousands of curves
  std::uint32_t max_ = 0;
  std::uint32_t min_ = 0;
  std::uint32_t inkId_ = 0;
  std::uint32_t slotNo_ = 0;
  std::uint32_t displayRgb_ = 0;
  std::uint32_t extendInfo_ = 0;
  std::uint32_t dataType_ = 0;
};

// A curve of unsigned 8-bit samples.
class NVX_EXPORT CCurveDataEntry8 : public CCurveDataEntry {
 public:
  CCurveDataEntry8() : CCurveDataEntry(kSamples8) {}
  ~CCurveDataEntry8() override;

  void* GetRefBuffer() override;
  std::uint32_t GetSize() override;
  void* GetBuffer(std::uint32_t size) override;
  void DeleteAllElement() override;
  std::uint32_t GetCount() override;
  float GetMaxBitValue() override;
  std::uint32_t Add(std::uint32_t value) override;
  bool GetAt(std::uint32_t index, std::uint32_t& value) override;
  bool SetAt(std::uint32_t index, std::uint32_t value) override;
  void CopyData(CCurveDataEntry* target) override;

 protected:
  // The two ways of CopyData to a curve of 16-bit samples; false for a target of another class, and the second one for
  // an odd number of bytes.
  bool CopyDataTo16BitCurve(CCurveDataEntry* target);
  bool CopyData16BitTo16BitCurve(CCurveDataEntry* target);

 private:
  std::vector<std::uint8_t> samples_;
};

// A curve of unsigned 16-bit samples. Sizes are in bytes; GetBuffer rounds an odd size down.
class NVX_EXPORT CCurveDataEntry16 : public CCurveDataEntry {
 public:
  CCurveDataEntry16() : CCurveDataEntry(kSamples16) {}
  ~CCurveDataEntry16() override;

  void* GetRefBuffer() override;
  std::uint32_t GetSize() override;
  void* GetBuffer(std::uint32_t size) override;
  void DeleteAllElement() override;
  std::uint32_t GetCount() override;
  float GetMaxBitValue() override;
  std::uint32_t Add(std::uint32_t value) override;
  bool GetAt(std::uint32_t index, std::uint32_t& value) override;
  bool SetAt(std::uint32_t index, std::uint32_t value) override;
  void CopyData(CCurveDataEntry* target) override;

 private:
  std::vector<std::uint16_t> samples_;
};

// An ordered set of curves with one cursor. With auto-delete, which it starts with, it owns its curves; without, they
// are borrowed.
class NVX_EXPORT CCurveData : public CDataObject {
 public:
  CCurveData() = default;
  CCurveData(const CCurveData&) = delete;
  CCurveData& operator=(const CCurveData&) = delete;

  // Empties the set, and destroys the curves if auto-delete is on.
  void DeleteContents() override;

  // The first curve of that ink or slot, null if there is none. An ink above 255 finds nothing. The Finds move the
  // cursor behind what they find.
  virtual CCurveDataEntry* FindInkIDEntry(std::uint32_t inkId);
  virtual CCurveDataEntry* FindSlotNoEntry(std::uint32_t slotNo);

  // Makes the target a deep copy of this set: each new curve has the class that belongs to the DataType of the old one,
  // so that 16-bit samples held as raw bytes come out as samples. The first form leaves out the curves whose ink is one
  // of the `skipCount` values. A curve of a DataType without a class is left out as well. A copy onto itself changes
  // nothing.
  virtual void Copy(CCurveData& target, const std::uint32_t* skipList, int skipCount);
  virtual void Copy(CCurveData& target);

  virtual ~CCurveData();

  // Appends; the curve data size type becomes its DataType. True if the set holds the curve from then on: it owns it
  // with auto-delete, and refers to it without. False for null, which changes nothing. Where the heap is exhausted on
  // the way the curve is destroyed, unless it is only borrowed.
  bool AddTail(CCurveDataEntry* entry);
  int GetCount() const { return static_cast<int>(curves_.Count()); }

  // A walk: GetHeadPosition says whether there is a first curve, GetNext gives the curve at the cursor and says whether
  // another follows. A Find, an AddTail or a copy into this set ends it.
  bool GetHeadPosition() { return curves_.Head(); }
  CCurveDataEntry* GetNext(bool& more) { return curves_.Next(more); }
  // The same curves for walks and searches that leave the cursor alone.
  const nvx::CursorList<CCurveDataEntry>& Curves() const { return curves_; }

  // As FindInkIDEntry, with ExtendInfo equal as well.
  CCurveDataEntry* FindInkIDEntryonSize(std::uint32_t inkId, std::uint32_t extendInfo);

  // The DataType of the curve added last, or what was set since; 0 at first.
  std::uint32_t GetCurveDataSizeType() const { return dataSizeType_; }
  void SetCurveDataSizeType(std::uint32_t type) { dataSizeType_ = type; }

 private:
  friend class nvx::CurveSetRefill;

  nvx::CursorList<CCurveDataEntry> curves_;
  std::uint32_t dataSizeType_ = 0;
};

// The header of a curve set in its file.
struct tagCurveFileHeader {
  static constexpr std::uint32_t kSignature = 0x43434620;
  static constexpr std::uint32_t kVersion = 0x00010000;

  std::uint32_t Signature = kSignature;
  std::uint32_t HeaderSize = 32;
  std::uint32_t Version = kVersion;
  std::uint32_t UsedType = 0;
  std::uint32_t EntryCount = 0;

  // What the record is made of, for readers and writers.
  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec);
};

// The binary form of a curve set, docs/formats/curve_set.md. An object is made for one load or one save.
class NVX_EXPORT CCurveFile : public CDataFile {
 public:
  // The record of one curve.
  struct tagCurveEntryHeader {
    static constexpr std::uint32_t kSignature = 0x43454849;

    std::uint32_t Signature = kSignature;
    std::uint32_t HeaderSize = 132;
    std::uint32_t InkID = 0;
    std::uint32_t SlotNo = 0;
    std::uint32_t DisplayRGB = 0;
    std::uint32_t ExtendInfo = 0;
    std::uint32_t Max = 0;
    std::uint32_t Min = 0;
    std::uint32_t DataType = 0;
    std::uint32_t DataSize = 0;  // bytes
    char InkName[92] = {};       // always terminated

    // What the record is made of, for readers and writers.
    template <class Self, class Codec>
    static constexpr void Describe(Self& record, Codec& codec);
  };

  // A new object that has read the header of the form at the start of the stream, or null if there is none. The caller
  // destroys it.
  static CCurveFile* CreateCurveFile(CNvxFile& file);

  CCurveFile() = default;
  CCurveFile(const CCurveFile&) = delete;
  CCurveFile& operator=(const CCurveFile&) = delete;
  virtual ~CCurveFile();

  // Reads the form at the start of the stream and appends its curves to the set, whose used type becomes that of the
  // form. 16-bit samples in an odd number of bytes keep all of them, in a CCurveDataEntry8 with DataType 2. False for a
  // header, record or data block that breaks a rule of the form, a DataType other than 1 and 2, and for what the stream
  // does not hold whole; the set then holds the curves before. False for a null set.
  virtual bool LoadFile(CNvxFile& file, CCurveData* data);

  // Reads the header alone; false for a wrong signature or version.
  virtual bool LoadHeader(CNvxFile& file);

  // Writes the set where the stream stands. False if the stream takes less; false with nothing written for a null
  // set and for a curve of a DataType other than 1 and 2, which would not load.
  virtual bool SaveFile(CNvxFile& file, CCurveData* data);

  // The same on a path; false if it cannot be opened. A save writes beside the target and replaces it at the end: after
  // a false the old file is as it was.
  bool LoadFile(const char16_t* path, CCurveData* data);
  bool SaveFile(const char16_t* path, CCurveData* data);

  // Bytes of the form that was loaded, by its own sizes; 0 before LoadHeader.
  std::int32_t GetCurveDataSize() const;

  // Forgets the records that were read.
  void DeleteEntryHeaderArray();

 protected:
  // Reads all records; on false there are none.
  bool LoadEntryHeader(CNvxFile& file);

  // Between a curve and its record, samples apart; signature and header size of the record are left alone. A longer
  // name is cut.
  void EntryToTag(CCurveDataEntry* entry, tagCurveEntryHeader* header);
  void TagToEntry(const tagCurveEntryHeader* header, CCurveDataEntry* entry);

 private:
  bool headerRead_ = false;
  tagCurveFileHeader header_;
  std::vector<tagCurveEntryHeader> entryHeaders_;
};
