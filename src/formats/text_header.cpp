#include "formats/text_header.h"

#include "core/stream.h"

#include <algorithm>
#include <array>
#include <limits>

namespace nvx {
namespace {

constexpr std::array<std::string_view, 11> kKnownKeys{
    header_key::kPrinterLabel,   header_key::kInkSetLabel,   header_key::kMediaCode, header_key::kMediaLabel,
    header_key::kMediaEnglish,   header_key::kMediaJapanese, header_key::kDpiCode,   header_key::kHalftoneCode,
    header_key::kProfileVersion, header_key::kSeparateWay,   header_key::kCreateTime};

// The bytes of a stream one by one, fetched by block.
class ByteReader {
 public:
  static constexpr int kNoByte = -1;

  explicit ByteReader(CNvxFile& file) : file_(file) {}

  int Peek() {
    if (next_ == held_) {
      start_ += held_;
      next_ = 0;
      held_ = file_.Read(block_.data(), static_cast<std::uint32_t>(block_.size()));
    }
    return held_ == 0 ? kNoByte : block_[next_];
  }
  // Only behind a Peek that gave a byte.
  void Skip() { ++next_; }
  bool SkipIf(int byte) {
    if (Peek() != byte) return false;
    Skip();
    return true;
  }
  std::uint64_t Offset() const { return start_ + next_; }

 private:
  CNvxFile& file_;
  std::array<std::uint8_t, 4096> block_;
  std::uint64_t start_ = 0;  // offset of the block
  std::uint32_t next_ = 0;
  std::uint32_t held_ = 0;
};

bool IsLineEnd(int byte) { return byte == '\r' || byte == '\n'; }

// The bytes up to a line end or the end of the stream; false for too many of them.
bool ReadLine(ByteReader& bytes, std::string& line) {
  line.clear();
  for (int byte; (byte = bytes.Peek()) != ByteReader::kNoByte && !IsLineEnd(byte); bytes.Skip()) {
    if (line.size() == kLongestLine) return false;
    line += static_cast<char>(byte);
  }
  return true;
}

void SkipOneLineEnd(ByteReader& bytes) {
  bytes.SkipIf('\r');
  bytes.SkipIf('\n');
}

void TakeValue(const std::string& line, TextHeader& header) {
  const std::size_t colon = line.find(':');
  if (colon == line.npos) return;
  const std::string_view key = std::string_view(line).substr(0, colon);
  if (std::find(kKnownKeys.begin(), kKnownKeys.end(), key) == kKnownKeys.end()) return;
  // Text ends at a zero byte, here as in every field that it may reach.
  const std::string_view value = std::string_view(line).substr(colon + 1);
  header.values[std::string(key)] = value.substr(0, value.find('\0'));
}

template <class Char>
std::int32_t Number(std::basic_string_view<Char> text) {
  constexpr std::int64_t kGreatest = std::numeric_limits<std::int32_t>::max();
  std::size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r'))) ++i;
  const bool negative = i < text.size() && text[i] == '-';
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) ++i;
  std::int64_t number = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    number = std::min(10 * number + (text[i] - '0'), kGreatest + 1);
  }
  return static_cast<std::int32_t>(negative ? -number : std::min(number, kGreatest));
}

}  // namespace

bool ReadTextHeader(CNvxFile& file, TextHeader& header) {
  file.SeekToBegin();
  ByteReader bytes(file);
  std::string line;
  while (bytes.Peek() != ByteReader::kNoByte) {
    const std::uint64_t start = bytes.Offset();
    if (!ReadLine(bytes, line)) return RefuseAt(file, start, "text header: line of more than 255 characters");
    if (line == kTextHeaderEnd) {
      SkipOneLineEnd(bytes);
      if (bytes.Offset() > std::numeric_limits<std::uint32_t>::max()) break;
      header.end = static_cast<std::uint32_t>(bytes.Offset());
      return true;
    }
    TakeValue(line, header);
    while (IsLineEnd(bytes.Peek())) bytes.Skip();
  }
  return RefuseAt(file, bytes.Offset(), "text header: no line \"@Binary\"");
}

std::int32_t LeadingNumber(std::string_view text) { return Number(text); }
std::int32_t LeadingNumber(std::u16string_view text) { return Number(text); }

}  // namespace nvx
