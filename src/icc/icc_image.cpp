#include "icc/icc_image.h"

#include "core/stream.h"
#include "icc/md5.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
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
  Block copy = AllocateBlock(directory.header.phSize);
  std::memcpy(copy.get(), bytes.data(), directory.header.phSize);
  return std::unique_ptr<IccImage>(new IccImage(std::move(copy), directory));
}

std::unique_ptr<IccImage> IccImage::Open(CNvxFile& file) {
  const std::uint32_t start = file.GetPosition();
  IccDirectory directory;
  if (!ReadIccDirectory(file, directory)) return nullptr;
  Block bytes = AllocateBlock(directory.header.phSize);
  file.Seek(start, kFromBegin);
  if (!ReadExact(file, bytes.get(), directory.header.phSize)) {
    Refuse(file, "ICC profile: unreadable");
    return nullptr;
  }
  return std::unique_ptr<IccImage>(new IccImage(std::move(bytes), directory));
}

IccImage::IccImage(Block opened, const IccDirectory& directory)
    : opened_(std::move(opened)), openedSize_(directory.header.phSize), header_(directory.header) {
  entries_.reserve(directory.tags.size());
  for (const IccTag& tag : directory.tags)
    entries_.push_back({tag.signature, tag.size, opened_.get() + tag.offset, {}});
  sorted_.resize(entries_.size());
  std::iota(sorted_.begin(), sorted_.end(), 0u);
  std::sort(sorted_.begin(), sorted_.end(),
            [&](std::uint32_t a, std::uint32_t b) { return entries_[a].signature < entries_[b].signature; });
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
  return std::span<const std::uint8_t>(entry->data, entry->size);
}

std::uint32_t IccImage::OpenedOffset(std::uint32_t signature) const {
  const Entry* const entry = Find(signature);
  return entry != nullptr && entry->IsPresent() && !entry->block
             ? static_cast<std::uint32_t>(entry->data - opened_.get())
             : 0;
}

void IccImage::SetTag(std::uint32_t signature, std::span<const std::uint8_t> bytes) {
  if (bytes.empty()) return RemoveTag(signature);
  if (HasBytes(signature, bytes)) return;
  // The copy comes first: the bytes may be those of this tag.
  Block copy = AllocateBlock(bytes.size());
  std::memcpy(copy.get(), bytes.data(), bytes.size());
  Replace(signature, std::move(copy), static_cast<std::uint32_t>(bytes.size()));
}

void IccImage::SetTag(std::uint32_t signature, Block block, std::uint32_t size) {
  if (size == 0) return RemoveTag(signature);
  if (!HasBytes(signature, {block.get(), size})) Replace(signature, std::move(block), size);
}

bool IccImage::HasBytes(std::uint32_t signature, std::span<const std::uint8_t> bytes) const {
  const auto present = Tag(signature);
  return present && std::equal(bytes.begin(), bytes.end(), present->begin(), present->end());
}

void IccImage::Replace(std::uint32_t signature, Block block, std::uint32_t size) {
  Entry& entry = FindOrAdd(signature);
  entry.size = size;
  entry.data = block.get();
  entry.block = std::move(block);
  changed_ = true;
}

void IccImage::RemoveTag(std::uint32_t signature) {
  if (!Tag(signature)) return;
  Entry& entry = FindOrAdd(signature);
  entry.size = 0;
  entry.data = nullptr;
  entry.block.reset();
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
  std::vector<std::uint32_t> order;
  order.reserve(entries_.size());
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (entries_[i].IsPresent() && !entries_[i].block) order.push_back(static_cast<std::uint32_t>(i));
  }
  std::sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
    // cppcheck-suppress arrayIndexThenCheck
    return std::less<>()(entries_[a].data, entries_[b].data) || (entries_[a].data == entries_[b].data && a < b);
  });
  for (const std::uint32_t index : order) {
    const Entry& entry = entries_[index];
    Piece* piece = layout.pieces.empty() ? nullptr : &layout.pieces.back();
    if (piece == nullptr || entry.data >= piece->data + piece->size) {
      if (piece != nullptr) layout.size = RoundUpTo4(piece->offset + piece->size);
      piece = &layout.pieces.emplace_back(Piece{entry.data, 0, layout.size});
    }
    const auto distance = static_cast<std::size_t>(entry.data - piece->data);
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
    if (!entries_[i].block) continue;
    layout.tagOffsets[i] = layout.size;
    layout.pieces.push_back({entries_[i].data, entries_[i].size, layout.size});
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
  return layout.size <= openedSize_ && std::all_of(layout.pieces.begin(), layout.pieces.end(), [&](const Piece& piece) {
           const std::less<> before;
           const bool opened = !before(piece.data, opened_.get()) && before(piece.data, opened_.get() + openedSize_);
           return !opened || piece.offset <= static_cast<std::uint64_t>(piece.data - opened_.get());
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
    std::memmove(start, piece.data, piece.size);
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
