#include "core/byte_order.h"

#include <nvxprofile/icc_profile.h>

#include <cmath>
#include <cstring>

CICCProfileBufferAccess::~CICCProfileBufferAccess() = default;

std::uint8_t CICCProfileBufferAccess::ReadUInt8() {
  std::memset(scratch_, 0, sizeof scratch_);
  Read(scratch_, 1);
  return scratch_[0];
}

std::uint16_t CICCProfileBufferAccess::ReadUInt16() {
  std::memset(scratch_, 0, sizeof scratch_);
  Read(scratch_, 2);
  return nvx::LoadBig<std::uint16_t>(scratch_);
}

std::uint32_t CICCProfileBufferAccess::ReadUInt32() {
  std::memset(scratch_, 0, sizeof scratch_);
  Read(scratch_, 4);
  return nvx::LoadBig<std::uint32_t>(scratch_);
}

double CICCProfileBufferAccess::ReadS15Fixed16() { return static_cast<std::int32_t>(ReadUInt32()) * 1.52587890625e-5; }

void CICCProfileBufferAccess::WriteUInt8(std::uint8_t value) { Write(&value, 1); }

void CICCProfileBufferAccess::WriteUInt16(std::uint16_t value) {
  nvx::StoreBig(scratch_, value);
  Write(scratch_, 2);
}

void CICCProfileBufferAccess::WriteUInt32(std::uint32_t value) {
  nvx::StoreBig(scratch_, value);
  Write(scratch_, 4);
}

void CICCProfileBufferAccess::WriteS15Fixed16(double value) {
  constexpr double kLimit = 2147483648.0;
  const double product = value * 65536.0;
  const double units = std::ceil(product);
  if (!(product >= -kLimit && units < kLimit)) return;
  WriteUInt32(static_cast<std::uint32_t>(static_cast<std::int32_t>(units)));
}
