#include "entries/curve/curve_form.h"

#include <cstring>
#include <typeinfo>

namespace nvx {

// Takes the curves of a set in order for new contents. The first one that does not have the class and size that are
// asked for, and all behind it, give way to new ones. Curves that were not asked for are gone at the end.
class CurveSetRefill {
 public:
  explicit CurveSetRefill(CCurveData& set) : set_(set) {
    if (!set.IsAutoDelete()) set.DeleteContents();
    set.curves_.Head();
  }
  CurveSetRefill(const CurveSetRefill&) = delete;
  CurveSetRefill& operator=(const CurveSetRefill&) = delete;
  ~CurveSetRefill() { DropRest(); }

  CCurveDataEntry& Next(CCurveDataEntry::typeData type, std::uint32_t size) {
    CCurveDataEntry* curve = set_.curves_.At(taken_);
    if (curve != nullptr && HasShape(*curve, type, size)) {
      set_.dataSizeType_ = type;
    } else {
      DropRest();
      curve = CCurveDataEntry::CreateCurveDataEntry(type);
      set_.AddTail(curve);
    }
    ++taken_;
    return *curve;
  }

 private:
  static bool HasShape(CCurveDataEntry& curve, CCurveDataEntry::typeData type, std::uint32_t size) {
    const std::type_info& wanted =
        type == CCurveDataEntry::kSamples8 ? typeid(CCurveDataEntry8) : typeid(CCurveDataEntry16);
    return typeid(curve) == wanted && curve.GetSize() == size;
  }

  void DropRest() {
    while (set_.curves_.Count() > taken_) delete set_.curves_.TakeAt(set_.curves_.Count() - 1);
  }

  CCurveData& set_;
  std::size_t taken_ = 0;
};

std::uint64_t CurveSetSize(CCurveData& set) {
  std::uint64_t size = kRecordSize<tagCurveFileHeader>;
  bool more = set.GetHeadPosition();
  while (more) size += std::uint64_t{kRecordSize<CurveRecord>} + kCurveBlockMagicSize + set.GetNext(more)->GetSize();
  return size;
}

bool ReloadCurveSet(CNvxFile& file, CCurveData& set) {
  CurveSetRefill curves(set);
  tagCurveFileHeader header;
  if (!ReadCurveSetHeader(file, header)) return false;
  set.SetUsedType(header.UsedType);
  CurveTable table;
  if (!table.Read(file, header.EntryCount)) return false;
  for (std::uint32_t i = 0; i < table.Count(); ++i) {
    const CurveRecord record = table.At(i);
    if (!EnterCurveBlock(file, record)) return false;
    CCurveDataEntry& curve = curves.Next(static_cast<CCurveDataEntry::typeData>(record.DataType), record.DataSize);
    if (!ReadCurve(file, record, curve)) return false;
  }
  return true;
}

bool ReadCurveSetHeader(CNvxFile& file, tagCurveFileHeader& header) {
  file.SeekToBegin();
  if (!ReadRecord(file, header)) return Refuse(file, "curve set header: cut short");
  if (header.Signature != tagCurveFileHeader::kSignature) return Refuse(file, "curve set header: wrong signature");
  if (header.Version != tagCurveFileHeader::kVersion) return Refuse(file, "curve set header: wrong version");
  return true;
}

bool CurveTable::Read(CNvxFile& file, std::uint32_t count) {
  constexpr std::uint32_t kStart = kRecordSize<tagCurveFileHeader>;
  constexpr std::uint32_t kSize = kRecordSize<CurveRecord>;
  count_ = 0;
  if (file.Seek(kStart, kFromBegin) != kStart || !Holds(file, count, kSize)) {
    return Refuse(file, "curve set header: entry count beyond the end");
  }
  bytes_.emplace(file, count * kSize);
  if (!bytes_->IsWhole()) return Refuse(file, "curve records: cut short");
  for (std::uint32_t i = 0; i < count; ++i) {
    if (LoadLittle<std::uint32_t>(bytes_->Data() + i * kSize) != CurveRecord::kSignature) {
      return RefuseAt(file, kStart + std::uint64_t{i} * kSize, "curve record: wrong signature");
    }
  }
  count_ = count;
  return true;
}

CurveRecord CurveTable::At(std::uint32_t index) const {
  return DecodeRecord<CurveRecord>(bytes_->Data() + index * kRecordSize<CurveRecord>);
}

bool EnterCurveBlock(CNvxFile& file, const CurveRecord& record) {
  if (!ReadMagic(file, kCurveBlockMagic)) return Refuse(file, "curve data block: wrong signature or cut short");
  if (record.DataType != CCurveDataEntry::kSamples8 && record.DataType != CCurveDataEntry::kSamples16) {
    return Refuse(file, "curve record: unknown DataType");
  }
  // Half a sample has no place in the curve, and without it the curve could not be written back as it was.
  if (record.DataType == CCurveDataEntry::kSamples16 && record.DataSize % 2 != 0) {
    return Refuse(file, "curve record: odd data size of 16-bit samples");
  }
  return Holds(file, record.DataSize, 1) || Refuse(file, "curve record: data size beyond the end");
}

bool ReadCurve(CNvxFile& file, const CurveRecord& record, CCurveDataEntry& curve) {
  const StreamBlock block(file, record.DataSize);
  if (!block.IsWhole()) return Refuse(file, "curve data block: cut short");
  ApplyRecord(record, curve);
  if (record.DataSize == 0) {
    curve.DeleteAllElement();
    return true;
  }
  void* const samples = curve.GetSize() == record.DataSize ? curve.GetRefBuffer() : curve.GetBuffer(record.DataSize);
  if (record.DataType == CCurveDataEntry::kSamples16) {
    LoadLittleRun(static_cast<std::uint16_t*>(samples), block.Data(), record.DataSize / 2);
  } else {
    std::memcpy(samples, block.Data(), record.DataSize);
  }
  return true;
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

void ApplyRecord(const CurveRecord& record, CCurveDataEntry& curve) {
  curve.SetInkID(record.InkID);
  curve.SetSlotNo(record.SlotNo);
  curve.SetDisplayRGB(record.DisplayRGB);
  curve.SetExtendInfo(record.ExtendInfo);
  curve.SetMax(record.Max);
  curve.SetMin(record.Min);
  curve.SetDataType(record.DataType);
  curve.SetInkName(record.InkName);
}

}  // namespace nvx
