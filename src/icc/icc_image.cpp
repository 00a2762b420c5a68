#include "icc/icc_image.h"

#include "core/stream.h"
#include "icc/md5.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <numeric>

namespace nvx {
namespace {

constexpr std::uint64_t RoundUpTo4(std::uint64_t size) { return (size + 3) / 4 * 4; }

void EncodeHeader(const IccHeaderForm& header, std::uint8_t* out) {
  BigRecordEncoder encoder(out);
  IccHeaderForm::Describe(header, encoder);
}

bool HasProfileID(const IccHeader& header) {
  return std::any_of(std::begin(header.phProfileID), std::end(header.phProfileID),
                     [](std::uint8_t byte) { return byte != 0; });
}

// MD5 of the image with flags, rendering intent and the ID itself taken as zero; `image` lacks a valid header.
Md5Digest ProfileID(IccHeaderForm header, std::span<const std::uint8_t> image) {
  header.phProfileFlags = 0;
  header.phRenderingIntent = 0;
  std::fill(std::begin(header.phProfileID), std::end(header.phProfileID), std::uint8_t{0});
  RecordBytes<IccHeaderForm> bytes;
  EncodeHeader(header, bytes.data());
  Md5 md5;
  md5.Update(bytes.data(), bytes.size());
  md5.Update(image.data() + kIccHeaderSize, image.size() - kIccHeaderSize);
  return md5.Finish();
}

}  // namespace

std::unique_ptr<IccImage> IccImage::Open(std::span<const std::uint8_t> bytes, Diagnosis* diagnosis) {
  IccDirectory directory;
  if (!ReadIccDirectory(bytes.data(), bytes.size(), directory, diagnosis)) return nullptr;
  std::unique_ptr<IccImage> image(new IccImage(directory));
  image->opened_ = AllocateBlock(image->openedSize_);
  std::memcpy(image->opened_.get(), bytes.data(), image->openedSize_);
  return image;
}

std::unique_ptr<IccImage> IccImage::Open(CNvxFile& file, std::span<const std::uint32_t> apart) {
  const std::uint32_t start = file.GetPosition();
  IccDirectory directory;
  if (!ReadIccDirectory(file, directory)) return nullptr;
  std::unique_ptr<IccImage> image(new IccImage(directory));
  if (image->Read(file, start, apart)) return image;
  Refuse(file, "ICC profile: unreadable");
  return nullptr;
}

IccImage::IccImage(const IccDirectory& directory) : openedSize_(directory.header.phSize), header_(directory.header) {
  entries_.reserve(directory.tags.size());
  for (const IccTag& tag : directory.tags)
    entries_.push_back({tag.signature, tag.size, tag.offset, tag.offset, Place::kOpened, {}});
  sorted_.resize(entries_.size());
  std::iota(sorted_.begin(), sorted_.end(), 0u);
  std::sort(sorted_.begin(), sorted_.end(),
            [&](std::uint32_t a, std::uint32_t b) { return entries_[a].signature < entries_[b].signature; });
}

bool IccImage::Read(CNvxFile& file, std::uint32_t start, std::span<const std::uint32_t> apart) {
  const std::vector<std::size_t> aside = StandingApart(apart);
  if (aside.empty()) {
    opened_ = AllocateBlock(openedSize_);
    file.Seek(start, kFromBegin);
    return ReadExact(file, opened_.get(), static_cast<std::uint32_t>(openedSize_));
  }

  struct Run {
    std::uint64_t from;
    std::uint64_t size;
    std::uint8_t* to;
  };
  std::vector<Run> runs;
  for (const std::size_t index : aside) entries_[index].place = Place::kNowhere;
  const Layout layout = Arrange();
  openedSize_ = static_cast<std::size_t>(layout.size);
  opened_ = AllocateBlock(openedSize_);
  for (const Piece& piece : layout.pieces) runs.push_back({piece.from, piece.size, opened_.get() + piece.offset});
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (entries_[i].IsPresent()) entries_[i].from = static_cast<std::uint32_t>(layout.tagOffsets[i]);
  }
  for (const std::size_t index : aside) {
    Entry& entry = entries_[index];
    entry.place = Place::kBlock;
    entry.block = SharedBytes::Allocate(entry.size);
    runs.push_back({entry.from, entry.size, entry.block.Writable()});
  }
  changed_ = true;
  std::sort(runs.begin(), runs.end(), [](const Run& a, const Run& b) { return a.from < b.from; });
  // The stream stands behind the tag table, and so does all that is left to read.
  return std::all_of(runs.begin(), runs.end(), [&](const Run& run) {
    if (run.size == 0) return true;
    const std::uint32_t offset = start + static_cast<std::uint32_t>(run.from);
    return file.Seek(offset - file.GetPosition(), kFromPosition) == offset &&
           ReadExact(file, run.to, static_cast<std::uint32_t>(run.size));
  });
}

// Which of these tags have bytes that no other tag names, as indices of entries_.
std::vector<std::size_t> IccImage::StandingApart(std::span<const std::uint32_t> signatures) const {
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (entries_[i].size != 0) order.push_back(i);
  }
  std::sort(order.begin(), order.end(),
            [&](std::size_t a, std::size_t b) { return entries_[a].from < entries_[b].from; });
  std::vector<std::size_t> apart;
  std::uint64_t end = 0;  // of all tags before
  for (std::size_t i = 0; i < order.size(); ++i) {
    const Entry& entry = entries_[order[i]];
    const std::uint64_t ownEnd = std::uint64_t{entry.from} + entry.size;
    const bool overlaps = entry.from < end || (i + 1 < order.size() && entries_[order[i + 1]].from < ownEnd);
    end = std::max(end, ownEnd);
    const bool isWanted = std::find(signatures.begin(), signatures.end(), entry.signature) != signatures.end();
    if (isWanted && !overlaps) apart.push_back(order[i]);
  }
  return apart;
}

const std::uint8_t* IccImage::DataOf(const Entry& entry) const {
  return entry.place == Place::kBlock ? entry.block.Data() : opened_.get() + entry.from;
}

const std::uint8_t* IccImage::DataOf(const Piece& piece) const {
  return piece.block != nullptr ? piece.block : opened_.get() + piece.from;
}

const IccImage::Entry* IccImage::Find(std::uint32_t signature) const {
  const auto found =
      std::lower_bound(sorted_.begin(), sorted_.end(), signature,
                       [&](std::uint32_t index, std::uint32_t value) { return entries_[index].signature < value; });
  return found != sorted_.end() && entries_[*found].signature == signature ? &entries_[*found] : nullptr;
}

IccImage::Entry& IccImage::FindOrAdd(std::uint32_t signature) {
  if (const Entry* const entry = Find(signature)) return entries_[static_cast<std::size_t>(entry - entries_.data())];
  const auto place =
      std::lower_bound(sorted_.begin(), sorted_.end(), signature,
                       [&](std::uint32_t index, std::uint32_t value) { return entries_[index].signature < value; });
  sorted_.insert(place, static_cast<std::uint32_t>(entries_.size()));
  Entry& entry = entries_.emplace_back();
  entry.signature = signature;
  return entry;
}

std::optional<std::span<const std::uint8_t>> IccImage::Tag(std::uint32_t signature) const {
  const Entry* const entry = Find(signature);
  if (entry == nullptr || !entry->IsPresent()) return std::nullopt;
  return std::span<const std::uint8_t>(DataOf(*entry), entry->size);
}

SharedBytes IccImage::ShareTag(std::uint32_t signature) const {
  const Entry* const entry = Find(signature);
  if (entry == nullptr || !entry->IsPresent()) return {};
  if (entry->place == Place::kBlock) return entry->block.Part(0, entry->size);
  return SharedBytes({DataOf(*entry), entry->size});
}

std::uint32_t IccImage::OpenedOffset(std::uint32_t signature) const {
  const Entry* const entry = Find(signature);
  return entry != nullptr && entry->IsPresent() ? entry->openedOffset : 0;
}

void IccImage::SetTag(std::uint32_t signature, std::span<const std::uint8_t> bytes) {
  if (bytes.empty()) return RemoveTag(signature);
  if (HasBytes(signature, bytes)) return;
  // The copy comes first: the bytes may be those of this tag.
  Replace(signature, SharedBytes(bytes));
}

void IccImage::SetTag(std::uint32_t signature, SharedBytes bytes) {
  if (bytes.IsEmpty()) return RemoveTag(signature);
  if (!HasBytes(signature, bytes.Bytes())) Replace(signature, std::move(bytes));
}

bool IccImage::HasBytes(std::uint32_t signature, std::span<const std::uint8_t> bytes) const {
  const auto present = Tag(signature);
  return present && std::equal(bytes.begin(), bytes.end(), present->begin(), present->end());
}

void IccImage::Replace(std::uint32_t signature, SharedBytes bytes) {
  Entry& entry = FindOrAdd(signature);
  entry = {signature, bytes.Size(), 0, 0, Place::kBlock, std::move(bytes)};
  changed_ = true;
}

void IccImage::RemoveTag(std::uint32_t signature) {
  if (!Tag(signature)) return;
  FindOrAdd(signature) = {signature, 0, 0, 0, Place::kNowhere, {}};
  changed_ = true;
}

std::vector<std::uint32_t> IccImage::Signatures() const {
  std::vector<std::uint32_t> signatures;
  for (const Entry& entry : entries_) {
    if (entry.IsPresent()) signatures.push_back(entry.signature);
  }
  return signatures;
}

std::size_t IccImage::CountPresent() const {
  return static_cast<std::size_t>(
      std::count_if(entries_.begin(), entries_.end(), [](const Entry& entry) { return entry.IsPresent(); }));
}

IccHeader IccImage::Header() const {
  IccHeader header = header_;
  header.phSize = static_cast<std::uint32_t>(std::min(Size(), kLargestImage));
  return header;
}

std::uint64_t IccImage::Size() const { return changed_ ? Arrange().size : openedSize_; }

// Places the runs of opened bytes that tags still name, in the order of their offsets.
void IccImage::ArrangeOpened(Layout& layout) const {
  std::vector<std::size_t> order;
  order.reserve(entries_.size());
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (entries_[i].place == Place::kOpened) order.push_back(i);
  }
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return entries_[a].from < entries_[b].from; });
  for (const std::size_t index : order) {
    const Entry& entry = entries_[index];
    Piece* piece = layout.pieces.empty() ? nullptr : &layout.pieces.back();
    if (piece == nullptr || entry.from >= piece->from + piece->size) {
      if (piece != nullptr) layout.size = RoundUpTo4(piece->offset + piece->size);
      piece = &layout.pieces.emplace_back(Piece{nullptr, entry.from, 0, layout.size});
    }
    const std::uint64_t distance = entry.from - piece->from;
    piece->size = std::max(piece->size, distance + entry.size);
    layout.tagOffsets[index] = piece->offset + distance;
  }
  if (!layout.pieces.empty()) layout.size = RoundUpTo4(layout.pieces.back().offset + layout.pieces.back().size);
}

IccImage::Layout IccImage::Arrange() const {
  Layout layout;
  layout.size = kIccTableStart + std::uint64_t{CountPresent()} * kIccTagEntrySize;
  layout.pieces.reserve(entries_.size());
  layout.tagOffsets.resize(entries_.size());
  ArrangeOpened(layout);
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (entries_[i].place != Place::kBlock) continue;
    layout.tagOffsets[i] = layout.size;
    layout.pieces.push_back({entries_[i].block.Data(), 0, entries_[i].size, layout.size});
    layout.size = RoundUpTo4(layout.size + entries_[i].size);
  }
  return layout;
}

bool IccImage::CopyTo(std::span<std::uint8_t> out) const {
  if (!changed_) {
    if (out.size() < openedSize_) return false;
    std::memcpy(out.data(), opened_.get(), openedSize_);
    return true;
  }
  const Layout layout = Arrange();
  if (layout.size > kLargestImage || out.size() < layout.size) return false;
  Compose(layout, out.data());
  return true;
}

// True if the image can be composed over the opened bytes: pieces are moved in the order of their old places, and none
// may land on one that is still to be moved.
bool IccImage::FitsInPlace(const Layout& layout) const {
  return layout.size <= openedSize_ && std::all_of(layout.pieces.begin(), layout.pieces.end(), [](const Piece& piece) {
           return piece.block != nullptr || piece.offset <= piece.from;
         });
}

Block IccImage::Release(std::uint32_t& size) && {
  size = static_cast<std::uint32_t>(openedSize_);
  if (!changed_) return std::move(opened_);
  const Layout layout = Arrange();
  if (layout.size > kLargestImage) return nullptr;
  size = static_cast<std::uint32_t>(layout.size);
  if (!FitsInPlace(layout)) {
    Block image = AllocateBlock(size);
    Compose(layout, image.get());
    return image;
  }
  Compose(layout, opened_.get());
  // What the image no longer needs goes back; a block that cannot shrink serves as it is.
  if (void* const shrunk = std::realloc(opened_.get(), size)) {
    (void)opened_.release();
    opened_.reset(static_cast<std::uint8_t*>(shrunk));
  }
  return std::move(opened_);
}

// `out` may be the opened bytes if the layout fits in place.
void IccImage::Compose(const Layout& layout, std::uint8_t* out) const {
  StoreBig(out + kIccHeaderSize, static_cast<std::uint32_t>(CountPresent()));
  std::uint8_t* end = out + kIccTableStart;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (!entries_[i].IsPresent()) continue;
    IccTagForm tag;
    tag.signature = entries_[i].signature;
    tag.offset = static_cast<std::uint32_t>(layout.tagOffsets[i]);
    tag.size = entries_[i].size;
    BigRecordEncoder encoder(end);
    IccTagForm::Describe(tag, encoder);
    end += kIccTagEntrySize;
  }
  for (const Piece& piece : layout.pieces) {
    std::uint8_t* const start = out + piece.offset;
    std::fill(end, start, std::uint8_t{0});
    // What stands in its place already is not even touched.
    if (start != DataOf(piece)) std::memmove(start, DataOf(piece), static_cast<std::size_t>(piece.size));
    end = start + piece.size;
  }
  std::fill(end, out + layout.size, std::uint8_t{0});
  ComposeHeader(layout, out);
}

// Comes last, as the Profile ID covers all the rest.
void IccImage::ComposeHeader(const Layout& layout, std::uint8_t* out) const {
  IccHeaderForm header(header_);
  header.phSize = static_cast<std::uint32_t>(layout.size);
  if (HasProfileID(header)) {
    const Md5Digest digest = ProfileID(header, {out, static_cast<std::size_t>(layout.size)});
    std::copy(digest.begin(), digest.end(), header.phProfileID);
  }
  EncodeHeader(header, out);
}

}  // namespace nvx
