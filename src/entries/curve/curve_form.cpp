#include "entries/curve/curve_form.h"

#include <cstring>
#include <typeinfo>

namespace nvx {

namespace {

// Decodes the numbers of a record and passes over its texts.
class NumberDecoder : public RecordDecoder {
 public:
  using RecordDecoder::RecordDecoder;
  template <class Char>
  void Text(FieldName, Char*, std::size_t width) {
    Reserved(width * sizeof(Char));
  }
};

}  // namespace

// Takes the curves of a set in order for new contents. The first one that does not have the class and size that are
// asked for, and all behind it, give way to new ones. Curves that were not asked for are gone at the end.
class CurveSetRefill {
 public:
  explicit CurveSetRefill(CCurveData& set) : set_(set) {
    if (!set.IsAutoDelete()) set.DeleteContents();
  }
  CurveSetRefill(const CurveSetRefill&) = delete;
  CurveSetRefill& operator=(const CurveSetRefill&) = delete;
  ~CurveSetRefill() { DropRest(); }

  // Room for that many curves.
  void Expect(std::uint32_t count) { set_.curves_.Reserve(count); }

  // Makes the next curve of the set that of the record; `nameField` is the name as the form holds it.
  void Fill(const CurveRecord& record, const char* nameField, const std::uint8_t* samples) {
    CCurveDataEntry* const present = set_.curves_.At(taken_);
    const bool fits = present != nullptr && HasShape(*present, record);
    CCurveDataEntry& curve = fits ? *present : Replace(record);
    ++taken_;
    LoadSamples(record, samples, fits ? curve.GetRefBuffer() : curve.GetBuffer(record.DataSize));
    ApplyNumbers(record, curve);
    // A copy of fixed size is the fastest; what stands behind the terminator is nobody's concern.
    static_assert(kCurveNameSize <= sizeof curve.inkName_);
    std::memcpy(curve.inkName_, nameField, kCurveNameSize);
    curve.inkName_[kCurveNameSize - 1] = 0;
    set_.dataSizeType_ = record.DataType;
  }

 private:
  static bool HasShape(CCurveDataEntry& curve, const CurveRecord& record) {
    const std::type_info& wanted = HoldsBytes(record) ? typeid(CCurveDataEntry8) : typeid(CCurveDataEntry16);
    return typeid(curve) == wanted && curve.GetSize() == record.DataSize;
  }

  CCurveDataEntry& Replace(const CurveRecord& record) {
    DropRest();
    CCurveDataEntry* const curve = MakeCurve(record).release();
    set_.AddTail(curve);
    return *curve;
  }

  void DropRest() {
    while (set_.curves_.Count() > taken_) set_.curves_.TakeAt(set_.curves_.Count() - 1);
  }

  CCurveData& set_;
  std::size_t taken_ = 0;
};

bool ReloadCurveSet(CNvxMemFile& file, CCurveData& set) {
  CurveSetRefill curves(set);
  tagCurveFileHeader header;
  if (!ReadCurveSetHeader(file, header)) return false;
  set.SetUsedType(header.UsedType);
  CurveTable table;
  if (!table.Read(file, header.EntryCount)) return false;
  curves.Expect(table.Count());
  for (std::uint32_t i = 0; i < table.Count(); ++i) {
    const CurveRecord record = table.NumbersAt(i);
    const std::uint32_t left = file.Length - file.Position;
    if (left < kCurveBlockMagicSize) return Refuse(file, "curve data block: cut short");
    const std::uint8_t* const block = file.Buffer + file.Position;
    const char* const fault = CurveFault(record, LoadLittle<std::uint32_t>(block), left - kCurveBlockMagicSize);
    if (fault != nullptr) return Refuse(file, fault);
    const char* const name = table.NameFieldAt(i);
    if (name[kCurveNameSize - 1] != 0) PassOver(file, "curve record: name without its end, cut to 91 characters");
    curves.Fill(record, name, block + kCurveBlockMagicSize);
    file.Position += kCurveBlockMagicSize + record.DataSize;
  }
  return true;
}

bool ReadCurveSetHeader(CNvxFile& file, tagCurveFileHeader& header) {
  file.SeekToBegin();
  return ReadChecked(file, header);
}

bool CurveTable::Read(CNvxFile& file, std::uint32_t count) {
  constexpr std::uint32_t kStart = kRecordSize<tagCurveFileHeader>;
  constexpr const char* kTable = "curve records";
  if (!SeekTo(file, kStart)) return RefuseCount(file, kTable);
  return RecordTable::Read(file, count, kTable) && Check(file);
}

CurveRecord CurveTable::NumbersAt(std::uint32_t index) const {
  CurveRecord record;
  NumberDecoder decoder(BytesAt(index));
  CurveRecord::Describe(record, decoder);
  return record;
}

const char* CurveTable::NameFieldAt(std::uint32_t index) const {
  return reinterpret_cast<const char*>(BytesAt(index) + kSize - kCurveNameSize);
}

const char* CurveFault(const CurveRecord& record, std::uint32_t signature, std::uint32_t left) {
  if (signature != kCurveBlockMagic) return "curve data block: wrong signature";
  if (record.DataType != CCurveDataEntry::kSamples8 && record.DataType != CCurveDataEntry::kSamples16) {
    return "curve record: unknown DataType";
  }
  return record.DataSize <= left ? nullptr : "curve record: data size beyond the end";
}

bool HasKnownType(const CCurveDataEntry* curve) {
  return curve->GetDataType() == CCurveDataEntry::kSamples8 || curve->GetDataType() == CCurveDataEntry::kSamples16;
}

bool HoldsBytes(const CurveRecord& record) {
  return record.DataType == CCurveDataEntry::kSamples8 || record.DataSize % 2 != 0;
}

std::unique_ptr<CCurveDataEntry> MakeCurve(const CurveRecord& record) {
  if (HoldsBytes(record)) return std::make_unique<CCurveDataEntry8>();
  return std::make_unique<CCurveDataEntry16>();
}

void LoadSamples(const CurveRecord& record, const std::uint8_t* samples, void* array) {
  if (!HoldsBytes(record)) {
    LoadLittleRun(static_cast<std::uint16_t*>(array), samples, record.DataSize / 2);
  } else if (record.DataSize != 0) {
    std::memcpy(array, samples, record.DataSize);
  }
}

void FillRecord(CCurveDataEntry& curve, CurveRecord& record) {
  record.InkID = curve.GetInkID();
  record.SlotNo = curve.GetSlotNo();
  record.DisplayRGB = curve.GetDisplayRGB();
  record.ExtendInfo = curve.GetExtendInfo();
  record.Max = curve.GetMax();
  record.Min = curve.GetMin();
  record.DataType = curve.GetDataType();
  record.DataSize = curve.GetSize();
  CopyText(record.InkName, TextOf(curve.GetInkName()));
}

void ApplyNumbers(const CurveRecord& record, CCurveDataEntry& curve) {
  curve.SetInkID(record.InkID);
  curve.SetSlotNo(record.SlotNo);
  curve.SetDisplayRGB(record.DisplayRGB);
  curve.SetExtendInfo(record.ExtendInfo);
  curve.SetMax(record.Max);
  curve.SetMin(record.Min);
  curve.SetDataType(record.DataType);
}

}  // namespace nvx
