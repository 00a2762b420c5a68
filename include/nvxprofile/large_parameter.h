// Large parameters: tables of 32-bit words, of which the UV lamp takes its settings. docs/formats/large_parameter.md
// draws the tables and their form in an entry's buffer.
#pragma once

#include <nvxprofile/cursor_list.h>
#include <nvxprofile/data_object.h>
#include <nvxprofile/export.h>
#include <nvxprofile/profile_entry.h>
#include <nvxprofile/word_arrays.h>

#include <cstdint>

class CNvxFile;

// One table. The generations are told apart by their used type: 1 is one fixed array that holds under all conditions,
// 2 a table of patterns (array 0) with a store of their parameters (array 1). Lengths, indices and counts are in words.
// This base answers every question with 0, false or null.
class NVX_EXPORT CLargeParameterDataEntry : public CDataEntryObject {
 public:
  // An object of the class that belongs to the used type, with its shape; null for a used type other than 1 and 2. The
  // caller owns it, until it is given to a list. `sizes` are the lengths of the arrays; used type 1 takes none.
  static CLargeParameterDataEntry* CreateLargeParameterDataEntry(std::uint32_t usedType, const std::uint32_t* sizes);

  CLargeParameterDataEntry() : CLargeParameterDataEntry(0) {}
  CLargeParameterDataEntry(const CLargeParameterDataEntry&) = delete;
  CLargeParameterDataEntry& operator=(const CLargeParameterDataEntry&) = delete;
  ~CLargeParameterDataEntry() override;

  // Gives the object its shape. Null sizes count as lengths of 0.
  virtual void SetUsedType(std::uint32_t usedType, const std::uint32_t* sizes);

  // Reshapes an object of used type 1 for the form of used type 2, and keeps its class: words stay where they are, up
  // to the new lengths, and the answers are those of used type 1 until the object is saved and loaded again.
  virtual void SetUsedTypeID001toID002(const std::uint32_t* sizes);

  // 0 for a word that is not there. Used type 1 reads array 0 whatever the array index says.
  virtual std::int32_t GetParameter(std::int32_t index, std::int32_t arrayIndex);
  // False, with nothing stored, for a word that is not there. All classes store to the array of that index.
  virtual bool SetParameter(std::int32_t index, std::int32_t value, std::int32_t arrayIndex);

  // Number of patterns. Used type 1, which has none, keeps what is set all the same.
  virtual std::int32_t GetPatternCount();
  virtual void SetPatternCount(std::int32_t count);

  // The first pattern whose four conditions pass, -1 if none does. In the table, -1 passes for every value, and in
  // condition 4 a multiple of 100 stands for the values of its hundred, by division that truncates towards zero.
  virtual std::int32_t SeekPatternIndexByCondition(std::int32_t condition1, std::int32_t condition2,
                                                   std::int32_t condition3, std::int32_t condition4);

  // What the record of a pattern says: the length of the pattern's block in array 1, never negative; the number of
  // splits; the parameter count of one split. 0 for a pattern or a split that is not there.
  virtual std::int32_t SeekPatternParamCount(std::int32_t pattern);
  virtual std::int32_t SeekPatternSplitCount(std::int32_t pattern);
  virtual std::int32_t SeekPatternSplitParamCount(std::int32_t pattern, std::int32_t split);

  // The pattern's block in array 1, behind the blocks of all patterns before it; for a pattern equal to the pattern
  // count the end of the last block. How many words may be read from there is said by SeekPatternParamCount and by the
  // end of the array. Null for what leads outside. Valid until the arrays change.
  virtual std::int32_t* GetRefBufferByPatternIndex(std::int32_t pattern);

  // Lengths of the arrays, GetParamsCount of them. A copy for the caller: writing there changes no array.
  std::int32_t* GetParameterMax() { return arrays_.Lengths(); }
  std::int32_t GetParamsCount() const { return static_cast<std::int32_t>(arrays_.Count()); }
  // The first word of an array, valid until the arrays change; null for an empty array and for one that is not there.
  std::int32_t* GetRefBuffer(std::int32_t arrayIndex) { return arrays_.First(arrayIndex); }
  std::uint32_t GetUsedType() const { return usedType_; }

  // The arrays themselves.
  nvx::WordArrays& Arrays() { return arrays_; }
  const nvx::WordArrays& Arrays() const { return arrays_; }

 protected:
  explicit CLargeParameterDataEntry(std::size_t arrayCount) : arrays_(arrayCount) {}

  std::uint32_t usedType_ = 0;
  nvx::WordArrays arrays_;
  std::int32_t patternCount_ = 0;
};

// Used type 1: two head words and two splits of 131 words each.
class NVX_EXPORT CLargeParameterID001Entry : public CLargeParameterDataEntry {
 public:
  static constexpr std::uint32_t kWordCount = 264;
  static constexpr std::int32_t kHeadWords = 2;
  static constexpr std::int32_t kSplitCount = 2;
  static constexpr std::int32_t kSplitWords = 131;

  CLargeParameterID001Entry() : CLargeParameterDataEntry(1) {}

  // The length is fixed and every word gets its default.
  void SetUsedType(std::uint32_t usedType, const std::uint32_t* sizes) override;
  void SetUsedTypeID001toID002(const std::uint32_t* sizes) override;
  std::int32_t GetParameter(std::int32_t index, std::int32_t arrayIndex) override;
  bool SetParameter(std::int32_t index, std::int32_t value, std::int32_t arrayIndex) override;
  void SetPatternCount(std::int32_t count) override;
};

// Used type 2. Word 0 of array 0 must be the byte length of array 0 when the object is saved.
class NVX_EXPORT CLargeParameterID002Entry : public CLargeParameterDataEntry {
 public:
  CLargeParameterID002Entry() : CLargeParameterDataEntry(2) {}

  void SetUsedType(std::uint32_t usedType, const std::uint32_t* sizes) override;
  std::int32_t GetParameter(std::int32_t index, std::int32_t arrayIndex) override;
  bool SetParameter(std::int32_t index, std::int32_t value, std::int32_t arrayIndex) override;
  std::int32_t GetPatternCount() override;
  void SetPatternCount(std::int32_t count) override;
  std::int32_t SeekPatternIndexByCondition(std::int32_t condition1, std::int32_t condition2, std::int32_t condition3,
                                           std::int32_t condition4) override;
  std::int32_t SeekPatternParamCount(std::int32_t pattern) override;
  std::int32_t SeekPatternSplitCount(std::int32_t pattern) override;
  std::int32_t SeekPatternSplitParamCount(std::int32_t pattern, std::int32_t split) override;
  std::int32_t* GetRefBufferByPatternIndex(std::int32_t pattern) override;
};

// The tables of a profile, in order. Always owns them, whatever auto-delete says.
class NVX_EXPORT CLargeParameterData : public CDataObject {
 public:
  CLargeParameterData() = default;
  CLargeParameterData(const CLargeParameterData&) = delete;
  CLargeParameterData& operator=(const CLargeParameterData&) = delete;
  virtual ~CLargeParameterData();

  // Takes the table over, also where the heap is exhausted on the way. False for null, which changes nothing.
  bool AddTail(CLargeParameterDataEntry* entry);

  // First table of that used type, null if none; moves the cursor.
  CLargeParameterDataEntry* Find(std::uint32_t usedType);
  bool GetHeadPosition() { return entries_.Head(); }
  CLargeParameterDataEntry* GetNext(bool& more) { return entries_.Next(more); }
  int GetPropertyCount() const { return static_cast<int>(entries_.Count()); }
  void DeleteLargeParameter();

  const nvx::CursorList<CLargeParameterDataEntry>& Entries() const { return entries_; }

 protected:
  void DeleteContents() override;

 private:
  nvx::CursorList<CLargeParameterDataEntry> entries_;
};

// The entry of type 28.
class NVX_EXPORT CLargeParameterEntry : public CProfileDataEntry {
 public:
  CLargeParameterEntry() : CProfileDataEntry(kLargeParameter, kFormatKeyed, true) {}

  CDataObject* GetFormatData() override;

  // Takes over the tables of another CLargeParameterEntry by way of their form; false for another class, for one whose
  // buffer is unread or was read in part, and for tables that the form cannot carry, with this entry as it was.
  bool DoImport(CProfileDataEntry* source) override;

  // False for an empty buffer, with the tables as they were; false with the tables that were made so far for a form
  // that breaks a rule.
  bool BufferToData() override;

  // The buffer is the form and zeros up to a multiple of 1024 bytes. False, with the buffer as it was, for tables that
  // CLargeParameterFile::SaveFile refuses.
  bool DataToBuffer() override;

  // The tables, which stay the entry's, open to changes and for reading alone.
  CLargeParameterData* GetLargeParameterData() {
    OpenPayload();
    return &data_;
  }
  const CLargeParameterData* GetLargeParameterData() const { return &data_; }

 private:
  CLargeParameterData data_;
};

// Reads and writes the list, docs/formats/large_parameter.md. One object for one load or one save.
//
// Every list that SaveFile accepts loads again as it was, whatever its order: a reader finds the block of each table
// behind those before it, since used type 1 has a fixed length and used type 2 says it in its record.
class NVX_EXPORT CLargeParameterFile : public CDataFile {
 public:
  // A reader that has read the header; null for a wrong one. The caller owns it.
  static CLargeParameterFile* CreateLargeParameterFile(CNvxFile& file);

  // Reads the header at the start of the stream; false if it is cut short or has another magic.
  virtual bool LoadHeader(CNvxFile& file);

  // Appends the tables to the list; reads the header first if that is not done. False for a form that breaks a rule:
  // tables made before that stay in the list. A table whose block has a wrong magic keeps its initial words, and the
  // others are read all the same.
  virtual bool LoadFile(CNvxFile& file, CLargeParameterData* data);

  // False, with nothing written, for what the form cannot carry: a used type other than 1 and 2; used type 1 with other
  // arrays than one of 264 words; used type 2 with other than two arrays, or with a word 0 of array 0 that is not the
  // byte length of array 0, since that is where a reader learns it; more than 32 bits of bytes. False too for a null
  // list, and if the stream does not take the bytes.
  virtual bool SaveFile(CNvxFile& file, CLargeParameterData* data);

  virtual ~CLargeParameterFile();

 private:
  std::int32_t recordCount_ = 0;
  bool headerRead_ = false;
};
