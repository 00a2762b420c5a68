// Print masks: the parameter blocks by printing condition, the pattern blocks by ID, and the serializers of both. The
// blocks themselves are opaque. The forms stand in docs/formats/mask.md.
#pragma once

#include <nvxprofile/cursor_list.h>
#include <nvxprofile/data_object.h>
#include <nvxprofile/export.h>
#include <nvxprofile/file.h>
#include <nvxprofile/shared_bytes.h>

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

// One printing condition with its parameter block and the IDs of the patterns that the block uses. Copies are deep.
class NVX_EXPORT CMaskParameterDataEntry : public CDataEntryObject {
 public:
  CMaskParameterDataEntry() = default;
  CMaskParameterDataEntry(const CMaskParameterDataEntry&) = default;
  CMaskParameterDataEntry& operator=(const CMaskParameterDataEntry&) = default;
  ~CMaskParameterDataEntry() override;

  // A new empty record, which the caller owns until a list takes it; null when memory runs out.
  static CMaskParameterDataEntry* CreateEntry();

  std::uint32_t GetPass() const { return pass_; }
  void SetPass(std::uint32_t pass) { pass_ = pass; }
  std::uint32_t GetSpecialColorsetCode() const { return specialColorsetCode_; }
  void SetSpecialColorsetCode(std::uint32_t code) { specialColorsetCode_ = code; }
  std::uint32_t GetPrintMethod() const { return printMethod_; }
  void SetPrintMethod(std::uint32_t method) { printMethod_ = method; }

  // Colours stand in ascending order, whatever the order of adding. GetLeyerColor gives 0 for an index without a
  // colour.
  void AddLayerColor(std::uint32_t color);
  std::uint32_t GetLayerColorCount() const { return static_cast<std::uint32_t>(layerColors_.size()); }
  std::uint32_t GetLeyerColor(int index) const;

  // IDs stand in the order of adding; an ID may stand twice. GetUsePatternID gives 0 for an index without an ID.
  void AddUsePatternID(std::uint32_t id) { usePatternIDs_.push_back(id); }
  std::uint32_t GetUsePatternIDCount() const { return static_cast<std::uint32_t>(usePatternIDs_.size()); }
  std::uint32_t GetUsePatternID(int index) const;

  // The parameter block, which stays the entry's and is valid until it is set again or, if it was asked for through
  // a const entry, asked for writing; null when it is empty.
  std::uint8_t* GetParamDataBuffer() { return paramData_.Writable(); }
  const std::uint8_t* GetParamDataBuffer() const { return paramData_.Data(); }
  // Its size in bytes.
  std::uint32_t GetParamDataSize() const { return paramData_.Size(); }
  // Copies `size` bytes in the place of the block; null `data` empties it. The source may lie inside the block.
  void SetParamDataBuffer(const std::uint8_t* data, std::uint32_t size);
  // The same without a copy.
  void SetParamData(nvx::SharedBytes bytes) { paramData_ = std::move(bytes); }

 protected:
  // Releases the block and empties both arrays.
  void DeleteContents() override;

 private:
  std::uint32_t pass_ = 0;
  std::uint32_t specialColorsetCode_ = 0;
  std::uint32_t printMethod_ = 0;
  std::vector<std::uint32_t> layerColors_;
  std::vector<std::uint32_t> usePatternIDs_;
  nvx::SharedBytes paramData_;
};

// The printing conditions, in the order of adding: the first that fits wins. With auto-delete, on after construction,
// the list owns its entries. A copy holds copies of the entries, which it owns.
class NVX_EXPORT CMaskParameterData : public CDataObject {
 public:
  CMaskParameterData() = default;
  CMaskParameterData(const CMaskParameterData& other);
  CMaskParameterData& operator=(const CMaskParameterData& other);

  // Empties the list and, with auto-delete, destroys the entries.
  void DeleteContents() override;
  virtual ~CMaskParameterData();

  // Appends an entry. True if the list holds it from then on: it owns it with auto-delete, and refers to it without.
  // False for null, which changes nothing. Where the heap is exhausted on the way the entry is destroyed, unless it is
  // only borrowed.
  bool AddTail(CMaskParameterDataEntry* entry);

  // First entry with this pass, colourset, method and number of layer colours; null if there is none. It stays the
  // list's. The values of the colours decide nothing and are not read, so that `layerColors` may be null.
  CMaskParameterDataEntry* GetEntry(std::uint32_t pass, std::uint32_t specialColorsetCode, std::uint32_t printMethod,
                                    std::uint32_t layerColorCount, const std::uint32_t* layerColors) const;

  // Number of entries.
  int GetEntryCount() const { return static_cast<int>(entries_.Count()); }

  // Cursor: GetFirstPosition is false for an empty list; GetNextPosition says in `more` whether another entry follows,
  // and gives null behind the last.
  bool GetFirstPosition() { return entries_.Head(); }
  CMaskParameterDataEntry* GetNextPosition(bool& more) { return entries_.Next(more); }

  // The list itself, for walks that leave the cursor alone.
  const nvx::CursorList<CMaskParameterDataEntry>& Entries() const { return entries_; }

 private:
  friend class CMaskParameterFile;

  void Append(std::vector<std::unique_ptr<CMaskParameterDataEntry>> entries);

  nvx::CursorList<CMaskParameterDataEntry> entries_;
};

// One mask pattern. Copies are deep.
class NVX_EXPORT CMaskPatternDataEntry : public CDataEntryObject {
 public:
  CMaskPatternDataEntry() = default;
  CMaskPatternDataEntry(const CMaskPatternDataEntry&) = default;
  CMaskPatternDataEntry& operator=(const CMaskPatternDataEntry&) = default;
  ~CMaskPatternDataEntry() override;

  // A new empty pattern, which the caller owns until a table takes it; null when memory runs out.
  static CMaskPatternDataEntry* CreateEntry();

  // The ID is set before a table takes the pattern and stays as it is while the table holds it.
  std::uint32_t GetMaskPatternID() const { return id_; }
  void SetMaskPatternID(std::uint32_t id) { id_ = id; }

  // The pattern, which stays the entry's and is valid until it is set again or, if it was asked for through a const
  // entry, asked for writing; null when it is empty.
  std::uint8_t* GetMaskPatternBuffer() { return pattern_.Writable(); }
  const std::uint8_t* GetMaskPatternBuffer() const { return pattern_.Data(); }
  // Its size in bytes.
  std::uint32_t GetMaskPatternSize() const { return pattern_.Size(); }
  // Copies `size` bytes in the place of the pattern; null `data` empties it. The source may lie inside the pattern.
  void SetMaskPatternBuffer(const std::uint8_t* data, std::uint32_t size);
  // The same without a copy.
  void SetMaskPattern(nvx::SharedBytes bytes) { pattern_ = std::move(bytes); }

 private:
  std::uint32_t id_ = 0;
  nvx::SharedBytes pattern_;
};

// The patterns by ID, each ID once, walked in ascending order. With auto-delete, on after construction, the table owns
// its entries. A copy holds copies of the entries, which it owns.
class NVX_EXPORT CMaskPatternData : public CDataObject {
 public:
  CMaskPatternData() = default;
  CMaskPatternData(const CMaskPatternData& other);
  CMaskPatternData& operator=(const CMaskPatternData& other);

  // Empties the table and, with auto-delete, destroys the entries.
  void DeleteContents() override;
  virtual ~CMaskPatternData();

  // Files an entry under its ID. True if the table holds it from then on, as in CMaskParameterData. False if the ID is
  // taken: the entry that was there stays, and the new one is destroyed, also without auto-delete. False, with nothing
  // changed, for null and for an entry that the table holds already.
  bool Add(CMaskPatternDataEntry* entry);

  // The entry with that ID, which stays the table's; null if there is none. Takes logarithmic time.
  CMaskPatternDataEntry* GetEntry(int id) const;

  // Number of entries.
  int GetEntryCount() const { return static_cast<int>(entries_.Count()); }

  // Cursor, as in CMaskParameterData.
  bool GetFirstPosition() { return entries_.Head(); }
  CMaskPatternDataEntry* GetNextPosition(bool& more) { return entries_.Next(more); }

  // The table itself, for walks that leave the cursor alone.
  const nvx::CursorList<CMaskPatternDataEntry>& Entries() const { return entries_; }

 private:
  friend class CMaskPatternFile;

  // Files entries that stand in ascending order of new IDs, all at once.
  void Merge(std::vector<std::unique_ptr<CMaskPatternDataEntry>> entries);

  nvx::CursorList<CMaskPatternDataEntry> entries_;
};

// Form of a parameter list. An object serves one load or one save.
class NVX_EXPORT CMaskParameterFile : public CDataFile {
 public:
  // What a record of the form has room for.
  static constexpr std::uint32_t kMostLayerColors = 10;
  static constexpr std::uint32_t kMostUsePatternIDs = 15;

  // Adds the records of a stream to the list, behind what it holds. False, with the list as it was, for a wrong magic
  // of the header, for a stream that ends early, and for a record that claims more colours or IDs than it has room for.
  // Records and data blocks with a wrong magic are passed over, which the stream then tells (HasPassedOver).
  virtual bool LoadFile(CNvxFile& file, CMaskParameterData* data);

  // Reads the header; false if its magic is wrong or the stream too short. A LoadFile on the same object then goes on
  // behind the header.
  virtual bool LoadHeader(CNvxFile& file);

  // False, with nothing written, if a record has more colours or IDs than the form has room for; false as well if the
  // stream takes fewer bytes than it is given.
  virtual bool SaveFile(CNvxFile& file, CMaskParameterData* data);

  // Whether the form has room for every record.
  static bool CanSave(const CMaskParameterData& data);

 private:
  std::uint32_t recordCount_ = 0;
  bool headerRead_ = false;
};

// Form of a pattern table. An object serves one load or one save.
class NVX_EXPORT CMaskPatternFile : public CDataFile {
 public:
  // Adds the patterns of a stream to the table. The first of several records with one ID counts, and what the table
  // holds already stays. The data blocks go to the patterns of this stream in ascending order of their IDs: the k-th
  // pattern takes the size of the k-th record. False, with the table as it was, for a wrong magic of the header and for
  // a stream that ends early. Records and data blocks with a wrong magic are passed over.
  virtual bool LoadFile(CNvxFile& file, CMaskPatternData* data);

  // Reads the header; false if its magic is wrong or the stream too short.
  virtual bool LoadHeader(CNvxFile& file);

  // False if the stream takes fewer bytes than it is given.
  virtual bool SaveFile(CNvxFile& file, CMaskPatternData* data);

 private:
  std::uint32_t recordCount_ = 0;
};
