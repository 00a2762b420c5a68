// What a curve query takes of the heap.
#include "memory/heap.h"
#include "support/curve_builder.h"
#include "support/entry_bytes.h"

#include <nvxprofile/profile_access.h>

#include <gtest/gtest.h>

namespace {

namespace heap = nvx::test::heap;
using nvx::test::ByteBuilder;

TEST(CurveQueryMemory, ARepeatedQueryAllocatesNothing) {
  constexpr std::uint32_t kInks = 16;
  constexpr std::uint32_t kSamples = 256;
  ByteBuilder form = nvx::test::CurveSetHeader(6, kInks);
  for (std::uint32_t ink = 0; ink < kInks; ++ink) {
    form.Append(nvx::test::CurveHeader({.ink = ink, .type = 2, .size = 2 * kSamples, .name = "Orange"}));
  }
  for (std::uint32_t ink = 0; ink < kInks; ++ink) {
    form.Text("SDEC");
    for (std::uint32_t i = 0; i < kSamples; ++i) form.U16(256 * ink + i);
  }
  CProfileAccess access;
  ASSERT_TRUE(nvx::test::InitFromEntries(access, {{6, 6, form}}));
  CError error;
  int size = 0;
  int type = 0;
  heap::ResetCount();
  for (std::uint32_t ink = 0; ink < kInks; ++ink) {
    const auto* const samples = static_cast<std::uint16_t*>(access.GetLinearization(ink, size, type, &error));
    ASSERT_NE(samples, nullptr);
    EXPECT_EQ(samples[kSamples - 1], 256 * ink + kSamples - 1);
  }
  EXPECT_EQ(heap::Count(), 0u);
}

}  // namespace
