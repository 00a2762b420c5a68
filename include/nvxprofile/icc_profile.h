// The working copy of one ICC profile, and two small companions: a big-endian memory stream and the text description.
#pragma once

#include <nvxprofile/file.h>
#include <nvxprofile/icc_header.h>
#include <nvxprofile/shared_bytes.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace nvx {

class IccImage;

}  // namespace nvx

// One ICC profile as a working copy in memory. Tags are read, written and removed in the copy; neither the file nor the
// block that it was opened from ever changes or is needed again. The image is composed only when it is taken out, and
// one that nothing was changed in comes out as it came in. What is accepted, kept and laid out how stands in
// docs/formats/icc.md.
//
// A tag is named by its four characters, such as "desc". Without a working copy every operation on tags and on the
// image gives false, and the sizes are 0. The destructor is not virtual: these objects live on the stack of one
// operation.
class NVX_EXPORT CICCProfile {
 public:
  CICCProfile();
  CICCProfile(const CICCProfile&) = delete;
  CICCProfile& operator=(const CICCProfile&) = delete;
  ~CICCProfile();

  // Opens a block or a file; what was open before is closed in any case. False for what is no readable ICC profile: no
  // working copy is held then, and the header copy is the earlier one. With headerOnly only the header copy is filled.
  virtual bool OpenBuffer(const void* image, std::uint32_t size, bool headerOnly);
  virtual bool OpenPath(const char16_t* path, bool headerOnly);

  // Writes the image with one Write. True only if all of it was accepted.
  virtual bool WriteTo(CNvxFile& file);

  // Copies the image into the caller's block of `size` bytes; false if that is less than GetProfileSize.
  virtual bool CopyImage(std::uint8_t* buffer, std::uint32_t size);

  // Writes the image beside `path` and replaces the file at the end; after a false the old file is as it was.
  virtual bool WriteToPath(const char16_t* path);

  // As OpenBuffer for a profile that reaches from where the stream stands to its end. Its bytes are read once, straight
  // into the working copy, and what is wrong with them goes to the stream's diagnosis. The tags named in `apart` are
  // those that the caller takes out (ShareTag, then SetTag of nothing): they get blocks of their own, and what is left
  // of the image needs no further copy.
  bool OpenStream(CNvxFile& file, std::span<const char* const> apart = {});

  // Hands the image over as a malloc'ed block of `size` bytes that the caller owns, and ends the working copy. This
  // copies no more than what a removed tag makes room for. Null without a working copy and for an image beyond 4 GiB;
  // `size` is then 0.
  std::uint8_t* DetachImage(std::uint32_t& size);

  // Ends the working copy. The header copy stays.
  void Close();

  // Refills the header copy from a working copy; false, with a header copy of zeros, for null.
  bool ReadHeader(const nvx::IccImage* handle);

  // From the header copy, which is all zero until an open succeeds.
  std::uint32_t GetColorSpace() const { return header_.phDataColorSpace; }
  std::uint32_t GetColorCount() const;
  bool IsCMYK() const;

  // Bytes of the image in its present state; 0 without a working copy and for an image beyond 4 GiB.
  std::uint32_t GetProfileSize() const;

  // False without a working copy and for a tag that is not there.
  bool IsTagPresent(const char* tag) const;

  // With a null buffer: true, and `size` is the tag's size in bytes, or as it was if there is no such tag. With a
  // buffer of `size` bytes: copies the tag, its type signature included, and sets `size` to its size. False if there is
  // no such tag (`size` stays) or if the buffer is too small (`size` is then what it takes, and nothing is copied).
  bool GetTag(const char* tag, void* buffer, std::uint32_t& size) const;

  // The tag's bytes inside the working copy, valid until the tag is set or the working copy ends. Null if there is no
  // such tag or it is empty; `size` is then 0.
  const std::uint8_t* GetRefTag(const char* tag, std::uint32_t& size) const;

  // The tag's bytes to keep: without a copy for a tag that was opened apart or set, else copied. Empty if there is no
  // such tag. Remove the tag before anybody writes to them.
  nvx::SharedBytes ShareTag(const char* tag) const;

  // Where the tag's bytes lay in the image that was opened; 0 for a tag that was set since and for none.
  std::uint32_t GetTagOffset(const char* tag) const;

  // Replaces a tag by a copy of `size` bytes, adding one that is new at the end of the table. A tag that shared its
  // data with others leaves them theirs. With size 0 it removes the tag; true also if there was none.
  bool SetTag(const char* tag, const void* data, std::uint32_t size);

  // As SetTag with a malloc'ed block, which is taken over instead of copied, whatever the result.
  bool AttachTag(const char* tag, std::uint8_t* block, std::uint32_t size);

  // The number of a tag's name, the first character most significant. Characters that a shorter text lacks count as 0.
  static std::uint32_t MakeTagSignature(const char* tag);

 private:
  bool Keep(std::unique_ptr<nvx::IccImage> image);

  std::unique_ptr<nvx::IccImage> handle_;  // the working copy; null when nothing is open
  nvx::IccHeader header_;                  // as it was when the profile was opened
};

// A memory stream with the byte order of ICC data, most significant byte first. What a read misses at the end of the
// stream counts as zero bytes. The block is somebody else's, or is taken out by whoever wrote a growing one.
class NVX_EXPORT CICCProfileBufferAccess : public CNvxMemFile {
 public:
  using CNvxMemFile::CNvxMemFile;
  ~CICCProfileBufferAccess() override;

  // Numbers of that size, big-endian; what the block does not hold reads as 0.
  std::uint8_t ReadUInt8();
  std::uint16_t ReadUInt16();
  std::uint32_t ReadUInt32();
  // ICC fixed point: a signed 32-bit number in units of 1/65536.
  double ReadS15Fixed16();

  // Fewer bytes go out where the block cannot take them.
  void WriteUInt8(std::uint8_t value);
  void WriteUInt16(std::uint16_t value);
  void WriteUInt32(std::uint32_t value);
  // Rounds up to the next unit of 1/65536. Writes nothing for a value below -32768, for one that rounds to 32768 or
  // above, and for one that is no number.
  void WriteS15Fixed16(double value);

 private:
  std::uint8_t scratch_[8] = {};
};

// A tag of the ICC text description type, taken apart. Its strings may be replaced; all else is carried through.
class NVX_EXPORT CICCTextDescription {
 public:
  static constexpr std::uint32_t kTypeSignature = 0x64657363;  // "desc"
  static constexpr std::uint32_t kMacintoshSize = 67;

  CICCTextDescription() = default;

  // Fills the object from a tag's bytes, its type signature included. Always true: counts that go beyond the tag take
  // what is there, and a Macintosh part that is cut short is filled up with zeros.
  bool Parse(const void* data, std::uint32_t size);

  // Bytes that Serialize writes.
  std::uint32_t GetSerializedSize() const;

  // Writes the object into a block of `size` bytes, as much of it as fits. Always true.
  bool Serialize(void* data, std::uint32_t size) const;

  // Null counts as empty.
  void SetAsciiDescription(const char* text);
  void SetUnicodeDescription(const char16_t* text);
  const std::string& GetAsciiDescription() const { return ascii_; }
  const std::u16string& GetUnicodeDescription() const { return unicode_; }

 private:
  std::uint32_t typeSignature_ = kTypeSignature;
  std::uint32_t reserved_ = 0;
  std::string ascii_;
  std::uint32_t languageCode_ = 0;
  std::u16string unicode_;  // a terminator that the tag counts is part of it
  std::uint16_t scriptCode_ = 0;
  std::uint8_t macintoshCount_ = 0;
  std::vector<std::uint8_t> macintosh_;
};
