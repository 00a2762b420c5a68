// The image of one ICC profile and the edits of its tags.
#pragma once

#include "core/block.h"
#include "icc/icc_directory.h"

#include <nvxprofile/shared_bytes.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace nvx {

// Holds one copy of the opened bytes; each tag lies in that copy or in a block of its own, and setting or removing tags
// moves nothing else. The image is composed when it is taken out:
//
// - as the very bytes that were opened, if no tag was changed;
// - else header, tag table, the data that was there, in the order of its old offsets, and new data in the order of the
//   table, all on 4-byte boundaries with zeros between. The table keeps its order and new tags stand at its end; a tag
//   that is removed and set again has its old place. Bytes that no tag names do not come along.
//
// Tags that name the same bytes go on sharing them. Tags whose bytes overlap in part are taken for sharing, too: the
// run of bytes that they cover together is moved as one, so that no image grows by being taken out, and only its first
// byte is sure to lie on a 4-byte boundary.
//
// A Profile ID of zero stays zero, another one is computed anew when a tag was changed.
class IccImage {
 public:
  // Null for what is no ICC profile. Bytes behind the size that the header gives are no part of the image.
  static std::unique_ptr<IccImage> Open(std::span<const std::uint8_t> bytes, Diagnosis* diagnosis = nullptr);
  // The same for a profile that reaches from where the stream stands to its end. Each byte is read once, in the order
  // of the file. The tags in `apart` are about to be taken: each that shares no bytes with another gets a block of its
  // own, and counts as set, with the bytes that it has; all else is put where the image without these tags has it.
  static std::unique_ptr<IccImage> Open(CNvxFile& file, std::span<const std::uint32_t> apart = {});

  // The header as an image taken out now would have it, but with the Profile ID that was opened.
  IccHeader Header() const;

  // The bytes of a tag, valid until that tag is set or removed; nothing if there is none.
  std::optional<std::span<const std::uint8_t>> Tag(std::uint32_t signature) const;

  // The bytes of a tag for whoever keeps them: those of a block of its own, else a copy. Empty if there is none. The
  // tag is to be removed before anybody writes to them.
  SharedBytes ShareTag(std::uint32_t signature) const;

  // Where the bytes of a tag lay in what was opened; 0 for a tag that came later or is not there.
  std::uint32_t OpenedOffset(std::uint32_t signature) const;

  // Copies the bytes. Bytes equal to those that the tag has change nothing; none at all remove the tag.
  void SetTag(std::uint32_t signature, std::span<const std::uint8_t> bytes);
  // The same with a block that is taken over instead of copied.
  void SetTag(std::uint32_t signature, SharedBytes bytes);
  void RemoveTag(std::uint32_t signature);

  // Signatures in the order of the table.
  std::vector<std::uint32_t> Signatures() const;

  // Bytes of the image, which cannot be taken out if they are more than 2^32 - 1.
  std::uint64_t Size() const;

  // False if `out` is too small or the image too large.
  bool CopyTo(std::span<std::uint8_t> out) const;

  // Hands the image over as a block of `size` bytes and leaves this object fit for nothing but its end. The opened
  // bytes become the image where nothing has to move up in them, so that taking tags out of a profile copies nothing
  // but what moves down. Null if the image is too large.
  Block Release(std::uint32_t& size) &&;

  // Runs use(image) over the whole image and gives its result: without a copy if nothing was changed. False if the
  // image is too large.
  template <class Use>
  bool Take(Use&& use) const {
    if (!changed_) return use(std::span<const std::uint8_t>(opened_.get(), openedSize_));
    const Layout layout = Arrange();
    if (layout.size > kLargestImage) return false;
    const auto size = static_cast<std::size_t>(layout.size);
    const Block image = AllocateBlock(size);
    Compose(layout, image.get());
    return use(std::span<const std::uint8_t>(image.get(), size));
  }

 private:
  static constexpr std::uint64_t kLargestImage = 0xFFFFFFFF;

  enum class Place { kOpened, kBlock, kNowhere };

  struct Entry {
    std::uint32_t signature = 0;
    std::uint32_t size = 0;
    std::uint32_t from = 0;          // offset in the opened bytes
    std::uint32_t openedOffset = 0;  // in what was opened; 0 for what came later
    Place place = Place::kNowhere;
    SharedBytes block;

    bool IsPresent() const { return place != Place::kNowhere; }
  };

  // A run of bytes and its place in the image.
  struct Piece {
    const std::uint8_t* block = nullptr;  // null for opened bytes
    std::uint64_t from = 0;               // their offset
    std::uint64_t size = 0;
    std::uint64_t offset = 0;
  };

  struct Layout {
    std::uint64_t size = 0;
    std::vector<Piece> pieces;
    std::vector<std::uint64_t> tagOffsets;  // one for each entry
  };

  explicit IccImage(const IccDirectory& directory);

  bool Read(CNvxFile& file, std::uint32_t start, std::span<const std::uint32_t> apart);
  std::vector<std::size_t> StandingApart(std::span<const std::uint32_t> signatures) const;
  const std::uint8_t* DataOf(const Entry& entry) const;
  const std::uint8_t* DataOf(const Piece& piece) const;
  const Entry* Find(std::uint32_t signature) const;
  Entry& FindOrAdd(std::uint32_t signature);
  bool HasBytes(std::uint32_t signature, std::span<const std::uint8_t> bytes) const;
  void Replace(std::uint32_t signature, SharedBytes bytes);
  std::size_t CountPresent() const;
  Layout Arrange() const;
  void ArrangeOpened(Layout& layout) const;
  bool FitsInPlace(const Layout& layout) const;
  void Compose(const Layout& layout, std::uint8_t* out) const;
  void ComposeHeader(const Layout& layout, std::uint8_t* out) const;

  Block opened_;
  std::size_t openedSize_ = 0;
  IccHeader header_;
  std::vector<Entry> entries_;         // in the order of the table
  std::vector<std::uint32_t> sorted_;  // indices of entries_ by signature
  bool changed_ = false;
};

}  // namespace nvx
