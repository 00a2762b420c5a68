// Parts of a profile file, replaced where they stand.
#include "core/form.h"
#include "core/text.h"
#include "formats/container_records.h"
#include "formats/detection.h"
#include "formats/qpf_tags.h"
#include "formats/record_views.h"
#include "icc/description.h"
#include "icc/icc_directory.h"

#include <nvxprofile/icc_profile.h>
#include <nvxprofile/profile_edit.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/profile_file_text.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace nvx {
namespace {

using Bytes = std::vector<std::uint8_t>;
using View = std::span<const std::uint8_t>;

constexpr std::uint32_t kEntryHeaderSize = kRecordSize<ContainerEntryHeader>;
constexpr std::uint32_t kBodyMagicSize = ContainerEntryHeader::kBodyMagicSize;
constexpr std::uint32_t kOpeningSize = kRecordSize<PrivateTagOpening>;
constexpr std::size_t kMediaStart = kRecordSize<MediaTableHeader>;
constexpr std::size_t kMediaSize = kRecordSize<MediaNameRecord>;

// The tag that holds the entry of a type outside of the entry table; null for a type that has none.
const char* TagOfType(std::uint32_t usedType) {
  const EntryType* const type = FindEntryType(usedType);
  return type != nullptr && type->route != kRouteMain ? type->tag : nullptr;
}

bool IsZero(View bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte == 0; });
}

void PadTo4(Bytes& bytes) { bytes.resize((bytes.size() + 3) / 4 * 4); }

// Writes the new form of a record over the old one, but leaves alone every byte that is the same in both: what stands
// behind a text or in a reserved place belongs to whoever wrote it.
void Overlay(View before, View after, std::uint8_t* stored) {
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (before[i] != after[i]) stored[i] = after[i];
  }
}

// Changes a record of fixed size where it is stored: change(record) gets what the bytes say.
template <class Record, class Change>
void ChangeRecord(std::uint8_t* stored, Change change) {
  Record record = DecodeRecord<Record>(stored);
  RecordBytes<Record> before;
  RecordBytes<Record> after;
  EncodeRecord(record, before.data());
  change(record);
  EncodeRecord(record, after.data());
  Overlay(before, after, stored);
}

std::array<std::uint8_t, kHeaderBlockSize> EncodeHeaderBlock(const _tagDeviceProfileInfo& info,
                                                             const HeaderBlockWords& words) {
  std::array<std::uint8_t, kHeaderBlockSize> bytes;
  RecordEncoder encoder(bytes.data());
  DescribeHeaderBlock(info, words, encoder);
  return bytes;
}

// A stream that is closed and has a name.
class NamedStream : public CNvxFile {
 public:
  explicit NamedStream(const char16_t* name) { Attach(-1, TextOf(name)); }
  bool IsNamed() const {
    char16_t name[kPathLength] = {};
    GetFileName(name);
    return name[0] != 0;
  }
};

}  // namespace

// A stored entry: its header and its bytes, in the block of an entry table.
struct ProfileEdit::Slot {
  std::uint32_t usedType = 0;
  std::size_t header = 0;
  std::size_t body = 0;  // behind the magic
  std::size_t size = 0;
};

// An entry table: entry headers from `start` on, then the bodies.
struct ProfileEdit::Table {
  std::vector<Slot> slots;
  std::size_t end = 0;

  // Nothing for a table that does not hold.
  static std::optional<Table> Read(View block, std::size_t start, std::uint32_t count) {
    if (start > block.size() || count > (block.size() - start) / kEntryHeaderSize) return std::nullopt;
    Table table;
    table.end = start + std::size_t{count} * kEntryHeaderSize;
    for (std::uint32_t i = 0; i < count; ++i) {
      const std::size_t place = start + std::size_t{i} * kEntryHeaderSize;
      const auto header = DecodeRecord<ContainerEntryHeader>(block.data() + place);
      if (!HasConstants<ContainerEntryHeader>(block.data() + place) || header.bodySize < kBodyMagicSize ||
          header.bodySize > block.size() - table.end ||
          LoadLittle<std::uint32_t>(block.data() + table.end) != ContainerEntryHeader::kBodyMagic) {
        return std::nullopt;
      }
      table.slots.push_back(
          {header.usedType, place, table.end + kBodyMagicSize, std::size_t{header.bodySize} - kBodyMagicSize});
      table.end += header.bodySize;
    }
    return table;
  }
  // The table behind a container's header.
  static std::optional<Table> ReadContainer(View block, std::size_t start) {
    if (start > block.size() || block.size() - start < kRecordSize<ContainerHeader>) return std::nullopt;
    if (!HasConstants<ContainerHeader>(block.data() + start)) return std::nullopt;
    const auto header = DecodeRecord<ContainerHeader>(block.data() + start);
    return Read(block, start + kRecordSize<ContainerHeader>, header.entryCount);
  }
  // The table behind a header block.
  static std::optional<Table> ReadPrinterTable(View block) {
    if (block.size() < kHeaderBlockSize) return std::nullopt;
    _tagDeviceProfileInfo scratch;
    HeaderBlockWords words;
    RecordDecoder decoder(block.data());
    DescribeHeaderBlock(scratch, words, decoder);
    return Read(block, kHeaderBlockSize, words.entryCount);
  }

  const Slot* Find(std::uint32_t usedType) const {
    const auto found =
        std::find_if(slots.begin(), slots.end(), [=](const Slot& slot) { return slot.usedType == usedType; });
    return found != slots.end() ? &*found : nullptr;
  }
};

// A tag of the ICC profile in the image.
class ProfileEdit::Tag {
 public:
  Tag(View bytes, std::size_t offset) : bytes_(bytes), offset_(offset) {}
  View Content() const { return bytes_; }
  std::size_t Offset() const { return offset_; }

 private:
  View bytes_;
  std::size_t offset_;
};

ProfileEdit::ProfileEdit() = default;
ProfileEdit::~ProfileEdit() = default;

bool ProfileEdit::Open(const char16_t* path, Diagnosis* diagnosis) {
  format_ = 0;
  image_.clear();
  tables_.clear();
  CNvxFile file;
  file.SetDiagnosis(diagnosis);
  if (path == nullptr || !file.Open(path, kGenericRead, kShareRead, kOpenExisting)) {
    return RefuseAt(file, 0, "file: cannot be opened");
  }
  const std::unique_ptr<CProfileFile> form = DetectFormat(file);
  if (!form) return RefuseAt(file, 0, "file: of no known format");
  image_.resize(file.GetLength());
  if (!ReadExact(file, image_.data(), static_cast<std::uint32_t>(image_.size()))) {
    return Refuse(file, "file: unreadable");
  }
  format_ = form->GetMyFormat();
  return OpenTables(file) || RefuseAt(file, 0, "entry table: does not hold");
}

bool ProfileEdit::OpenTables(CNvxFile& file) {
  if (format_ == kPrinterProfile) return LoadHeaders();
  if (format_ < kContainer || format_ > kText2) return true;
  std::size_t start = 0;
  if (format_ != kContainer) {
    CProfileData scratch;
    CProfileFileQPFv1 header;
    file.SeekToBegin();
    if (!header.LoadData(file, &scratch, true)) return false;
    start = header.GetOffsetLoadPoint();
  }
  for (int i = 0; i < (format_ == kText2 ? 2 : 1); ++i) {
    const std::optional<Table> table = Table::ReadContainer(image_, start);
    if (!table) return false;
    tables_.push_back(static_cast<std::uint32_t>(start));
    start = table->end;
  }
  return true;
}

bool ProfileEdit::LoadHeaders() {
  const std::optional<Tag> block = TagAt(kEntryTag);
  const std::optional<Tag> media = TagAt(kMediaTag);
  if (!block || !media || !Table::ReadPrinterTable(block->Content())) return false;
  _tagDeviceProfileInfo& info = *headers_.GetProfileInfo();
  SelectBinaryView(info);
  HeaderBlockWords words;
  RecordDecoder decoder(block->Content().data());
  DescribeHeaderBlock(info, words, decoder);
  info.ProfileMajorVersion = words.MajorVersion();
  info.ProfileMinorVersion = words.MinorVersion();
  Bytes copy(media->Content().begin(), media->Content().end());
  CNvxMemFile stream(copy.data(), static_cast<std::uint32_t>(copy.size()));
  return CProfileFileQPFv3().LoadMediaData(stream, &headers_);
}

std::optional<ProfileEdit::Tag> ProfileEdit::TagAt(const char* name) const {
  IccDirectory directory;
  if (!ReadIccDirectory(image_.data(), image_.size(), directory)) return std::nullopt;
  const IccTag* const tag = directory.Find(CICCProfile::MakeTagSignature(name));
  if (tag == nullptr) return std::nullopt;
  return Tag(View(image_).subspan(tag->offset, tag->size), tag->offset);
}

bool ProfileEdit::SetTag(const char* name, const Bytes& bytes) {
  IccDirectory directory;
  if (!ReadIccDirectory(image_.data(), image_.size(), directory)) return false;
  const IccTag* const tag = directory.Find(CICCProfile::MakeTagSignature(name));
  if (tag == nullptr) return false;
  const auto end = [](const IccTag& item) { return std::uint64_t{item.offset} + item.size; };
  const bool isAlone = std::all_of(directory.tags.begin(), directory.tags.end(), [&](const IccTag& other) {
    return &other == tag || end(other) <= tag->offset || end(*tag) <= other.offset;
  });
  if (tag->size == bytes.size() && isAlone && IsZero(directory.header.phProfileID)) {
    std::copy(bytes.begin(), bytes.end(), image_.begin() + tag->offset);
    return true;
  }
  CICCProfile profile;
  const std::uint32_t size = directory.header.phSize;
  if (!profile.OpenBuffer(image_.data(), size, false) ||
      !profile.SetTag(name, bytes.data(), static_cast<std::uint32_t>(bytes.size())) || profile.GetProfileSize() == 0) {
    return false;
  }
  Bytes image(profile.GetProfileSize());
  if (!profile.CopyImage(image.data(), profile.GetProfileSize())) return false;
  // What stands behind the profile stays behind it.
  image.insert(image.end(), image_.begin() + size, image_.end());
  image_ = std::move(image);
  return true;
}

std::optional<ProfileEdit::Slot> ProfileEdit::FindSlot(std::uint32_t usedType) const {
  const auto find = [&](const std::optional<Table>& table) {
    const Slot* const slot = table ? table->Find(usedType) : nullptr;
    return slot != nullptr ? std::optional(*slot) : std::nullopt;
  };
  if (format_ == kPrinterProfile) {
    const std::optional<Tag> tag = TagAt(kEntryTag);
    if (!tag || usedType == CProfileDataEntry::kIcm) return std::nullopt;
    std::optional<Slot> slot = find(Table::ReadPrinterTable(tag->Content()));
    if (slot) {
      slot->header += tag->Offset();
      slot->body += tag->Offset();
    }
    return slot;
  }
  for (const std::uint32_t start : tables_) {
    if (const std::optional<Slot> slot = find(Table::ReadContainer(image_, start))) return slot;
  }
  return std::nullopt;
}

std::optional<View> ProfileEdit::EntryBytes(std::uint32_t usedType) const {
  if (const std::optional<Slot> slot = FindSlot(usedType)) return View(image_).subspan(slot->body, slot->size);
  const char* const name = format_ == kPrinterProfile ? TagOfType(usedType) : nullptr;
  const std::optional<Tag> tag = name != nullptr ? TagAt(name) : std::nullopt;
  if (!tag || tag->Content().size() <= kOpeningSize) return std::nullopt;
  return tag->Content().subspan(kOpeningSize);
}

bool ProfileEdit::SetEntryBytes(std::uint32_t usedType, View bytes) {
  if (bytes.size() > std::numeric_limits<std::uint32_t>::max() - kEntryHeaderSize) return false;
  if (const std::optional<Slot> slot = FindSlot(usedType)) return ReplaceSlot(*slot, bytes);
  const std::optional<View> present = EntryBytes(usedType);
  if (!present || bytes.empty()) return false;
  const char* const name = TagOfType(usedType);
  Bytes tag(kOpeningSize + bytes.size());
  std::copy_n(TagAt(name)->Content().begin(), kOpeningSize, tag.begin());
  std::copy(bytes.begin(), bytes.end(), tag.begin() + kOpeningSize);
  if (bytes.size() != present->size()) PadTo4(tag);
  return SetTag(name, tag);
}

bool ProfileEdit::ReplaceSlot(const Slot& slot, View wanted) {
  const Bytes bytes(wanted.begin(), wanted.end());  // the caller's may be a part of this file
  const auto bodySize = static_cast<std::uint32_t>(bytes.size() + kBodyMagicSize);
  const auto replaceIn = [&](Bytes& block, std::size_t base) {
    ChangeRecord<ContainerEntryHeader>(block.data() + slot.header - base,
                                       [&](ContainerEntryHeader& header) { header.bodySize = bodySize; });
    const auto body = block.begin() + static_cast<std::ptrdiff_t>(slot.body - base);
    const auto behind = block.erase(body, body + static_cast<std::ptrdiff_t>(slot.size));
    block.insert(behind, bytes.begin(), bytes.end());
  };
  if (format_ != kPrinterProfile) {
    // The text-headed form tells the sizes of its containers in a place before them.
    if (format_ != kContainer && bytes.size() != slot.size) return false;
    replaceIn(image_, 0);
    return true;
  }
  const Tag tag = *TagAt(kEntryTag);
  Bytes block(tag.Content().begin(), tag.Content().end());
  // Zeros behind the last body are padding.
  const std::size_t end = Table::ReadPrinterTable(block)->end;
  const bool isPadded = block.size() - end < 4 && IsZero(View(block).subspan(end));
  if (isPadded && bytes.size() != slot.size) block.resize(end);
  replaceIn(block, tag.Offset());
  if (isPadded && bytes.size() != slot.size) PadTo4(block);
  return SetTag(kEntryTag, block);
}

std::optional<StoredEntryHeader> ProfileEdit::EntryHeader(std::uint32_t usedType) const {
  const std::optional<Slot> slot = FindSlot(usedType);
  if (!slot) return std::nullopt;
  const auto header = DecodeRecord<ContainerEntryHeader>(image_.data() + slot->header);
  return StoredEntryHeader{header.complete != 0, header.optionInfo, header.label};
}

bool ProfileEdit::SetEntryHeader(std::uint32_t usedType, const StoredEntryHeader& wanted) {
  const std::optional<Slot> slot = FindSlot(usedType);
  if (!slot) return false;
  const auto change = [&](ContainerEntryHeader& header) {
    // Any number but 0 means the same.
    if (wanted.complete != (header.complete != 0)) header.complete = wanted.complete ? 1 : 0;
    header.optionInfo = wanted.optionInfo;
    CopyText(header.label, TextOf(wanted.label.c_str()));
  };
  if (format_ != kPrinterProfile) {
    ChangeRecord<ContainerEntryHeader>(image_.data() + slot->header, change);
    return true;
  }
  const Tag tag = *TagAt(kEntryTag);
  Bytes block(tag.Content().begin(), tag.Content().end());
  ChangeRecord<ContainerEntryHeader>(block.data() + slot->header - tag.Offset(), change);
  return SetTag(kEntryTag, block);
}

bool ProfileEdit::StoreHeaders() {
  if (format_ != kPrinterProfile) return false;
  const _tagDeviceProfileInfo& info = *headers_.GetProfileInfo();
  const Tag blockTag = *TagAt(kEntryTag);
  Bytes block(blockTag.Content().begin(), blockTag.Content().end());
  _tagDeviceProfileInfo stored;
  SelectBinaryView(stored);
  HeaderBlockWords words;
  RecordDecoder decoder(block.data());
  DescribeHeaderBlock(stored, words, decoder);
  const auto before = EncodeHeaderBlock(stored, words);
  words.SetVersion(info.ProfileMajorVersion, info.ProfileMinorVersion);
  Overlay(before, EncodeHeaderBlock(info, words), block.data());

  const Tag mediaTag = *TagAt(kMediaTag);
  const Bytes old(mediaTag.Content().begin(), mediaTag.Content().end());
  const auto oldHeader = DecodeRecord<MediaTableHeader>(old.data());
  const auto& view = info.Binary;
  const std::uint32_t count = view.MediaInfo != nullptr ? view.MediaInfoCount : 0;
  Bytes media(old.begin(), old.begin() + kMediaStart);
  ChangeRecord<MediaTableHeader>(media.data(), [&](MediaTableHeader& header) { header.count = count; });
  for (std::uint32_t i = 0; i < count; ++i) {
    RecordBytes<MediaNameRecord> name;
    EncodeRecord(MediaNameRecord{view.MediaInfo[i]}, name.data());
    if (i < oldHeader.count) {
      const std::uint8_t* const place = old.data() + kMediaStart + i * kMediaSize;
      const tagMedia present = DecodeRecord<MediaNameRecord>(place).media;
      const bool isSame = present.Language == view.MediaInfo[i].Language &&
                          FieldText(present.Name) == FieldText(view.MediaInfo[i].Name);
      if (isSame) std::copy_n(place, name.size(), name.begin());
    }
    media.insert(media.end(), name.begin(), name.end());
  }
  if (count == oldHeader.count) {
    media.insert(media.end(), old.begin() + static_cast<std::ptrdiff_t>(media.size()), old.end());
  } else {
    PadTo4(media);
  }
  Bytes present = image_;
  if (SetTag(kEntryTag, block) && SetTag(kMediaTag, media)) return true;
  image_ = std::move(present);
  return false;
}

bool ProfileEdit::SetDescription(const char16_t* fileName) {
  constexpr const char* kDescription = "desc";
  NamedStream stream(fileName);
  CICCProfile profile;
  if (format_ != kPrinterProfile || !stream.IsNamed()) return false;
  if (!profile.OpenBuffer(image_.data(), static_cast<std::uint32_t>(image_.size()), false)) return false;
  RewriteDescription(profile, stream);
  std::uint32_t size = 0;
  const std::uint8_t* const bytes = profile.GetRefTag(kDescription, size);
  return bytes == nullptr || SetTag(kDescription, Bytes(bytes, bytes + size));
}

}  // namespace nvx
