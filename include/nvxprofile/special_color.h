// Special colour information: what a profile recommends for special colours under a printing condition, and their
// variable dot (VD) curves. docs/formats/special_color.md draws the tables and their form in an entry's buffer.
#pragma once

#include <nvxprofile/cursor_list.h>
#include <nvxprofile/curve.h>
#include <nvxprofile/data_object.h>
#include <nvxprofile/export.h>
#include <nvxprofile/profile_entry.h>
#include <nvxprofile/word_arrays.h>

#include <cstdint>

class CNvxFile;

// A table of patterns (array 0), a table of recommendations with one record for each pattern (array 1), and a list of
// curve sets. Lengths, indices and counts are in words.
class NVX_EXPORT CSpecialColorInfoDataEntry : public CDataEntryObject {
 public:
  // A new object of that shape; null when memory runs out. The caller owns it, until it is given to a list.
  static CSpecialColorInfoDataEntry* CreateSpecialColorInfoDataEntry(std::uint32_t usedType,
                                                                     const std::uint32_t* sizes);

  CSpecialColorInfoDataEntry() : arrays_(2) {}
  CSpecialColorInfoDataEntry(const CSpecialColorInfoDataEntry&) = delete;
  CSpecialColorInfoDataEntry& operator=(const CSpecialColorInfoDataEntry&) = delete;
  ~CSpecialColorInfoDataEntry() override;

  // Gives the two arrays their lengths: words already there are kept, new ones are 0. Destroys the VD curves. Null
  // sizes count as lengths of 0.
  virtual void SetUsedType(std::uint32_t usedType, const std::uint32_t* sizes);

  // 0 for a word that is not there.
  virtual std::int32_t GetParameter(std::int32_t index, std::int32_t arrayIndex);
  // False, with nothing stored, for a word that is not there.
  virtual bool SetParameter(std::int32_t index, std::int32_t value, std::int32_t arrayIndex);

  // Number of patterns.
  virtual std::int32_t GetPatternCount();
  virtual void SetPatternCount(std::int32_t count);

  // The first pattern that passes both conditions and the colours, -1 if none does. In the table, -1 passes for every
  // value, and in condition 1 a multiple of 100 stands for the values of its hundred, by division that truncates
  // towards zero. The caller's colours may come in any order; each takes a slot, ascending, with 0 for the slots that
  // are left and for the colours of value 0. All slots of the table must pass.
  //
  // A list of more colours than the table has slots: colours of value 0 too many play no part, any other colour too
  // many means that no pattern passes. A table with no slots says nothing about colours, and every list passes. A
  // negative number of slots, or more than its record has room for, gives -1. A list below 1 colour, or null, is empty.
  virtual std::int32_t SeekPatternIndexByCondition(std::int32_t condition1, std::int32_t condition2,
                                                   std::int32_t colorCount, const std::int32_t* colors);

  // What the record of a pattern recommends; 0 for a pattern that is not there.
  virtual std::int32_t SeekPatternRecommendLevel(std::int32_t pattern);
  virtual std::int32_t SeekPatternRecommendDensity(std::int32_t pattern);
  // 1 for the first set of the VD curve list; below 1 for no curve.
  virtual std::int32_t SeekPatternVDCurveIndex(std::int32_t pattern);

  // Destroys the VD curves; the destructor runs it.
  virtual void DeleteContentsVD();

  // Takes the curve set over, also where the heap is exhausted on the way; false for null, which changes nothing. Words
  // 2 and 3 of array 0 stay as they are: whoever fills the object keeps them true.
  bool AddTailVD(CCurveData* curves);
  int GetCountVD() const { return static_cast<int>(curves_.Count()); }
  bool GetHeadPositionVD() { return curves_.Head(); }
  CCurveData* GetNextVD(bool& more) { return curves_.Next(more); }

  // Lengths of the two arrays. A copy for the caller: writing there changes no array.
  std::int32_t* GetParameterMax() { return arrays_.Lengths(); }
  std::int32_t GetParamsCount() const { return static_cast<std::int32_t>(arrays_.Count()); }
  // The first word of an array, valid until the arrays change; null for an empty array and for one that is not there.
  std::int32_t* GetRefBuffer(std::int32_t arrayIndex) { return arrays_.First(arrayIndex); }
  std::uint32_t GetUsedType() const { return usedType_; }

  // The arrays and the curve sets themselves.
  nvx::WordArrays& Arrays() { return arrays_; }
  const nvx::WordArrays& Arrays() const { return arrays_; }
  const nvx::CursorList<CCurveData>& CurvesVD() const { return curves_; }

 private:
  std::uint32_t usedType_ = 0;
  nvx::WordArrays arrays_;
  std::int32_t patternCount_ = 0;
  nvx::CursorList<CCurveData> curves_;
};

// The special colour tables of a profile, in order. Always owns them, whatever auto-delete says.
class NVX_EXPORT CSpecialColorInfoData : public CDataObject {
 public:
  CSpecialColorInfoData() = default;
  CSpecialColorInfoData(const CSpecialColorInfoData&) = delete;
  CSpecialColorInfoData& operator=(const CSpecialColorInfoData&) = delete;
  virtual ~CSpecialColorInfoData();

  // Takes the table over, also where the heap is exhausted on the way. False for null, which changes nothing.
  bool AddTail(CSpecialColorInfoDataEntry* entry);

  // First table of that used type, null if none; moves the cursor.
  CSpecialColorInfoDataEntry* Find(std::uint32_t usedType);
  bool GetHeadPosition() { return entries_.Head(); }
  CSpecialColorInfoDataEntry* GetNext(bool& more) { return entries_.Next(more); }
  int GetPropertyCount() const { return static_cast<int>(entries_.Count()); }
  void DeleteSpecialColorInfo();

  std::uint32_t GetProfileColorType() const { return profileColorType_; }
  void SetProfileColorType(std::uint32_t type) { profileColorType_ = type; }

  const nvx::CursorList<CSpecialColorInfoDataEntry>& Entries() const { return entries_; }

 protected:
  void DeleteContents() override;

 private:
  nvx::CursorList<CSpecialColorInfoDataEntry> entries_;
  std::uint32_t profileColorType_ = 0;
};

// The entry of type 30.
class NVX_EXPORT CSpecialColorInfoEntry : public CProfileDataEntry {
 public:
  CSpecialColorInfoEntry() : CProfileDataEntry(kSpecialColorInfo, kFormatKeyed, true) {}

  CDataObject* GetFormatData() override;

  // Takes over the tables of another CSpecialColorInfoEntry by way of their form; false for another class, for one
  // whose buffer is unread or was read in part, and for tables that the form cannot carry, with this entry as it was.
  // Nothing is thrown: exhausted memory gives false too.
  bool DoImport(CProfileDataEntry* source) override;

  // False for an empty buffer, with the tables as they were; false with the tables that were made so far for a form
  // that breaks a rule.
  bool BufferToData() override;

  // The buffer is the form and zeros up to a multiple of 1024 bytes. False, with the buffer as it was, for tables that
  // CSpecialColorInfoFile::SaveFile refuses.
  bool DataToBuffer() override;

  // The tables, which stay the entry's, open to changes and for reading alone.
  CSpecialColorInfoData* GetSpecialColorInfoData() {
    OpenPayload();
    return &data_;
  }
  const CSpecialColorInfoData* GetSpecialColorInfoData() const { return &data_; }

 private:
  CSpecialColorInfoData data_;
};

// Reads and writes the list, docs/formats/special_color.md. One object for one load or one save.
//
// Every list that SaveFile accepts loads again as it was, whatever its length: a reader finds the block of each table
// behind those before it, by the data sizes in the records and the words of array 0 that tell of the VD curves.
class NVX_EXPORT CSpecialColorInfoFile : public CDataFile {
 public:
  // A reader that has read the header; null for a wrong one. The caller owns it.
  static CSpecialColorInfoFile* CreateSpecialColorInfoFile(CNvxFile& file);

  // Reads the header at the start of the stream; false if it is cut short or has another magic.
  virtual bool LoadHeader(CNvxFile& file);

  // Appends the tables to the list and stores the profile colour type, the latter even if the header is wrong; reads
  // the header first if that is not done. A record of a used type other than 1 makes no table and has no data block,
  // whatever data size it states. False for a form that breaks a rule: tables made before that stay in the list. A
  // table whose block has a wrong magic, or a curve set that does not load, keeps what was read until then, and the
  // others are read all the same.
  virtual bool LoadFile(CNvxFile& file, CSpecialColorInfoData* data);

  // False, with nothing written, for what the form cannot carry: a used type other than 1; a word 0 of array 0 that is
  // not the byte length of array 0, since that is where a reader learns it; words 2 and 3 of array 0 that do not agree
  // with the number and the bytes of the VD curve sets (without sets, a word 2 above 0); a set whose curves differ in
  // data size or have a DataType that the curve form cannot carry; more than 32 bits of bytes. False too for a null
  // list, and if the stream does not take the bytes.
  virtual bool SaveFile(CNvxFile& file, CSpecialColorInfoData* data);

  virtual ~CSpecialColorInfoFile();

 private:
  std::uint32_t profileColorType_ = 0;
  std::int32_t recordCount_ = 0;
  bool headerRead_ = false;
};
