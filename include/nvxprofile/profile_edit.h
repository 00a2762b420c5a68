// Changing single parts of a profile file. What is not named stays byte for byte as it is in the file: nothing is
// loaded into a model and written anew.
#pragma once

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/export.h>
#include <nvxprofile/file.h>
#include <nvxprofile/profile_data.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace nvx {

// What an entry table says of an entry beside its types and its size.
struct StoredEntryHeader {
  bool complete = false;
  std::uint32_t optionInfo = 0;
  std::string label;  // in the ANSI code page; at most 255 bytes are stored
};

// One profile file in memory. Every operation that gives false leaves the file as it was before it.
//
// A part that keeps its size is written over where it stands, and no other byte of the file changes. In a profile of
// the current generation a part that changes its size makes the ICC profile around it be laid out anew
// (docs/formats/icc.md), with the bytes of all other tags as they were; a Profile ID that is there is made right again.
class NVX_EXPORT ProfileEdit {
 public:
  ProfileEdit();
  ProfileEdit(const ProfileEdit&) = delete;
  ProfileEdit& operator=(const ProfileEdit&) = delete;
  ~ProfileEdit();

  // Reads the file at `path`. False for a file that cannot be opened, is of no known format or whose entry tables do
  // not hold; the reasons go to `diagnosis`, which may be null. That it opens does not say that it loads.
  bool Open(const char16_t* path, Diagnosis* diagnosis = nullptr);

  // As CProfileFile::GetMyFormat gives it; 0 before Open.
  int GetFormat() const { return format_; }

  // The bytes that the file has for the entry of that type, as a load takes them; of two in the tables the first, as in
  // a load. Nothing if there is none; the ICC profile around a printer profile is no such entry. Valid until the next
  // change.
  std::optional<std::span<const std::uint8_t>> EntryBytes(std::uint32_t usedType) const;

  // Replaces them. False if there is no such entry, for a size beyond 32 bits, and in a text-headed profile for another
  // size. Zeros fill the tag of a printer profile up to a multiple of 4 bytes if the size changes.
  bool SetEntryBytes(std::uint32_t usedType, std::span<const std::uint8_t> bytes);

  // The header of the entry; nothing if it has none, as the entries in tags of their own.
  std::optional<StoredEntryHeader> EntryHeader(std::uint32_t usedType) const;
  bool SetEntryHeader(std::uint32_t usedType, const StoredEntryHeader& wanted);

  // The record of a printer profile with the fields that its header block and its media names hold, as they are stored:
  // what a load works out of them is not in it. The caller changes them in place, and the media names by
  // CProfileData::SetMediaInfo. Lives as long as this object.
  CProfileData& Headers() { return headers_; }
  // Puts the changed fields into the file. False for other formats.
  bool StoreHeaders();

  // Makes the name of a file the description of the ICC profile, as a save to that file does. False for other formats.
  bool SetDescription(const char16_t* fileName);

  // The file in its present state.
  const std::vector<std::uint8_t>& Image() const { return image_; }

 private:
  struct Table;
  struct Slot;
  class Tag;

  bool OpenTables(CNvxFile& file);
  bool LoadHeaders();
  std::optional<Slot> FindSlot(std::uint32_t usedType) const;
  bool ReplaceSlot(const Slot& slot, std::span<const std::uint8_t> wanted);
  std::optional<Tag> TagAt(const char* name) const;
  bool SetTag(const char* name, const std::vector<std::uint8_t>& bytes);

  int format_ = 0;
  std::vector<std::uint8_t> image_;
  std::vector<std::uint32_t> tables_;  // offsets of the entry tables' headers; empty for the current generation
  CProfileData headers_;
};

}  // namespace nvx
