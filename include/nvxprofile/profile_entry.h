// An entry of a profile: raw bytes, a few flags, and in its subclasses the typed payload behind the bytes.
#pragma once

#include <nvxprofile/data_object.h>
#include <nvxprofile/export.h>
#include <nvxprofile/shared_bytes.h>

#include <cstdint>
#include <span>

class CContainerEntry;
class CProfileCurveEntry;

namespace nvx {

class Diagnosis;
class PayloadKeeper;

// What the payload of an entry is worth beside its buffer.
enum class PayloadState {
  kUnread,  // the buffer was not parsed since it came; the payload says what it said before
  kWhole,   // buffer and payload say the same
  kPart,  // the bytes say what the payload does not: the buffer was parsed and refused, with what came before the fault
          // in the payload, or the payload was asked for while the buffer was unread
  kEdited,  // the payload was read whole or made anew, and may have been changed since somebody asked for it
};

}  // namespace nvx

// The base of all entries. The buffer comes from malloc and is released with free; blocks that a CNvxMemFile grew can
// be attached to it. Buffer and payload are two forms of the same thing: BufferToData parses the one into the other,
// DataToBuffer serializes back, and neither happens by itself.
//
// An entry knows the state of its payload. Whoever asks for the payload may change it, so from then on it counts as
// edited whenever it would count as whole. Bytes that the payload does not say are never replaced by it: DataToBuffer
// gives false for a buffer that is unread or was read in part. To write a payload over such bytes let them go first
// (DeleteBuffer).
class NVX_EXPORT CProfileDataEntry {
 public:
  // The entry type codes. CreateDataEntry knows a class for each of them.
  enum UsedType : std::uint32_t {
    kModel = 1,
    kInkLimit = 2,
    kVariableInkLimit = 3,
    kVariable = 4,
    kSeparateLight = 5,
    kLinearization = 6,
    kGrayBalance = 7,
    kSeparateChroma = 8,
    kUcr = 9,
    kIcm = 10,
    kInfo = 14,
    kMediaProperty = 16,
    kMultiInkLimit = 17,
    kReplaceProfile = 18,
    kCalibrationHistory = 19,
    kCalibrationContainer = 20,
    kCalibrationTarget = 21,
    kCalibrationInfo = 22,
    kCalibrationInklimit = 23,
    kCalibrationLinearization = 24,
    kCalibrationGrayBalance = 25,
    kCalibrationTarget2 = 26,
    kMaskDownload = 27,
    kLargeParameter = 28,
    kMaskDownloadIncludePattern = 29,
    kSpecialColorInfo = 30,
  };

  // The kinds of binary form.
  enum FormatType : std::uint32_t {
    kFormatModel = 2,
    kFormatIcc = 3,
    kFormatLut = 5,
    kFormatCurve = 6,
    kFormatInfo = 7,
    kFormatKeyed = 8,
    kFormatCalibrationTarget = 9,
    kFormatContainer = 10,
    kFormatCalibrationInfo = 11,
    kFormatMaskDownload = 12,
    kFormatMaskDownloadIncludePattern = 13,
  };

  // Characters of a label, the terminator included.
  static constexpr std::uint32_t kLabelLength = 256;

  // A new entry of the class that belongs to the type, or null for a type without one. The caller owns it, until it is
  // given to a profile or a container.
  static CProfileDataEntry* CreateDataEntry(UsedType usedType);

  CProfileDataEntry() = default;
  CProfileDataEntry(const CProfileDataEntry&) = delete;
  CProfileDataEntry& operator=(const CProfileDataEntry&) = delete;

  virtual ~CProfileDataEntry();

  // The payload, which stays the entry's; null for entries that have none. Asking for it opens it to changes, as the
  // getters of the classes do.
  virtual CDataObject* GetFormatData();

  // Takes over the payload of another entry of the same kind; false if this entry imports nothing.
  virtual bool DoImport(CProfileDataEntry* source);

  // Destroys this object.
  virtual void Delete();

  // Parses the buffer into the payload. The buffer stays as it is.
  virtual bool BufferToData();

  // Serializes the payload into a new buffer; one that says the same already stays. On false the buffer stays as it
  // was: for a payload that its form cannot carry, and for a buffer that is unread or was read in part.
  virtual bool DataToBuffer();

  // Copies flags, types, option info and label, brings this entry's buffer up to date (RenewBuffer) and copies it if it
  // is not empty. The payload of the target stays; BufferToData on the target renews it. False, with the target as it
  // was, if the buffer cannot be brought up to date.
  virtual bool Copy(CProfileDataEntry& target);

  // Frees the present buffer and takes over a malloc'ed block.
  virtual void AttachBuffer(std::uint8_t* buffer, std::uint32_t size);

  // A number whose meaning belongs to the type of the entry.
  virtual void SetOptionInfo(std::uint32_t optionInfo);
  virtual std::uint32_t GetOptionInfo();

  // Frees the present buffer and allocates one of `size` bytes, uninitialised. Null for size 0.
  virtual std::uint8_t* GetBuffer(std::uint32_t size);

  // Bytes in the buffer.
  virtual std::uint32_t GetSize();

  // Flags that travel with the entry; whoever made the profile says what they are worth.
  virtual void SetComplete(bool complete);
  virtual bool IsComplete();
  virtual bool IsDisplayEnable();
  // Frees the buffer; the entry is empty then.
  virtual void DeleteBuffer();

  // The buffer for reading and writing, which stays the entry's and is valid until it is replaced; null when there is
  // none. A payload that goes on referring to bytes of the buffer (print masks, calibrations) keeps the former ones:
  // the entry makes a copy for itself then. Bytes only looks, and copies nothing.
  virtual std::uint8_t* GetRefBuffer();

  // The buffer for reading, valid until it is replaced or GetRefBuffer is called.
  std::span<const std::uint8_t> Bytes() const { return buffer_.Bytes(); }

  // The numbers that the entry table stores; a FormatType and a UsedType, if the class is known.
  virtual std::uint32_t GetFormatType() const;
  virtual void SetFormatType(std::uint32_t formatType);
  virtual std::uint32_t GetUsedType() const;
  virtual void SetUsedType(std::uint32_t usedType);

  // This entry as one that holds a curve set, or that holds other entries; null for all others. Queries and loads ask
  // that of each entry that they pass, and a dynamic_cast takes ten times as long.
  virtual CProfileCurveEntry* AsCurveEntry();
  virtual CContainerEntry* AsContainer();

  nvx::PayloadState GetPayloadState() const { return state_; }

  // Makes the buffer say all that the entry knows: an edited payload is serialized, and in every other state the bytes
  // say it already and stay. False, with the buffer as it was, for changes that cannot be written: a form that cannot
  // carry them, or a payload that was read in part and asked for since.
  bool RenewBuffer();

  void SetDisplay(bool display) { display_ = display; }
  const char* GetLabelString() const { return label_; }

  // Copies the text, cut to 255 bytes. Always true; null counts as empty.
  bool SetLabelString(const char* label);

  // Where BufferToData records what it finds wrong, or null; see CNvxFile::SetDiagnosis. Not owned.
  void SetDiagnosis(nvx::Diagnosis* diagnosis) { diagnosis_ = diagnosis; }
  nvx::Diagnosis* GetDiagnosis() const { return diagnosis_; }

 protected:
  // For the subclasses: the type of the entry, the kind of its binary form, and what IsDisplayEnable says.
  CProfileDataEntry(UsedType usedType, FormatType formatType, bool display);

  // For the subclasses: their payload is about to be handed out for reading and writing.
  void OpenPayload();

 private:
  friend class nvx::PayloadKeeper;

  std::uint32_t formatType_ = 0;
  std::uint32_t usedType_ = 0;
  bool complete_ = false;
  bool display_ = false;
  nvx::SharedBytes buffer_;
  std::uint32_t optionInfo_ = 0;
  char label_[kLabelLength] = {};
  nvx::Diagnosis* diagnosis_ = nullptr;
  nvx::PayloadState state_ = nvx::PayloadState::kUnread;
  bool isOpen_ = false;  // somebody may hold the payload for writing
};
