// The entries that hold curve sets.
#pragma once

#include <nvxprofile/curve.h>
#include <nvxprofile/export.h>
#include <nvxprofile/profile_entry.h>

#include <cstdint>
#include <vector>

// The base of the curve entries: a curve set whose form (docs/formats/curve_set.md) is the entry's buffer. A changed
// set reaches the buffer through DataToBuffer alone.
class NVX_EXPORT CProfileCurveEntry : public CProfileDataEntry {
 public:
  CProfileCurveEntry() = default;
  ~CProfileCurveEntry() override;

  // The curve set, which stays the entry's, open to changes and for reading alone.
  CDataObject* GetFormatData() override;
  CCurveData* GetCurveData() {
    OpenPayload();
    return &curves_;
  }
  const CCurveData* GetCurveData() const { return &curves_; }

  // Gives each curve of this entry the samples of the first curve of the source with its ink and ExtendInfo, in the
  // sample width of this entry (CCurveDataEntry::CopyData), and takes the source's label. A source without curves
  // changes the label alone. False if a curve has no partner, with the curves before changed and the label left. False
  // with nothing changed for a source that is no CProfileCurveEntry, and if the buffer of either entry is unread or was
  // read in part.
  bool DoImport(CProfileDataEntry* source) override;

  // Renews the curve set from the buffer. Curves got before, and their samples, are invalid from then on; curves that
  // are only borrowed (auto-delete off) are let go and never touched, and the new ones are then the caller's to
  // destroy. False for an empty buffer, with the set as it was, and for a form that CCurveFile::LoadFile refuses, with
  // the curves before the fault in the set.
  bool BufferToData() override;

  // Writes the curve set into a new buffer of exactly its size; false, with the old buffer, for a form beyond 4 GiB and
  // for a buffer that is unread or was read in part.
  bool DataToBuffer() override;

  CProfileCurveEntry* AsCurveEntry() override;

  // Makes all samples count as 16 bits, whatever the form said, as those of the current generation of profiles do: the
  // curves get DataType 2, and the buffer is rebuilt. A buffer that was read in part keeps its bytes; its curves get
  // DataType 2 after each BufferToData. False if the buffer cannot be rebuilt.
  bool TakeSamplesAs16Bit();

 protected:
  explicit CProfileCurveEntry(UsedType usedType) : CProfileDataEntry(usedType, kFormatCurve, true) {}

 private:
  void MakeCurves16Bit();

  CCurveData curves_;
  bool takes16Bit_ = false;
};

// Entry type 2: how much of an ink the medium takes.
class NVX_EXPORT CInkLimitEntry : public CProfileCurveEntry {
 public:
  CInkLimitEntry() : CProfileCurveEntry(kInkLimit) {}
};

// Entry type 6: which amount of ink each tone takes.
class NVX_EXPORT CLinearizationEntry : public CProfileCurveEntry {
 public:
  CLinearizationEntry() : CProfileCurveEntry(kLinearization) {}
};

// Entry type 17: curves by ink and ExtendInfo.
class NVX_EXPORT CMultiInkLimitEntry : public CProfileCurveEntry {
 public:
  CMultiInkLimitEntry() : CProfileCurveEntry(kMultiInkLimit) {}
};

// Curves of ink 0: ExtendInfo 2 under colour removal, ExtendInfo 1 black generation.
class NVX_EXPORT CUcrEntry : public CProfileCurveEntry {
 public:
  CUcrEntry() : CProfileCurveEntry(kUcr) {}
};

// Entry type 5: how a tone is shared between an ink and its light one.
class NVX_EXPORT CSeparateLightEntry : public CProfileCurveEntry {
 public:
  CSeparateLightEntry() : CProfileCurveEntry(kSeparateLight) {}

  // As in the base, but ExtendInfo plays no part.
  bool DoImport(CProfileDataEntry* source) override;
};

namespace nvx {

// A curve entry that sees its option info word as four bytes.
class NVX_EXPORT ByteOptionCurveEntry : public CProfileCurveEntry {
 public:
  // The bytes, from the highest to the lowest.
  std::uint8_t GetOptionInfoHH() { return OptionByte(24); }
  std::uint8_t GetOptionInfoHL() { return OptionByte(16); }
  std::uint8_t GetOptionInfoLH() { return OptionByte(8); }
  std::uint8_t GetOptionInfoLL() { return OptionByte(0); }

  using CProfileDataEntry::SetOptionInfo;
  // From the lowest byte to the highest.
  void SetOptionInfo(std::uint8_t ll, std::uint8_t lh, std::uint8_t hl, std::uint8_t hh) {
    SetOptionInfo(std::uint32_t{hh} << 24 | std::uint32_t{hl} << 16 | std::uint32_t{lh} << 8 | std::uint32_t{ll});
  }

 protected:
  using CProfileCurveEntry::CProfileCurveEntry;

 private:
  std::uint8_t OptionByte(int shift) { return static_cast<std::uint8_t>(GetOptionInfo() >> shift); }
};

}  // namespace nvx

// Entry type 4: curves of variable dots, by ink and ExtendInfo.
class NVX_EXPORT CVariableEntry : public nvx::ByteOptionCurveEntry {
 public:
  CVariableEntry() : ByteOptionCurveEntry(kVariable) {}
};

// Entry type 3: ink limits of variable dots, by ink and ExtendInfo.
class NVX_EXPORT CVariableInkLimitEntry : public nvx::ByteOptionCurveEntry {
 public:
  CVariableInkLimitEntry() : ByteOptionCurveEntry(kVariableInkLimit) {}
};

// Entry type 7: at which samples of the linearization the inks together are gray.
class NVX_EXPORT CGrayBalanceEntry : public CProfileCurveEntry {
 public:
  CGrayBalanceEntry() : CProfileCurveEntry(kGrayBalance) {}
  ~CGrayBalanceEntry() override;

  // The option info as two words, the high and the low one.
  std::uint16_t GetOptionInfoHW() { return static_cast<std::uint16_t>(GetOptionInfo() >> 16); }
  std::uint16_t GetOptionInfoLW() { return static_cast<std::uint16_t>(GetOptionInfo()); }

  using CProfileDataEntry::SetOptionInfo;
  // The low word comes first.
  void SetOptionInfo(std::uint16_t lw, std::uint16_t hw) { SetOptionInfo(std::uint32_t{hw} << 16 | std::uint32_t{lw}); }

  // Coordinates. An index without an element reads as 0 and takes nothing.
  std::uint16_t GetCoordCol(std::uint16_t index);
  std::uint16_t GetCoordRow(std::uint16_t index);
  void SetCoord(std::uint16_t index, std::uint16_t row, std::uint16_t col);
  bool IsArrayEnpty();

 protected:
  // The column in the low 16 bits, the row in the high ones. Whoever derives gives the array its size.
  std::vector<std::uint32_t>& Coordinates() { return coordinates_; }

 private:
  std::vector<std::uint32_t> coordinates_;
};
