// Sequences of random operations on a model; see support/model_machine.h.
#include "support/files.h"
#include "support/model_machine.h"

#include "platform/locale.h"

#include <gtest/gtest.h>

#include <random>

namespace {

TEST(ModelProperty, NothingIsLostUnderATrueResultAndNothingChangesUnderAFalseOne) {
  const nvx::test::TempFolder folder;
  for (std::uint32_t seed = 0; seed < 60; ++seed) {
    std::mt19937 random(seed);
    nvx::test::ModelMachine machine(
        [&](std::uint32_t bound) { return std::uniform_int_distribution<std::uint32_t>(0, bound - 1)(random); },
        nvx::platform::Utf8ToWide(folder.Path().string()));
    for (int step = 0; step < 60; ++step) {
      const std::string broken = machine.Step();
      ASSERT_EQ(broken, "") << "seed " << seed << ", step " << step;
    }
  }
}

}  // namespace
