#include "entries/special_color/curve_set_list.h"

#include "entries/curve/curve_form.h"

#include <string>

namespace nvx {

namespace {

constexpr std::uint32_t kHeaderSize = kRecordSize<tagCurveFileHeader>;
constexpr std::uint32_t kFirstRecordEnd = kHeaderSize + kRecordSize<CurveRecord>;

// Bytes of the set at `bytes`, of which `size` are there; nothing if it is longer than that. The sizes that the set
// states count, and not those of the records that it is read by.
std::optional<std::uint32_t> LengthOfSet(const std::uint8_t* bytes, std::uint32_t size) {
  if (size < kHeaderSize) return std::nullopt;
  const auto header = DecodeRecord<tagCurveFileHeader>(bytes);
  if (header.HeaderSize > size) return std::nullopt;
  if (header.EntryCount == 0) return header.HeaderSize;
  if (size < kFirstRecordEnd) return std::nullopt;
  const auto first = DecodeRecord<CurveRecord>(bytes + kHeaderSize);
  const std::uint64_t curveSize = std::uint64_t{kCurveBlockMagicSize} + first.HeaderSize + first.DataSize;
  if (header.EntryCount > (size - header.HeaderSize) / curveSize) return std::nullopt;
  return static_cast<std::uint32_t>(header.HeaderSize + header.EntryCount * curveSize);
}

std::unique_ptr<CCurveData> LoadSet(CNvxMemFile& set) {
  const std::unique_ptr<CCurveFile> reader(CCurveFile::CreateCurveFile(set));
  auto curves = std::make_unique<CCurveData>();
  return reader && reader->LoadFile(set, curves.get()) ? std::move(curves) : nullptr;
}

}  // namespace

bool ReadCurveSets(CNvxFile& file, std::uint32_t count, std::uint32_t size,
                   const std::function<void(std::unique_ptr<CCurveData>)>& take) {
  const std::uint32_t start = file.GetPosition();
  const StreamBlock block(file, size);
  if (!block.IsWhole()) return Refuse(file, "VD curves: byte count beyond the end");
  std::uint32_t offset = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    const auto length = LengthOfSet(block.Data() + offset, size - offset);
    if (!length) return RefuseAt(file, std::uint64_t{start} + offset, "VD curves: a set leads outside their bytes");
    // A stream that is only read leaves its block alone.
    CNvxMemFile set(const_cast<std::uint8_t*>(block.Data()) + offset, *length);
    set.SetDiagnosis(file.GetDiagnosis());
    const DiagnosisScope scope(file.GetDiagnosis(), std::uint64_t{start} + offset,
                               [&] { return "VD curves " + std::to_string(i + 1); });
    std::unique_ptr<CCurveData> curves = LoadSet(set);
    if (!curves) return false;
    if (set.HasPassedOver()) file.NotePassedOver();
    take(std::move(curves));
    offset += *length;
  }
  return true;
}

std::optional<std::uint64_t> ListedCurveSetSize(CCurveData& set) {
  std::optional<std::uint32_t> curveSize;
  for (CCurveDataEntry* const curve : set.Curves()) {
    const std::uint32_t size = curve->GetSize();
    if (!HasKnownType(curve) || size != curveSize.value_or(size)) return std::nullopt;
    curveSize = size;
  }
  return SizeOf([&](CNvxFile& file) { return CCurveFile().SaveFile(file, &set); });
}

}  // namespace nvx
