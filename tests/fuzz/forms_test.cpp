// The mutator of the fuzz targets is worth nothing if it cannot take the seeds apart.
#include "../../fuzz/forms.h"
#include "support/files.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nvx::fuzz {
namespace {

Bytes Seed(const char* name) { return test::ReadBytes(std::string(NVXPROFILE_SOURCE_FOLDER "/fuzz/corpus/") + name); }

struct SeedOfForm {
  const char* seed;
  const Form& (*form)();
  std::size_t parts;
};

class FuzzForms : public testing::TestWithParam<SeedOfForm> {};

std::vector<Bytes> BodiesOf(const Parts& parts) {
  std::vector<Bytes> bodies;
  for (const Part& part : parts.parts) bodies.push_back(part.body);
  bodies.push_back(parts.rest);
  return bodies;
}

TEST_P(FuzzForms, AreTakenApartAndPutTogetherAgain) {
  const Form& form = GetParam().form();
  const Bytes seed = Seed(GetParam().seed);
  const auto parts = form.Split(seed);
  ASSERT_TRUE(parts);
  EXPECT_EQ(parts->parts.size(), GetParam().parts);
  const auto again = form.Split(form.Join(*parts));
  ASSERT_TRUE(again);
  EXPECT_EQ(BodiesOf(*again), BodiesOf(*parts));
}

TEST_P(FuzzForms, FitAgainAfterABodyGrew) {
  auto parts = GetParam().form().Split(Seed(GetParam().seed));
  ASSERT_TRUE(parts);
  const std::size_t count = parts->parts.size();
  for (Part& part : parts->parts) part.body.insert(part.body.end(), 8, 7);
  const auto again = GetParam().form().Split(GetParam().form().Join(*parts));
  ASSERT_TRUE(again);
  EXPECT_EQ(again->parts.size(), count);
}

INSTANTIATE_TEST_SUITE_P(
    Seeds, FuzzForms,
    testing::Values(
        SeedOfForm{"calibration/history", CalibrationForm, 3}, SeedOfForm{"container/nested", ContainerForm, 11},
        SeedOfForm{"curve/two", CurveSetForm, 2}, SeedOfForm{"icc_image/description", IccForm, 1},
        SeedOfForm{"large_parameter/both", LargeParameterForm, 2}, SeedOfForm{"mask/parameters", MaskParameterForm, 2},
        SeedOfForm{"mask/patterns", MaskPatternForm, 3}, SeedOfForm{"mask_download/blocks", MaskDownloadForm, 3},
        SeedOfForm{"mask_download/patterns", MaskDownloadForm, 1},
        SeedOfForm{"media_property/all", MediaPropertyForm, 11}, SeedOfForm{"qpf/nested", QpfForm, 8},
        SeedOfForm{"special_color/two", SpecialColorForm, 2}, SeedOfForm{"text_header/both", TextHeadedForm, 2}),
    [](const auto& test) {
      std::string name = test.param.seed;
      name[name.find('/')] = '_';
      return name;
    });

// Forms at all levels of the bytes, this one included.
std::size_t CountForms(const Form& form, View bytes) {
  const auto parts = form.Split(bytes);
  EXPECT_TRUE(parts);
  if (!parts) return 0;
  std::size_t count = 1;
  const auto add = [&](Nested nested, const Bytes& within) {
    if (nested.form && nested.offset < within.size())
      count += CountForms(*nested.form, View(within).subspan(nested.offset));
  };
  for (std::size_t i = 0; i < parts->parts.size(); ++i) add(form.InBody(*parts, i), parts->parts[i].body);
  add(form.InRest(), parts->rest);
  return count;
}

TEST(FuzzFormsInside, AreFoundAtAllLevels) {
  // A history counts as nine: itself, two calibrations, three curve sets in each of them.
  EXPECT_EQ(CountForms(ContainerForm(), Seed("container/nested")), 20u);
  EXPECT_EQ(CountForms(QpfForm(), Seed("qpf/nested")), 22u);
}

}  // namespace
}  // namespace nvx::fuzz
