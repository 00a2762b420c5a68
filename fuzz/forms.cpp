#include "forms.h"

#include "entries/calibration/calibration_records.h"
#include "entries/curve/curve_form.h"
#include "entries/large_parameter/large_parameter_records.h"
#include "entries/mask/mask_download_records.h"
#include "entries/mask/mask_records.h"
#include "entries/media/media_property_records.h"
#include "entries/special_color/special_color_records.h"
#include "entries/word_table.h"
#include "formats/container_records.h"
#include "formats/qpf_records.h"
#include "icc/icc_directory.h"

#include <nvxprofile/icc_header.h>
#include <nvxprofile/profile_entry.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

namespace nvx::fuzz {
namespace {

constexpr std::size_t kMagic = 4;

// Where a field of a record lies; a name that the record does not have does not compile.
template <class Record>
consteval std::size_t At(std::string_view field) {
  return kRecordFields<Record>.OffsetOf(field);
}

std::uint32_t Load(View bytes, std::size_t at) {
  std::uint32_t value = 0;
  if (at + sizeof value <= bytes.size()) std::memcpy(&value, bytes.data() + at, sizeof value);
  return value;
}

void Store(Bytes& bytes, std::size_t at, std::size_t value) {
  const auto word = static_cast<std::uint32_t>(value);
  if (at + sizeof word <= bytes.size()) std::memcpy(bytes.data() + at, &word, sizeof word);
}

void StoreBig(Bytes& bytes, std::size_t at, std::size_t value) {
  Store(bytes, at, __builtin_bswap32(static_cast<std::uint32_t>(value)));
}

void Append(Bytes& bytes, View more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

Bytes Cut(View& bytes, std::size_t size) {
  const View front = bytes.first(std::min(size, bytes.size()));
  bytes = bytes.subspan(front.size());
  return Bytes(front.begin(), front.end());
}

// A header that counts records, the records, and a body for each of them in the same order.
class TableForm : public Form {
 public:
  TableForm(std::size_t headerSize, std::size_t countAt, std::size_t recordSize)
      : headerSize_(headerSize), countAt_(countAt), recordSize_(recordSize) {}

  std::optional<Parts> Split(View bytes) const override {
    const std::size_t count = Load(bytes, countAt_);
    if (bytes.size() < headerSize_ || count > (bytes.size() - headerSize_) / recordSize_) return std::nullopt;
    Parts parts;
    parts.header = Cut(bytes, headerSize_);
    parts.parts.resize(count);
    for (Part& part : parts.parts) part.record = Cut(bytes, recordSize_);
    for (Part& part : parts.parts) {
      const std::size_t size = BodySize(part.record, bytes);
      if (size > bytes.size()) return std::nullopt;
      part.body = Cut(bytes, size);
    }
    parts.rest.assign(bytes.begin(), bytes.end());
    return parts;
  }

  Bytes Join(Parts parts) const override {
    Store(parts.header, countAt_, parts.parts.size());
    Bytes bytes = std::move(parts.header);
    for (Part& part : parts.parts) {
      Fit(part);
      Append(bytes, part.record);
    }
    for (const Part& part : parts.parts) Append(bytes, part.body);
    Append(bytes, parts.rest);
    return bytes;
  }

  Nested InBody(const Parts&, std::size_t) const override { return {}; }

 private:
  // Size of the body whose record this is, at the start of `left`.
  virtual std::size_t BodySize(View record, View left) const = 0;
  // Makes record and body agree on the body's size.
  virtual void Fit(Part& part) const = 0;

  std::size_t headerSize_;
  std::size_t countAt_;
  std::size_t recordSize_;
};

// Every body starts with a magic; a field of the record says how long it is, with or without that.
class SizedTableForm : public TableForm {
 public:
  struct Layout {
    std::size_t headerSize;
    std::size_t countAt;
    std::size_t recordSize;
    std::size_t sizeAt;
    bool sizeCountsMagic;
  };
  SizedTableForm(Layout layout, const Form* rest)
      : TableForm(layout.headerSize, layout.countAt, layout.recordSize),
        sizeAt_(layout.sizeAt),
        uncounted_(layout.sizeCountsMagic ? 0 : kMagic),
        rest_(rest) {}
  explicit SizedTableForm(Layout layout) : SizedTableForm(layout, nullptr) {}

  Nested InRest() const override { return {rest_, 0}; }

 private:
  std::size_t BodySize(View record, View) const override { return std::size_t{Load(record, sizeAt_)} + uncounted_; }
  void Fit(Part& part) const override {
    part.body.resize(std::max(part.body.size(), kMagic));
    Store(part.record, sizeAt_, part.body.size() - uncounted_);
  }

  std::size_t sizeAt_;
  std::size_t uncounted_;
  const Form* rest_;
};

// Entries of one format type share a form, but for the tables with keys of their own.
const Form* FormOfType(std::uint32_t usedType) {
  const std::unique_ptr<CProfileDataEntry> entry(
      CProfileDataEntry::CreateDataEntry(static_cast<CProfileDataEntry::UsedType>(usedType)));
  switch (entry ? entry->GetFormatType() : 0) {
    case CProfileDataEntry::kFormatCurve:
      return &CurveSetForm();
    case CProfileDataEntry::kFormatIcc:
      return &IccForm();
    case CProfileDataEntry::kFormatContainer:
      return &CalibrationForm();
    case CProfileDataEntry::kFormatMaskDownload:
    case CProfileDataEntry::kFormatMaskDownloadIncludePattern:
      return &MaskDownloadForm();
    case CProfileDataEntry::kFormatKeyed:
      if (usedType == CProfileDataEntry::kLargeParameter) return &LargeParameterForm();
      if (usedType == CProfileDataEntry::kSpecialColorInfo) return &SpecialColorForm();
      return &MediaPropertyForm();
    default:
      return nullptr;
  }
}

// A table of profile entries: the type in the record says what the body holds behind its magic.
class EntryTableForm final : public SizedTableForm {
 public:
  EntryTableForm(Layout layout, std::size_t typeAt, const Form* rest = nullptr)
      : SizedTableForm(layout, rest), typeAt_(typeAt) {}

  Nested InBody(const Parts& parts, std::size_t index) const override {
    return {FormOfType(Load(parts.parts[index].record, typeAt_)), kMagic};
  }

 private:
  std::size_t typeAt_;
};

// Blocks of one size that no field tells.
class FixedTableForm final : public TableForm {
 public:
  FixedTableForm(std::size_t headerSize, std::size_t countAt, std::size_t recordSize, std::size_t bodySize)
      : TableForm(headerSize, countAt, recordSize), bodySize_(bodySize) {}

 private:
  std::size_t BodySize(View, View) const override { return bodySize_; }
  void Fit(Part& part) const override { part.body.resize(bodySize_); }

  std::size_t bodySize_;
};

// The type alone says how long a block is, but for type 5, behind whose magic the nested forms may stand.
class MaskDownloadStream final : public TableForm {
 public:
  MaskDownloadStream()
      : TableForm(kRecordSize<WeftHeaderRecord>, At<WeftHeaderRecord>("data count"), kRecordSize<WeftBlockHeader>) {}

  Nested InBody(const Parts& parts, std::size_t) const override {
    return parts.parts.size() == 1 ? Nested{&MaskParameterForm(), kMagic} : Nested{};
  }

 private:
  static constexpr std::size_t kTypeAt = At<WeftBlockHeader>("block type");
  static constexpr std::size_t kLengthAt = At<WeftBlockHeader>("length");
  static constexpr std::size_t kSizes[] = {4, 64, 4, 4, 12, 2, 164};

  static bool HoldsForms(View record, View left) {
    return Load(record, kTypeAt) == 5 && left.size() > kMagic && Load(left, kMagic) == Load(AsBytes("HPPM"), 0);
  }
  static View AsBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
  }
  std::size_t BodySize(View record, View left) const override {
    if (HoldsForms(record, left)) return left.size();
    return kMagic + kSizes[std::min<std::size_t>(Load(record, kTypeAt), 6)];
  }
  void Fit(Part& part) const override {
    if (!HoldsForms(part.record, part.body)) part.body.resize(BodySize(part.record, {}));
    Store(part.record, kLengthAt, part.body.size());
  }
};

class LargeParameterTable final : public TableForm {
 public:
  LargeParameterTable()
      : TableForm(kRecordSize<LargeParameterHeader>, At<LargeParameterHeader>("record count"),
                  kRecordSize<WordTableRecord>) {}

 private:
  static constexpr std::size_t kFixedSize = 4 + 4 * 264;
  static constexpr std::size_t kSizeAt = At<WordTableRecord>("data size");

  static bool IsFixed(View record) { return Load(record, At<WordTableRecord>("used type")) == 1; }
  std::size_t BodySize(View record, View) const override {
    return IsFixed(record) ? kFixedSize : Load(record, kSizeAt);
  }
  void Fit(Part& part) const override {
    if (IsFixed(part.record)) part.body.resize(kFixedSize);
    Store(part.record, kSizeAt, part.body.size());
  }
};

// The first array says how many bytes of curve sets stand behind the arrays.
class SpecialColorTable final : public TableForm {
 public:
  SpecialColorTable()
      : TableForm(kRecordSize<SpecialColorHeader>, At<SpecialColorHeader>("record count"),
                  kRecordSize<WordTableRecord>) {}

  Nested InBody(const Parts& parts, std::size_t index) const override {
    const Part& part = parts.parts[index];
    return CurveBytes(part.body) > 0 ? Nested{&CurveSetForm(), Load(part.record, kSizeAt)} : Nested{};
  }

 private:
  static constexpr std::size_t kSizeAt = At<WordTableRecord>("data size");
  static constexpr std::size_t kCurveCountAt = kMagic + 4 * 2;
  static constexpr std::size_t kCurveBytesAt = kMagic + 4 * 3;

  static std::size_t CurveBytes(View body) { return Load(body, kCurveCountAt) > 0 ? Load(body, kCurveBytesAt) : 0; }
  std::size_t BodySize(View record, View left) const override {
    return std::size_t{Load(record, kSizeAt)} + CurveBytes(left);
  }
  void Fit(Part& part) const override {
    const std::size_t arrays = Load(part.record, kSizeAt);
    if (CurveBytes(part.body) > 0 && part.body.size() > arrays) {
      Store(part.body, kCurveBytesAt, part.body.size() - arrays);
    } else {
      Store(part.record, kSizeAt, part.body.size());
    }
  }
};

// The tag table with its data; the header is that of a profile, and each record the signature of a tag.
class TagTableForm : public Form {
 public:
  std::optional<Parts> Split(View bytes) const override {
    IccDirectory directory;
    if (!ReadIccDirectory(bytes.data(), bytes.size(), directory)) return std::nullopt;
    Parts parts;
    parts.header.assign(bytes.begin(), bytes.begin() + kHeader);
    for (std::size_t i = 0; i < directory.tags.size(); ++i) {
      const View signature = bytes.subspan(kTable + kIccTagEntrySize * i, 4);
      const View tag = bytes.subspan(directory.tags[i].offset, directory.tags[i].size);
      parts.parts.push_back({Bytes(signature.begin(), signature.end()), Bytes(tag.begin(), tag.end())});
    }
    return parts;
  }

  Bytes Join(Parts parts) const override {
    Bytes bytes = std::move(parts.header);
    bytes.resize(kTable + kIccTagEntrySize * parts.parts.size());
    StoreBig(bytes, kHeader, parts.parts.size());
    std::size_t record = kTable;
    for (const Part& part : parts.parts) {
      std::copy(part.record.begin(), part.record.end(), bytes.begin() + static_cast<std::ptrdiff_t>(record));
      StoreBig(bytes, record + At<IccTagForm>("offset"), bytes.size());
      StoreBig(bytes, record + At<IccTagForm>("size"), part.body.size());
      Append(bytes, part.body);
      bytes.resize((bytes.size() + 3) / 4 * 4);
      record += kIccTagEntrySize;
    }
    StoreBig(bytes, 0, bytes.size());
    return bytes;
  }

  Nested InBody(const Parts&, std::size_t) const override { return {}; }

 private:
  static constexpr std::size_t kHeader = kIccHeaderSize;
  static constexpr std::size_t kTable = kIccTableStart;
};

constexpr SizedTableForm::Layout kContainerLayout = {kRecordSize<ContainerHeader>, At<ContainerHeader>("entry count"),
                                                     kRecordSize<ContainerEntryHeader>,
                                                     At<ContainerEntryHeader>("body size"), true};

// The entry table of NVX1 stands behind a header block, which counts the entries.
constexpr SizedTableForm::Layout kEntryTagLayout = {kHeaderBlockSize, kHeaderBlockFields.OffsetOf("entry count"),
                                                    kContainerLayout.recordSize, kContainerLayout.sizeAt, true};

// Each private tag has an opening.
class QpfTags final : public TagTableForm {
 public:
  Nested InBody(const Parts& parts, std::size_t index) const override {
    constexpr std::size_t kOpening = kRecordSize<PrivateTagOpening>;
    const Bytes& signature = parts.parts[index].record;
    if (!std::equal(signature.begin(), signature.begin() + 3, "NVX")) return {};
    switch (signature[3]) {
      case '1': {
        static const EntryTableForm kEntries(kEntryTagLayout, At<ContainerEntryHeader>("used type"));
        return {&kEntries, 0};
      }
      case '2': {
        static const FixedTableForm kNames(kRecordSize<MediaTableHeader>, At<MediaTableHeader>("count"),
                                           kRecordSize<MediaNameRecord>, 0);
        return {&kNames, 0};
      }
      case '3':
        return {&IccForm(), kOpening};
      case '4':
        return {&CalibrationForm(), kOpening};
      case '5':
        return {&MaskDownloadForm(), kOpening};
      case '6':
        return {&LargeParameterForm(), kOpening};
      case '7':
        return {&SpecialColorForm(), kOpening};
      default:
        return {};
    }
  }
};

class TextHeadedProfile final : public Form {
 public:
  std::optional<Parts> Split(View bytes) const override {
    static constexpr std::string_view kContainer = " TCQ";
    const auto start = std::search(bytes.begin(), bytes.end(), kContainer.begin(), kContainer.end());
    Parts parts;
    parts.parts.resize(2);
    parts.parts[0].body.assign(bytes.begin(), start);
    parts.parts[1].body.assign(start, bytes.end());
    return parts;
  }
  Bytes Join(Parts parts) const override {
    Bytes bytes;
    for (const Part& part : parts.parts) Append(bytes, part.body);
    return bytes;
  }
  Nested InBody(const Parts&, std::size_t index) const override {
    return index == 0 ? Nested{} : Nested{&ContainerForm(), 0};
  }
};

}  // namespace

const Form& CalibrationForm() {
  static const EntryTableForm kForm(
      {kRecordSize<CalibrationHeader>, At<CalibrationHeader>("entry count"), kRecordSize<CalibrationEntryHeader>,
       At<CalibrationEntryHeader>("body size"), true},
      At<CalibrationEntryHeader>("used type"));
  return kForm;
}

const Form& ContainerForm() {
  // A second container may stand behind the first.
  static const EntryTableForm kSecond(kContainerLayout, At<ContainerEntryHeader>("used type"));
  static const EntryTableForm kForm(kContainerLayout, At<ContainerEntryHeader>("used type"), &kSecond);
  return kForm;
}

const Form& CurveSetForm() {
  static const SizedTableForm kForm({kRecordSize<tagCurveFileHeader>, At<tagCurveFileHeader>("entry count"),
                                     kRecordSize<CurveRecord>, At<CurveRecord>("data size"), false});
  return kForm;
}

const Form& IccForm() {
  static const TagTableForm kForm;
  return kForm;
}

const Form& LargeParameterForm() {
  static const LargeParameterTable kForm;
  return kForm;
}

const Form& MaskDownloadForm() {
  static const MaskDownloadStream kForm;
  return kForm;
}

const Form& MaskParameterForm() {
  // The pattern table stands behind the list where both are nested.
  static const SizedTableForm kForm(
      {kRecordSize<MaskParameterHeader>, At<MaskParameterHeader>("record count"), kRecordSize<MaskParameterRecord>,
       At<MaskParameterRecord>("parameter data size"), false},
      &MaskPatternForm());
  return kForm;
}

const Form& MaskPatternForm() {
  static const SizedTableForm kForm({kRecordSize<MaskPatternHeader>, At<MaskPatternHeader>("record count"),
                                     kRecordSize<MaskPatternRecord>, At<MaskPatternRecord>("mask pattern size"),
                                     false});
  return kForm;
}

const Form& MediaPropertyForm() {
  static const FixedTableForm kForm(kRecordSize<MediaPropertyHeader>, At<MediaPropertyHeader>("entry count"),
                                    kRecordSize<MediaPropertyEntryHeader>, kRecordSize<MediaPropertyBlock>);
  return kForm;
}

const Form& QpfForm() {
  static const QpfTags kForm;
  return kForm;
}

const Form& SpecialColorForm() {
  static const SpecialColorTable kForm;
  return kForm;
}

const Form& TextHeadedForm() {
  static const TextHeadedProfile kForm;
  return kForm;
}

}  // namespace nvx::fuzz
