// Profile file formats: the frame that all of them share, and the entry-table container.
#pragma once

#include <nvxprofile/export.h>
#include <nvxprofile/file.h>
#include <nvxprofile/profile_data.h>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

// The base of the formats. A format object is made for one file and one load or save, keeps no pointer to the model
// that it filled, and reports through results alone.
class NVX_EXPORT CProfileFile {
 public:
  // Looks at a file and gives a new format object for it, or null if the file cannot be opened or is of no known kind.
  // The caller destroys it. ".icc" and ".icm", in lower case, decide by themselves; otherwise the first bytes do.
  static CProfileFile* CreateProfileFile(const char16_t* path, bool readOnly);

  CProfileFile(const CProfileFile&) = delete;
  CProfileFile& operator=(const CProfileFile&) = delete;
  virtual ~CProfileFile();

  // Fills the model from a stream or a path. With headerOnly only FileName and what the format's header carries is
  // filled. After a false the model holds what was read so far; the caller discards it.
  virtual bool LoadData(CNvxFile& file, CProfileData* data, bool headerOnly);
  virtual bool LoadData(const char16_t* path, CProfileData* data, bool headerOnly);

  // Writes the model. What `route` means is told by each format: one route, or a set of flags. After a false the model
  // is as it was. The path form writes beside the target and replaces it at the end: after a false the old file is as
  // it was, too, and no other file is left.
  virtual bool SaveData(CNvxFile& file, CProfileData* data, std::uint32_t route);
  virtual bool SaveData(const char16_t* path, CProfileData* data, std::uint32_t route);

  // Times that a save writes as they are, in place of the record's creation time and of the clock: seconds since 1970,
  // and 0 for none. A text-headed profile keeps the second one alone, as its creation time.
  void SetSaveTimes(std::int64_t created, std::int64_t saved) { times_ = SaveTimes{created, saved}; }

  // 0 frame, 1 container, 2 and 3 text-headed versions 1 and 2, 4 current generation, 6 plain ICC.
  int GetMyFormat() const { return format_; }

 protected:
  CProfileFile() = default;

  // The steps of a load and of a save, which each format gives; false stops it.
  virtual bool LoadHeader(CNvxFile& file, CProfileData* data);
  virtual bool LoadEntries(CNvxFile& file, CProfileData* data);
  virtual bool SaveHeader(CNvxFile& file, CProfileData* data, std::uint32_t route);
  virtual bool SaveBody(CNvxFile& file, CProfileData* data, std::uint32_t route);

  // The same decision for files of the ICC family; null for what is no ICC profile.
  static CProfileFile* CreateICCProfileFile(const char16_t* path);

  void SetMyFormat(int format) { format_ = format; }

  // The two times of a save, seconds since 1970.
  struct SaveTimes {
    std::int64_t created = 0;
    std::int64_t saved = 0;
  };
  // Those that were set, or the record's creation time, where it has one, and the clock.
  SaveTimes TimesOfSave(std::int64_t created) const;

 private:
  std::int32_t format_ = 0;
  std::optional<SaveTimes> times_;
};

// The entry-table container: a header, one record for each entry of one route, then the entries' bytes. The form stands
// in docs/formats/container.md.
class NVX_EXPORT CProfileFileQCT : public CProfileFile {
 public:
  static constexpr std::uint32_t kHeaderSize = 32;
  static constexpr std::uint32_t kEntryHeaderSize = 292;

  CProfileFileQCT();
  ~CProfileFileQCT() override;

  // Offset in the stream at which the container starts. Loads count from it; saves write where the stream stands.
  std::uint32_t GetOffsetLoadPoint() const { return offsetLoadPoint_; }
  void SetOffsetLoadPoint(std::uint32_t offset) { offsetLoadPoint_ = offset; }

  // Bytes that a save of the route writes; 0 if there is no such route.
  static std::uint64_t GetSavedSize(const CProfileData& data, std::uint32_t route);

 protected:
  // One record of the entry table as the stream holds it.
  using EntryHeaderRecord = std::array<std::uint8_t, kEntryHeaderSize>;

  bool LoadHeader(CNvxFile& file, CProfileData* data) override;
  bool LoadEntries(CNvxFile& file, CProfileData* data) override;
  bool SaveHeader(CNvxFile& file, CProfileData* data, std::uint32_t route) override;
  bool SaveBody(CNvxFile& file, CProfileData* data, std::uint32_t route) override;
  // Reads the entry table.
  virtual bool LoadEntryHeader(CNvxFile& file);

  // Parts of SaveBody, and of the next load.
  bool SaveEntryHeaders(CNvxFile& file, CProfileData* data, std::uint32_t route);
  void DeleteContents();

  // True exactly if LoadEntries would succeed here. Parses no payload and needs no model.
  bool CheckEntries(CNvxFile& file);

  // For the formats that hold the entry table without the header before it.
  void SetLoadEntryCount(std::uint32_t count) { entryCount_ = count; }
  void SetLoadEntryToRoute(std::uint32_t route) { route_ = route; }
  void SetLoadHeaderSize(std::uint32_t size) { headerSize_ = size; }
  std::uint32_t GetLoadEntryCount() const { return entryCount_; }

 private:
  std::vector<EntryHeaderRecord> entryHeaders_;
  std::uint32_t headerSize_ = kHeaderSize;  // from the load point to the first entry header
  std::uint32_t offsetLoadPoint_ = 0;
  std::uint32_t entryCount_ = 0;
  std::uint32_t route_ = 0;
};
