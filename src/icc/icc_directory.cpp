#include "icc/icc_directory.h"

#include "core/stream.h"

#include <algorithm>
#include <numeric>

namespace nvx {
namespace {

// Header and tag table of a profile whose image lies in `length` bytes, of which the first `size` are at hand: all of
// them, or at least those up to the end of the table.
class DirectoryReader {
 public:
  DirectoryReader(const std::uint8_t* bytes, std::size_t size, std::uint64_t length, Diagnosis* diagnosis)
      : bytes_(bytes), size_(size), length_(length), diagnosis_(diagnosis) {}

  bool Read() {
    if (!ReadHeader() || !ReadTable() || !CheckSignatures()) return false;
    if (diagnosis_ != nullptr) WarnOfOddities();
    return true;
  }

  IccDirectory Take() { return {header_, std::move(tags_)}; }

 private:
  bool Refuse(std::uint64_t offset, std::string_view rule) const {
    if (diagnosis_ != nullptr) diagnosis_->Report(Severity::kError, offset, rule);
    return false;
  }

  static std::uint64_t EntryOffset(std::size_t index) {
    return kIccTableStart + std::uint64_t{index} * kIccTagEntrySize;
  }

  bool ReadHeader() {
    if (length_ < kIccTableStart || size_ < kIccTableStart) {
      return Refuse(length_, "ICC profile: ends inside the header or the tag count");
    }
    BigRecordDecoder decoder(bytes_);
    IccHeaderForm::Describe(header_, decoder);
    if (header_.phSignature != IccHeaderForm::kSignature) return Refuse(36, "ICC header: signature is not acsp");
    if (header_.phSize < kIccTableStart) return Refuse(0, "ICC header: size too small for header and tag count");
    if (header_.phSize > length_) return Refuse(0, "ICC header: size beyond the end");
    return true;
  }

  bool ReadTable() {
    const std::uint32_t count = LoadBig<std::uint32_t>(bytes_ + kIccHeaderSize);
    if (count > (header_.phSize - kIccTableStart) / kIccTagEntrySize || EntryOffset(count) > size_) {
      return Refuse(kIccHeaderSize, "ICC tag table: count beyond the end");
    }
    tags_.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
      IccTagForm tag;
      BigRecordDecoder decoder(bytes_ + EntryOffset(i));
      IccTagForm::Describe(tag, decoder);
      if (std::uint64_t{tag.offset} + tag.size > header_.phSize) {
        return Refuse(EntryOffset(i), "ICC tag table: tag data beyond the end");
      }
      if (tag.size != 0 && tag.offset < EntryOffset(count)) {
        return Refuse(EntryOffset(i), "ICC tag table: tag data inside header or tag table");
      }
      tags_.push_back(tag);
    }
    return true;
  }

  bool CheckSignatures() const {
    std::vector<std::uint32_t> order(tags_.size());
    std::iota(order.begin(), order.end(), 0u);
    std::sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
      return tags_[a].signature != tags_[b].signature ? tags_[a].signature < tags_[b].signature : a < b;
    });
    const auto repeated = std::adjacent_find(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
      return tags_[a].signature == tags_[b].signature;
    });
    return repeated == order.end() || Refuse(EntryOffset(repeated[1]), "ICC tag table: signature stands twice");
  }

  // Each kind of oddity is told once, so that a table full of them does not fill the memory.
  void WarnOfOddities() const {
    if (header_.phSize < length_)
      diagnosis_->Report(Severity::kWarning, header_.phSize, "ICC profile: bytes behind it");
    WarnOfFirst("ICC tag table: tag data not on a 4-byte boundary",
                [](const IccTag& tag) { return tag.offset % 4 != 0; });
    WarnOfFirst("ICC tag table: tag without data", [](const IccTag& tag) { return tag.size == 0; });
  }

  template <class IsOdd>
  void WarnOfFirst(std::string_view rule, IsOdd isOdd) const {
    const auto odd = std::find_if(tags_.begin(), tags_.end(), isOdd);
    if (odd == tags_.end()) return;
    diagnosis_->Report(Severity::kWarning, EntryOffset(static_cast<std::size_t>(odd - tags_.begin())), rule);
  }

  const std::uint8_t* bytes_;
  std::size_t size_;
  std::uint64_t length_;
  Diagnosis* diagnosis_;
  IccHeaderForm header_;
  std::vector<IccTag> tags_;
};

}  // namespace

const IccTag* IccDirectory::Find(std::uint32_t signature) const {
  const auto found =
      std::find_if(tags.begin(), tags.end(), [=](const IccTag& tag) { return tag.signature == signature; });
  return found == tags.end() ? nullptr : &*found;
}

bool ReadIccDirectory(const void* bytes, std::size_t size, IccDirectory& directory, Diagnosis* diagnosis) {
  DirectoryReader reader(static_cast<const std::uint8_t*>(bytes), bytes != nullptr ? size : 0,
                         bytes != nullptr ? size : 0, diagnosis);
  if (!reader.Read()) return false;
  directory = reader.Take();
  return true;
}

bool ReadIccDirectory(CNvxFile& file, IccDirectory& directory) {
  const std::uint32_t length = Remaining(file);
  std::vector<std::uint8_t> front(std::min(length, kIccTableStart));
  if (!ReadExact(file, front.data(), static_cast<std::uint32_t>(front.size())))
    return Refuse(file, "ICC profile: unreadable");
  if (front.size() == kIccTableStart) {
    // A count that the stream does not hold is left to the reader to refuse.
    const std::uint32_t count = LoadBig<std::uint32_t>(front.data() + kIccHeaderSize);
    if (Holds(file, count, kIccTagEntrySize)) {
      const std::uint32_t size = count * kIccTagEntrySize;
      front.resize(kIccTableStart + size);
      if (!ReadExact(file, front.data() + kIccTableStart, size)) return Refuse(file, "ICC tag table: unreadable");
    }
  }
  DirectoryReader reader(front.data(), front.size(), length, file.GetDiagnosis());
  if (!reader.Read()) return false;
  directory = reader.Take();
  return true;
}

std::uint32_t IccColorCount(std::uint32_t colorSpace) {
  switch (colorSpace) {
    case Signature("CMYK"):
      return 4;
    case Signature("6CLR"):
      return 6;
    case Signature("7CLR"):
      return 7;
    case Signature("8CLR"):
      return 8;
    default:
      return 3;
  }
}

}  // namespace nvx
