// Curves and curve sets in memory.
#include "core/byte_order.h"
#include "core/text.h"

#include <nvxprofile/curve.h>

#include <algorithm>
#include <bitset>
#include <cstring>
#include <memory>

namespace {

template <class Sample>
bool ReadSample(const std::vector<Sample>& samples, std::uint32_t index, std::uint32_t& value) {
  if (index >= samples.size()) return false;
  value = samples[index];
  return true;
}

template <class Sample>
bool WriteSample(std::vector<Sample>& samples, std::uint32_t index, std::uint32_t value) {
  if (index >= samples.size()) return false;
  samples[index] = static_cast<Sample>(value);
  return true;
}

// GetInkID gives 8 bits, so 256 flags say of every ink whether it is listed.
using InkFlags = std::bitset<256>;

InkFlags FlagsOf(const std::uint32_t* inks, int count) {
  InkFlags flags;
  for (int i = 0; inks != nullptr && i < count; ++i) {
    if (inks[i] < flags.size()) flags.set(inks[i]);
  }
  return flags;
}

}  // namespace

CCurveDataEntry* CCurveDataEntry::CreateCurveDataEntry(typeData type) {
  if (type == kSamples8) return new CCurveDataEntry8;
  if (type == kSamples16) return new CCurveDataEntry16;
  return nullptr;
}

CCurveDataEntry::~CCurveDataEntry() = default;

void CCurveDataEntry::Delete() { delete this; }

std::uint32_t CCurveDataEntry::MaxValueChk(float value) {
  if (!(value > 0.0f)) return 0;
  return static_cast<std::uint32_t>(std::min(value, GetMaxBitValue()));
}

void* CCurveDataEntry::GetRefBuffer() { return nullptr; }
std::uint32_t CCurveDataEntry::GetSize() { return 0; }
void* CCurveDataEntry::GetBuffer(std::uint32_t) { return nullptr; }
void CCurveDataEntry::DeleteAllElement() {}
std::uint32_t CCurveDataEntry::GetCount() { return 0; }
std::uint32_t CCurveDataEntry::Add(std::uint32_t) { return 0; }
bool CCurveDataEntry::GetAt(std::uint32_t, std::uint32_t&) { return false; }
bool CCurveDataEntry::SetAt(std::uint32_t, std::uint32_t) { return false; }
void CCurveDataEntry::CopyData(CCurveDataEntry*) {}

void CCurveDataEntry::SetInkName(const char* name) {
  // What stands behind the terminator is of no interest, so it is not cleared: this runs for each curve of each query.
  const std::size_t length = name != nullptr ? ::strnlen(name, kInkNameLength - 1) : 0;
  if (length != 0) std::memmove(inkName_, name, length);
  inkName_[length] = 0;
}

void CCurveDataEntry::Copy(CCurveDataEntry& target) {
  if (&target == this) return;
  target.DeleteAllElement();
  target.displayRgb_ = displayRgb_;
  target.extendInfo_ = extendInfo_;
  target.inkId_ = inkId_;
  target.max_ = max_;
  target.min_ = min_;
  target.slotNo_ = slotNo_;
  target.SetInkName(inkName_);
  CopyData(&target);
}

CCurveDataEntry8::~CCurveDataEntry8() = default;

void* CCurveDataEntry8::GetRefBuffer() { return samples_.data(); }
std::uint32_t CCurveDataEntry8::GetSize() { return GetCount(); }

void* CCurveDataEntry8::GetBuffer(std::uint32_t size) {
  samples_.assign(size, 0);
  return samples_.data();
}

void CCurveDataEntry8::DeleteAllElement() { samples_.clear(); }
std::uint32_t CCurveDataEntry8::GetCount() { return static_cast<std::uint32_t>(samples_.size()); }
float CCurveDataEntry8::GetMaxBitValue() { return 255.0f; }

std::uint32_t CCurveDataEntry8::Add(std::uint32_t value) {
  samples_.push_back(static_cast<std::uint8_t>(value));
  return GetCount();
}

bool CCurveDataEntry8::GetAt(std::uint32_t index, std::uint32_t& value) { return ReadSample(samples_, index, value); }
bool CCurveDataEntry8::SetAt(std::uint32_t index, std::uint32_t value) { return WriteSample(samples_, index, value); }

void CCurveDataEntry8::CopyData(CCurveDataEntry* target) {
  if (auto* const narrow = dynamic_cast<CCurveDataEntry8*>(target)) {
    narrow->samples_ = samples_;
    narrow->SetMax(GetMax());
    narrow->SetMin(GetMin());
  } else if (GetDataType() == kSamples16) {
    CopyData16BitTo16BitCurve(target);
  } else {
    CopyDataTo16BitCurve(target);
  }
}

bool CCurveDataEntry8::CopyDataTo16BitCurve(CCurveDataEntry* target) {
  constexpr std::uint32_t kWiden = 0x101;
  auto* const wide = dynamic_cast<CCurveDataEntry16*>(target);
  if (wide == nullptr) return false;
  auto* const samples = static_cast<std::uint16_t*>(wide->GetBuffer(2 * GetCount()));
  std::transform(samples_.begin(), samples_.end(), samples,
                 [](std::uint8_t sample) { return static_cast<std::uint16_t>(sample * kWiden); });
  wide->SetMax(GetMax() * kWiden);
  wide->SetMin(GetMin() * kWiden);
  return true;
}

bool CCurveDataEntry8::CopyData16BitTo16BitCurve(CCurveDataEntry* target) {
  auto* const wide = dynamic_cast<CCurveDataEntry16*>(target);
  if (wide == nullptr) return false;
  const std::uint32_t count = GetCount() / 2;
  nvx::LoadLittleRun(static_cast<std::uint16_t*>(wide->GetBuffer(2 * count)), samples_.data(), count);
  if (GetCount() % 2 != 0) return false;
  wide->SetMax(GetMax());
  wide->SetMin(GetMin());
  return true;
}

CCurveDataEntry16::~CCurveDataEntry16() = default;

void* CCurveDataEntry16::GetRefBuffer() { return samples_.data(); }
std::uint32_t CCurveDataEntry16::GetSize() { return 2 * GetCount(); }

void* CCurveDataEntry16::GetBuffer(std::uint32_t size) {
  samples_.assign(size / 2, 0);
  return samples_.data();
}

void CCurveDataEntry16::DeleteAllElement() { samples_.clear(); }
std::uint32_t CCurveDataEntry16::GetCount() { return static_cast<std::uint32_t>(samples_.size()); }
float CCurveDataEntry16::GetMaxBitValue() { return 65535.0f; }

std::uint32_t CCurveDataEntry16::Add(std::uint32_t value) {
  samples_.push_back(static_cast<std::uint16_t>(value));
  return GetCount();
}

bool CCurveDataEntry16::GetAt(std::uint32_t index, std::uint32_t& value) { return ReadSample(samples_, index, value); }
bool CCurveDataEntry16::SetAt(std::uint32_t index, std::uint32_t value) { return WriteSample(samples_, index, value); }

void CCurveDataEntry16::CopyData(CCurveDataEntry* target) {
  auto* const wide = dynamic_cast<CCurveDataEntry16*>(target);
  if (wide == nullptr) return;
  wide->samples_ = samples_;
  wide->SetMax(GetMax());
  wide->SetMin(GetMin());
}

CCurveData::~CCurveData() { CCurveData::DeleteContents(); }

void CCurveData::DeleteContents() { IsAutoDelete() ? curves_.Clear() : curves_.LetGo(); }

bool CCurveData::AddTail(CCurveDataEntry* entry) {
  if (entry == nullptr) return false;
  if (IsAutoDelete()) {
    curves_.Append(std::unique_ptr<CCurveDataEntry>(entry));
  } else {
    curves_.AppendBorrowed(entry);
  }
  dataSizeType_ = entry->GetDataType();
  return true;
}

CCurveDataEntry* CCurveData::FindInkIDEntry(std::uint32_t inkId) {
  return curves_.Find([inkId](const CCurveDataEntry& curve) { return curve.GetInkID() == inkId; });
}

CCurveDataEntry* CCurveData::FindSlotNoEntry(std::uint32_t slotNo) {
  return curves_.Find([slotNo](const CCurveDataEntry& curve) { return curve.GetSlotNo() == slotNo; });
}

CCurveDataEntry* CCurveData::FindInkIDEntryonSize(std::uint32_t inkId, std::uint32_t extendInfo) {
  return curves_.Find([inkId, extendInfo](const CCurveDataEntry& curve) {
    return curve.GetInkID() == inkId && curve.GetExtendInfo() == extendInfo;
  });
}

void CCurveData::Copy(CCurveData& target, const std::uint32_t* skipList, int skipCount) {
  if (&target == this) return;
  const InkFlags skipped = FlagsOf(skipList, skipCount);
  target.DeleteContents();
  target.SetUsedType(GetUsedType());
  for (CCurveDataEntry* curve : curves_) {
    if (skipped.test(curve->GetInkID())) continue;
    std::unique_ptr<CCurveDataEntry> copy(
        CCurveDataEntry::CreateCurveDataEntry(static_cast<CCurveDataEntry::typeData>(curve->GetDataType())));
    if (!copy) continue;
    curve->Copy(*copy);
    target.AddTail(copy.release());
  }
}

void CCurveData::Copy(CCurveData& target) { Copy(target, nullptr, 0); }
