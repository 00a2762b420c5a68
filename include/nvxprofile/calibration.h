// The calibration history of a profile: a small tree of entries inside one entry, and the binary form that holds the
// children of each of its inner nodes (docs/formats/calibration.md).
#pragma once

#include <nvxprofile/cursor_list.h>
#include <nvxprofile/curve_entry.h>
#include <nvxprofile/export.h>
#include <nvxprofile/file.h>
#include <nvxprofile/profile_entry.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

// What is known of a calibration beside its entries. The form keeps the first 20 characters of the name.
struct tag_ContainerData {
  std::int32_t Value = 0;  // for the calibration tools; only stored here
  std::int64_t Time = 0;   // the newest calibration is the one with the greatest value
  char16_t Name[24] = {};  // zero-terminated
};

// An opaque record of the calibration tools.
struct tag_CalibrationInfo {
  std::uint8_t Data[512] = {};
};

// The children of a container, which it owns, and the container's description.
class NVX_EXPORT CContainerData {
 public:
  CContainerData() = default;
  CContainerData(const CContainerData&) = delete;
  CContainerData& operator=(const CContainerData&) = delete;

  // Destroys the children. The description stays.
  virtual void DeleteContents();
  virtual ~CContainerData();

  // Appends the entry, which is owned from then on, unless it stands here already or a child has its used type and
  // option info: then the first stays, the caller still owns the new one, and the result is true all the same. False
  // for null alone. Add tells the two apart.
  virtual bool SetProfileDataEntry(CProfileDataEntry* entry);

  // The description, which stays the container's, and the children.
  tag_ContainerData* GetContainerData() { return &description_; }
  const tag_ContainerData* GetContainerData() const { return &description_; }
  const nvx::CursorList<CProfileDataEntry>& Children() const { return children_; }

  // Appends the entry; gives it back if a child has its used type and option info.
  std::unique_ptr<CProfileDataEntry> Add(std::unique_ptr<CProfileDataEntry> entry);
  // Puts the entry before the child at `index`, or at the end, without any test.
  void Insert(std::size_t index, std::unique_ptr<CProfileDataEntry> entry);
  // Takes the child at `index` out; null if there is none.
  std::unique_ptr<CProfileDataEntry> TakeAt(std::size_t index);

  // The first child with that used type and option info, null if there is none.
  CProfileDataEntry* Find(std::uint32_t usedType, std::uint32_t optionInfo) const;

  // How deep the children stand below the outermost container, 1 for those of the outermost itself. A container that is
  // put into another gets the next level, and all containers below it with it, so that a form that nests without end
  // is told from inside its load; one that is taken out is the outermost of its own tree again.
  std::uint32_t GetLevel() const { return level_; }
  // Gives an entry the level that it has as a child of this; Insert does so too.
  void SetLevelOfChild(CProfileDataEntry& entry) const { SetLevel(entry, level_ + 1); }

 private:
  static void SetLevel(CProfileDataEntry& entry, std::uint32_t level);

  tag_ContainerData description_;
  nvx::CursorList<CProfileDataEntry> children_;
  std::uint32_t level_ = 1;
};

// An entry that holds entries. Its buffer is the form of docs/formats/calibration.md; a child's buffer stands inside
// it, so the tree nests. The description of a container is not in its own buffer but in its entry header in the buffer
// above.
//
// Each level of nesting keeps its bytes once more. A history uses two levels of containers with curve entries below;
// kMaxLevels are read and written. A container further down is not parsed: its BufferToData gives false and its bytes
// stay as they are, also through DataToBuffer.
//
// BufferToData makes new children, so pointers to the former ones and to anything in them are invalid from then on.
// Asking for a child opens the container as asking for a payload opens other entries: what is below may be changed.
class NVX_EXPORT CContainerEntry : public CProfileDataEntry {
 public:
  // How deep containers nest, the outermost counted.
  static constexpr std::uint32_t kMaxLevels = 8;

  CContainerEntry();
  ~CContainerEntry() override;

  // The description, which stays the entry's.
  tag_ContainerData* GetContainerData();
  // Copies the description; null changes nothing.
  void SetContainerData(const tag_ContainerData* description);

  // Number of children.
  int GetEntryCount() const;

  // The child at a position, null for a position without one; or the first child with that used type and option info,
  // null if there is none. It stays the container's.
  CProfileDataEntry* GetProfileDataEntry(int index);
  CProfileDataEntry* GetProfileDataEntry(std::uint32_t usedType, std::uint32_t optionInfo);

  // Puts the entry before the child at that position. A negative index counts as 0, one above the count appends. True
  // if the container owns it from then on; false for null and for an entry that stands here already, of which nothing
  // changes.
  bool InsertProfileDataEntry(int index, CProfileDataEntry* entry);

  // Appends the entry and takes it over. A child that has its used type and option info already stays, and the new
  // entry then remains the caller's, although the result is true; false for null alone.
  bool SetProfileDataEntry(CProfileDataEntry* entry);
  // The same with an answer: null if the container owns the entry from then on, else the entry.
  std::unique_ptr<CProfileDataEntry> AddProfileDataEntry(std::unique_ptr<CProfileDataEntry> entry);

  // Takes a child out; the caller owns it. Null, with nothing changed, if there is no such child or if the class does
  // not let children be removed, which only the history does.
  CProfileDataEntry* RemoveProfileDataEntry(int index);
  CProfileDataEntry* RemoveProfileDataEntry(std::uint32_t usedType, std::uint32_t optionInfo);

  // Destroys the children and makes new ones from the buffer. False for an empty buffer and below kMaxLevels, with the
  // children as they were, and for a form that CProfileFileCalibration refuses, with the children before the fault.
  bool BufferToData() override;

  // Brings the buffers of all children up to date (RenewBuffer) and makes this entry's buffer of them, exactly as long
  // as its form. False, with the old buffer, if a child's changes cannot be written, for a form beyond 4 GiB, for
  // children below kMaxLevels, for two children of one used type and option info, which would load as one, and for a
  // buffer that is unread or was read in part. Buffers of children may then be
  // new, but say what their payloads say.
  bool DataToBuffer() override;

  CContainerEntry* AsContainer() override;

  // The children and their level, open to changes, and for reading alone.
  CContainerData& GetChildData() {
    OpenPayload();
    return data_;
  }
  const CContainerData& GetChildData() const { return data_; }

 protected:
  // Whether RemoveProfileDataEntry takes children out.
  enum class Removal { kForbidden, kAllowed };

  // For the subclasses: the values of their row in the table of entry types.
  CContainerEntry(UsedType usedType, bool display, Removal removal);

  // Destroys the children.
  void DeleteContents();

  // BufferToData and DataToBuffer with the option value of the form, which stays as it is if the form has no header.
  bool ParseChildren(std::uint32_t& optionValue);
  bool RebuildForm(std::uint32_t optionValue);

 private:
  friend class CContainerData;

  CProfileDataEntry* HandOut(CProfileDataEntry* child);

  CContainerData data_;
  bool removable_ = false;
};

// One calibration of a history. Its option info is the calibration code.
class NVX_EXPORT CCalibrationContainerEntry : public CContainerEntry {
 public:
  CCalibrationContainerEntry();

  bool BufferToData() override;
  bool DataToBuffer() override;
};

// The root of the tree. Its first child is the target entry (21, 0); the others are the calibrations.
// nvx::AddCalibration and nvx::ImportCalibrations (nvxprofile/calibration_history.h) do what callers usually do with
// it.
class NVX_EXPORT CCalibrationHistoryEntry : public CContainerEntry {
 public:
  CCalibrationHistoryEntry();

  // The code for a new calibration. Counts up by 1 at each call, from 0 in a new history; the form keeps the count.
  std::uint32_t GetNextID() {
    OpenPayload();
    return nextId_++;
  }
  // The code that GetNextID would give.
  std::uint32_t PeekNextID() const { return nextId_; }
  void SetNextID(std::uint32_t id) {
    OpenPayload();
    nextId_ = id;
  }

  // Takes over the calibrations of another history. What is taken over is a deep copy: both histories own their
  // entries, and the source keeps its own. False, with this history as it was, for a source of another class, for one
  // whose form is unread, was read in part or cannot be brought up to date, for a child that cannot be copied, and
  // where new children could not be written because this history's own form was read in part.
  //
  // With as many children here as in the source, the source replaces this history whole, next ID and all. Otherwise the
  // source's target entry replaces the contents of the one here (made if there is none), the source's other children
  // are inserted behind it in their order, and the next ID grows by their number.
  //
  // The codes of the calibrations stay. Two histories often hold the same codes, since both start at 0; two
  // calibrations with one code live side by side in memory, but no form can carry them, and DataToBuffer then gives
  // false. nvx::CollidingCodes tells, and nvx::ImportCalibrations imports without any loss.
  bool DoImport(CProfileDataEntry* source) override;

  bool BufferToData() override;
  bool DataToBuffer() override;

 private:
  // The two ways of DoImport.
  bool ReplaceBy(CCalibrationHistoryEntry& source);
  bool InsertFrom(CCalibrationHistoryEntry& source);

  std::uint32_t nextId_ = 0;
};

// When the calibration target was made: the first 8 bytes of the buffer. What follows is kept unread; DataToBuffer is
// that of the base and does nothing.
class NVX_EXPORT CCalibrationTargetEntry : public CProfileDataEntry {
 public:
  CCalibrationTargetEntry();

  // False, with the time as it was, for a buffer below 8 bytes.
  bool BufferToData() override;

  // Valid after BufferToData; 0 before.
  std::int64_t GetCreateTime() const { return createTime_; }

 private:
  std::int64_t createTime_ = 0;
};

// Two opaque records. A new entry holds zeros, and has a buffer of 1024 zero bytes already.
class NVX_EXPORT CCalibrationInfoEntry : public CProfileDataEntry {
 public:
  // Bytes of each record.
  static constexpr std::uint32_t kRecordLength = sizeof(tag_CalibrationInfo);

  CCalibrationInfoEntry();

  // The base record and the extended record; both stay the entry's. The const forms only look, and what they give is
  // valid until the entry is parsed or changed.
  tag_CalibrationInfo* GetCalibrationInfo();
  tag_CalibrationInfo* GetCalibrationInfoEx();
  const tag_CalibrationInfo* GetCalibrationInfo() const;
  const tag_CalibrationInfo* GetCalibrationInfoEx() const;
  // Copy the record; null changes nothing.
  void SetCalibrationInfo(const tag_CalibrationInfo* info);
  void SetCalibrationInfoEx(const tag_CalibrationInfo* info);

  // Reads the base record, and the extended one if the buffer has at least 1024 bytes; otherwise that stays. False for
  // a buffer below 512 bytes.
  bool BufferToData() override;

  // Makes the buffer 1024 bytes long and writes both records.
  bool DataToBuffer() override;

 private:
  struct Records {
    tag_CalibrationInfo base;
    tag_CalibrationInfo extended;
  };

  Records& UseRecords();
  Records& OpenRecords();
  const Records& LookAtRecords() const;

  // Made when they are first asked for, so that a form of many empty entries does not fill the memory with zeros.
  std::unique_ptr<Records> records_;
};

// The curves of a calibration.
class NVX_EXPORT CCalibrationInklimitEntry : public CProfileCurveEntry {
 public:
  CCalibrationInklimitEntry() : CProfileCurveEntry(kCalibrationInklimit) {}
};

// Entry type 24.
class NVX_EXPORT CCalibrationLinearizationEntry : public CProfileCurveEntry {
 public:
  CCalibrationLinearizationEntry() : CProfileCurveEntry(kCalibrationLinearization) {}
};

// Entry type 25.
class NVX_EXPORT CCalibrationGrayBalanceEntry : public CProfileCurveEntry {
 public:
  CCalibrationGrayBalanceEntry() : CProfileCurveEntry(kCalibrationGrayBalance) {}
};

// The form of docs/formats/calibration.md, in a stream or in a file of its own. CProfileFile::CreateProfileFile never
// gives one: whoever has such data knows it. An object is made for one load or one save; it owns nothing of the data.
class NVX_EXPORT CProfileFileCalibration {
 public:
  static constexpr std::uint32_t kHeaderSize = 20;
  static constexpr std::uint32_t kEntryHeaderSize = 88;

  CProfileFileCalibration();
  CProfileFileCalibration(const CProfileFileCalibration&) = delete;
  CProfileFileCalibration& operator=(const CProfileFileCalibration&) = delete;
  ~CProfileFileCalibration();

  // Fill `data` from a stream or a path; with headerOnly the file header alone is read. A child that `data` has already
  // with the used type and option info of an entry header is filled anew and stays where it is; an empty body leaves
  // its buffer, while a new entry with an empty body has none. Entries whose payload does not parse keep their bytes.
  // False for null data and for a damaged form: wrong magic or version, an unknown used type, a format type that does
  // not belong to it, or a stored count or size that the stream does not hold. Entries before the fault then stay in
  // `data`.
  virtual bool LoadData(CNvxFile& file, CContainerData* data, bool headerOnly);
  virtual bool LoadData(const char16_t* path, CContainerData* data, bool headerOnly);

  // Write the children's buffers as they are; false for null data and for a stream that does not take all of it. The
  // path form writes beside the target and replaces it at the end: after a false the old file is as it was. The offset
  // load point takes no part.
  virtual bool SaveData(CNvxFile& file, CContainerData* data);
  virtual bool SaveData(const char16_t* path, CContainerData* data);

  // True if magic and version fit; the header read is kept only then.
  virtual bool LoadHeader(CNvxFile& file, CContainerData* data);

  // Where the form starts in the stream that is loaded; 0 at first.
  std::uint32_t GetOffsetLoadPoint() const { return offsetLoadPoint_; }
  void SetOffsetLoadPoint(std::uint32_t offset) { offsetLoadPoint_ = offset; }

  // A number in the file header for the owner of the form; the history keeps its next ID in it. Set before a save, read
  // after a load.
  std::uint32_t GetOptionValue() const { return optionValue_; }
  void SetOptionValue(std::uint32_t value) { optionValue_ = value; }

 protected:
  // The steps of a load and of a save; false stops it.
  virtual bool LoadEntryHeader(CNvxFile& file);
  virtual bool LoadEntries(CNvxFile& file, CContainerData* data);
  virtual bool SaveHeader(CNvxFile& file, CContainerData* data);
  virtual bool SaveBody(CNvxFile& file, CContainerData* data);

  // The parts of SaveBody and of LoadEntries, for subclasses.
  bool SaveEntryHeaders(CNvxFile& file, CContainerData* data);
  void SetLoadEntryCount(std::uint32_t count) { entryCount_ = count; }
  void DeleteContents();

 private:
  // One entry header as the stream holds it.
  using EntryHeaderRecord = std::array<std::uint8_t, kEntryHeaderSize>;

  std::vector<EntryHeaderRecord> entryHeaders_;
  std::uint32_t headerSize_ = kHeaderSize;  // from the load point to the first entry header
  std::uint32_t offsetLoadPoint_ = 0;
  std::uint32_t entryCount_ = 0;
  std::uint32_t optionValue_ = 0;
};
