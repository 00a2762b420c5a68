// What a profile is for, and free text about it: the model record and the info record. All text is narrow, in the ANSI
// code page of the system, and zero-terminated. The forms stand in docs/formats/model_info.md.
#pragma once

#include <nvxprofile/data_object.h>
#include <nvxprofile/export.h>
#include <nvxprofile/file.h>
#include <nvxprofile/profile_entry.h>

#include <array>
#include <cstddef>
#include <cstdint>

// Names hold 127 characters, that of the parameter set 63. A Set cuts a longer text to that; null counts as empty. A
// Get copies text and terminator into the caller's room of 128 characters, 64 for the parameter set. The stored record
// has room for 63 characters of each name, so that a save cuts what is longer.
class NVX_EXPORT CModelData : public CDataObject {
 public:
  static constexpr std::size_t kNameLength = 128;
  static constexpr std::size_t kParametersetNameLength = 64;

  CModelData() = default;
  virtual ~CModelData();

  // As the class says.
  void GetModelName(char* name) const;
  void SetModelName(const char* name);
  void GetMediaName(char* name) const;
  void SetMediaName(const char* name);
  void GetInksetName(char* name) const;
  void SetInksetName(const char* name);
  void GetParametersetName(char* name) const;
  void SetParametersetName(const char* name);

  // True for a new object.
  bool IsCmykMode() const { return cmykMode_; }
  void SetCmykMode(bool cmykMode) { cmykMode_ = cmykMode; }
  // Variable dot type; passed through.
  std::uint32_t GetVDType() const { return vdType_; }
  void SetVDType(std::uint32_t vdType) { vdType_ = vdType; }

 private:
  std::uint32_t vdType_ = 0;
  char modelName_[kNameLength] = {};
  char mediaName_[kNameLength] = {};
  char inksetName_[kNameLength] = {};
  char parametersetName_[kParametersetNameLength] = {};
  bool cmykMode_ = true;
};

// Texts hold 64 characters; a Set cuts a longer one to that, null counts as empty. The stored record has room for 63.
// Pointers from a Get are valid as long as the object.
class NVX_EXPORT CInfoData : public CDataObject {
 public:
  static constexpr std::size_t kTextLength = 65;
  static constexpr std::uint32_t kReserveSize = 192;

  CInfoData() = default;
  virtual ~CInfoData();

  const char* GetVersionStr() const { return versionStr_; }
  // As the class says.
  void SetVersionStr(const char* text);
  const char* GetComment() const { return comment_; }
  // As the class says.
  void SetComment(const char* text);
  // Narrow, despite its name.
  const char* GetUserNameW() const { return userName_; }
  void SetUserName(const char* text);

  // The block itself, which may be written to. Its size, always 192 bytes, goes to `size` unless that is null.
  std::uint8_t* GetReserveBuffer(std::uint32_t* size);
  // Copies 192 bytes; null leaves the block as it was.
  void SetReserveBuffer(const std::uint8_t* bytes);

 private:
  char versionStr_[kTextLength] = {};
  char comment_[kTextLength] = {};
  char userName_[kTextLength] = {};
  std::uint8_t reserve_[kReserveSize] = {};
};

// Reads or writes one model record; made for one load or one save. Null data give false. Without a virtual destructor:
// destroyed as what it is.
class NVX_EXPORT CModelFile final : public CDataFile {
 public:
  static constexpr std::uint32_t kRecordSize = 276;

  // Writes 276 bytes, always in the newest version.
  virtual bool SaveFile(CNvxFile& file, CModelData* data);
  // Fills the data object from the record, after LoadHeader if that has not run yet. On false it stays as it was.
  virtual bool LoadFile(CNvxFile& file, CModelData* data);
  // Reads the record from the start of the stream; false unless it begins with the right signature. What a short
  // stream lacks reads as zero. Behind a record of version 1.0 the stream moves back by 4 bytes, since that one is 272
  // bytes long.
  virtual bool LoadHeader(CNvxFile& file);

 private:
  std::array<std::uint8_t, kRecordSize> record_{};
  bool headerRead_ = false;
};

// Reads or writes one info record; made for one load or one save. Null data give false.
class NVX_EXPORT CInfoFile : public CDataFile {
 public:
  static constexpr std::uint32_t kRecordSize = 400;

  // Reads the record from the start of the stream; false unless signature and version are right. What a short stream
  // lacks reads as zero.
  virtual bool LoadHeader(CNvxFile& file);
  // Fills the data object from the record, after LoadHeader if that has not run yet. On false it stays as it was.
  virtual bool LoadFile(CNvxFile& file, CInfoData* data);
  // Writes 400 bytes.
  virtual bool SaveFile(CNvxFile& file, CInfoData* data);
  virtual ~CInfoFile();

 private:
  std::array<std::uint8_t, kRecordSize> record_{};
  bool headerRead_ = false;
};

// Entry type 1. Its buffer is 1024 bytes long after DataToBuffer.
class NVX_EXPORT CModelEntry : public CProfileDataEntry {
 public:
  CModelEntry();
  ~CModelEntry() override;

  CDataObject* GetFormatData() override;
  bool BufferToData() override;
  bool DataToBuffer() override;

  // The record, which lives as long as the entry, open to changes and for reading alone.
  CModelData* GetModelData() {
    OpenPayload();
    return &data_;
  }
  const CModelData* GetModelData() const { return &data_; }

 private:
  CModelData data_;
};

// Entry type 14. Its buffer is 1024 bytes long after DataToBuffer.
class NVX_EXPORT CInfoEntry : public CProfileDataEntry {
 public:
  CInfoEntry();
  ~CInfoEntry() override;

  CDataObject* GetFormatData() override;
  bool BufferToData() override;
  bool DataToBuffer() override;

  // The record, which lives as long as the entry, open to changes and for reading alone.
  CInfoData* GetInfoData() {
    OpenPayload();
    return &data_;
  }
  const CInfoData* GetInfoData() const { return &data_; }

 private:
  CInfoData data_;
};
