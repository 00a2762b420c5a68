// The headers of a profile of any format, read without the rest of the file.
#include "core/form.h"
#include "core/text.h"
#include "entries/calibration/calibration_records.h"
#include "formats/container_records.h"
#include "formats/detection.h"
#include "formats/qpf_tags.h"
#include "formats/record_views.h"
#include "formats/text_header.h"
#include "icc/icc_directory.h"
#include "platform/file_system.h"

#include <nvxprofile/icc_profile.h>
#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/profile_file_text.h>
#include <nvxprofile/profile_summary.h>

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

namespace nvx {
namespace {

// A file on disk without a buffer: it reads what it is asked for, and nothing ahead.
class SparseFile : public CNvxFile {
 public:
  std::uint32_t Read(void* buffer, std::uint32_t count) override {
    const platform::FileHandle handle = reinterpret_cast<platform::FileHandle>(GetHandle());
    if (platform::SeekFile(handle, position_, platform::Origin::kBegin) < 0) return 0;
    const auto got = static_cast<std::uint32_t>(platform::ReadFile(handle, buffer, count));
    position_ += got;
    return got;
  }
  std::uint32_t GetPosition() override { return position_; }
  std::uint32_t SeekToBegin() override { return position_ = 0; }
  std::uint32_t SeekToEnd() override { return position_ = GetLength(); }
  // Readers count from the begin and from where they are.
  std::uint32_t Seek(std::uint32_t offset, std::uint32_t origin) override {
    return position_ = origin == kFromBegin ? offset : position_ + offset;
  }

 private:
  std::uint32_t position_ = 0;
};

// What the header block alone gives of a load.
class HeaderLoader : public CProfileFileQPFv3 {
 public:
  using CProfileFileQPFv3::LoadHeader;
};

// The bytes of a tag, or its first `most` ones, as a stream of their own.
class TagStart : public CNvxMemFile {
 public:
  TagStart(SparseFile& file, const char* name, const IccTag& tag, std::uint64_t most)
      : bytes_(static_cast<std::size_t>(std::min<std::uint64_t>(tag.size, most))),
        scope_(file.GetDiagnosis(), tag.offset, [name] { return std::string(name); }) {
    SetDiagnosis(file.GetDiagnosis());
    file.Seek(tag.offset, kFromBegin);
    if (!bytes_.empty() && !ReadExact(file, bytes_.data(), static_cast<std::uint32_t>(bytes_.size()))) bytes_.clear();
    Buffer = bytes_.data();
    Length = static_cast<std::uint32_t>(bytes_.size());
  }

 private:
  std::vector<std::uint8_t> bytes_;
  DiagnosisScope scope_;
};

const IccTag* FindTag(const IccDirectory& directory, const char* name) {
  return directory.Find(CICCProfile::MakeTagSignature(name));
}

// The children of a history in order, each with the last description that the table has for it.
class HistoryTable {
 public:
  void Add(const CalibrationEntryHeader& header) {
    const auto [place, isNew] = index_.try_emplace({header.usedType, header.optionInfo}, children_.size());
    if (isNew) children_.emplace_back();
    children_[place->second] = {IsContainer(header.usedType),
                                {header.optionInfo, header.value, header.time, std::u16string(FieldText(header.name))}};
  }

  // The first child is the target, whatever it is.
  void Summarize(ProfileSummary& summary) {
    for (std::size_t i = 1; i < children_.size(); ++i) {
      Child& child = children_[i];
      if (!child.isContainer) continue;
      ++summary.calibrationCount;
      const std::int64_t newest = summary.newestCalibration ? summary.newestCalibration->time : 0;
      if (child.calibration.time > newest) summary.newestCalibration = std::move(child.calibration);
    }
  }

 private:
  struct Child {
    bool isContainer = false;
    CalibrationSummary calibration;
  };

  static bool IsContainer(std::uint32_t usedType) {
    return usedType == CProfileDataEntry::kCalibrationHistory || usedType == CProfileDataEntry::kCalibrationContainer;
  }

  std::map<std::pair<std::uint32_t, std::uint32_t>, std::size_t> index_;
  std::vector<Child> children_;
};

// The entry headers of a history come by the block, so that a table of any length takes little room.
void SummarizeHistory(SparseFile& file, const IccTag& tag, ProfileSummary& summary) {
  constexpr std::uint32_t kStart = kRecordSize<PrivateTagOpening> + kRecordSize<CalibrationHeader>;
  constexpr std::uint32_t kSmallestEntry = kRecordSize<CalibrationEntryHeader> + CalibrationEntryHeader::kBodyMagicSize;
  constexpr std::uint32_t kBlock = 64;
  if (tag.size < kStart) return;
  file.Seek(tag.offset + kRecordSize<PrivateTagOpening>, kFromBegin);
  RecordBytes<CalibrationHeader> bytes;
  if (!ReadExact(file, bytes.data(), kRecordSize<CalibrationHeader>) ||
      !HasConstants<CalibrationHeader>(bytes.data())) {
    return;
  }
  const auto header = DecodeRecord<CalibrationHeader>(bytes.data());
  if (header.entryCount > (tag.size - kStart) / kSmallestEntry) return;
  HistoryTable table;
  std::array<RecordBytes<CalibrationEntryHeader>, kBlock> block;
  for (std::uint32_t left = header.entryCount; left != 0;) {
    const std::uint32_t count = std::min(left, kBlock);
    if (!ReadExact(file, block.data(), count * kRecordSize<CalibrationEntryHeader>)) return;
    for (std::uint32_t i = 0; i < count; ++i) {
      if (!HasConstants<CalibrationEntryHeader>(block[i].data())) return;
      table.Add(DecodeRecord<CalibrationEntryHeader>(block[i].data()));
    }
    left -= count;
  }
  table.Summarize(summary);
}

bool SummarizePrinterProfile(SparseFile& file, const IccTag& entryTag, ProfileSummary& summary) {
  summary.format = kPrinterProfile;
  _tagDeviceProfileInfo& info = *summary.headers.GetProfileInfo();
  SelectBinaryView(info);
  HeaderLoader loader;
  {
    TagStart stream(file, kEntryTag, entryTag, kHeaderBlockSize);
    if (!loader.LoadHeader(stream, &summary.headers)) return false;
  }
  const IccTag* const mediaTag = FindTag(summary.directory, kMediaTag);
  if (mediaTag == nullptr || mediaTag->size == 0) return Refuse(file, "private tag: missing");
  {
    // The count is that of the file; the names are read as far as the tag has them.
    TagStart head(file, kMediaTag, *mediaTag, kRecordSize<MediaTableHeader>);
    MediaTableHeader header;
    if (!ReadRecord(head, header)) return Refuse(head, "media names: cut short");
    const std::uint64_t size =
        kRecordSize<MediaTableHeader> + std::uint64_t{header.count} * kRecordSize<MediaNameRecord>;
    if (size > mediaTag->size) return Refuse(head, "media names: count beyond the end");
    TagStart stream(file, kMediaTag, *mediaTag, size);
    if (!loader.LoadMediaData(stream, &summary.headers)) return false;
  }
  loader.SetupMediaFileToData(&info);
  if (const IccTag* const tag = FindTag(summary.directory, kCalibrationTag.name)) SummarizeHistory(file, *tag, summary);
  return true;
}

bool SummarizeIcc(SparseFile& file, ProfileSummary& summary) {
  file.SeekToBegin();
  if (!ReadIccDirectory(file, summary.directory)) return false;
  if (const IccTag* const tag = FindTag(summary.directory, kEntryTag))
    return SummarizePrinterProfile(file, *tag, summary);
  summary.format = kPlainIcc;
  return true;
}

bool SummarizeText(SparseFile& file, ProfileSummary& summary) {
  if (!CProfileFileQPFv1().LoadData(file, &summary.headers, true)) return false;
  const std::uint32_t version = summary.headers.GetProfileInfo()->ProfileMajorVersion;
  if (version != 1 && version != 2) return RefuseAt(file, 0, "text header: ProfileVersion_Code is neither 1 nor 2");
  summary.format = version == 1 ? kText1 : kText2;
  return true;
}

bool SummarizeContainer(SparseFile& file, ProfileSummary& summary) {
  file.SeekToBegin();
  ContainerHeader header;
  if (!ReadChecked(file, header)) return false;
  summary.format = kContainer;
  return true;
}

bool Summarize(SparseFile& file, const char16_t* path, ProfileSummary& summary) {
  if (HasIccExtension(path)) return SummarizeIcc(file, summary);
  std::array<char, kTextHeaderStart.size()> start{};
  const std::uint32_t got = file.Read(start.data(), static_cast<std::uint32_t>(start.size()));
  file.SeekToBegin();
  if (got >= 4 && LoadLittle<std::uint32_t>(start.data()) == ContainerHeader::kMagic)
    return SummarizeContainer(file, summary);
  if (std::string_view(start.data(), got) == kTextHeaderStart) return SummarizeText(file, summary);
  return SummarizeIcc(file, summary);
}

}  // namespace

bool SummarizeProfile(const char16_t* path, ProfileSummary& summary, Diagnosis* diagnosis) {
  SparseFile file;
  file.SetDiagnosis(diagnosis);
  if (path == nullptr || !file.Open(path, kGenericRead, kShareRead, kOpenExisting)) {
    return RefuseAt(file, 0, "file: cannot be opened");
  }
  if (!Summarize(file, path, summary)) return false;
  file.GetFileName(summary.headers.GetProfileInfo()->FileName);
  return true;
}

}  // namespace nvx
