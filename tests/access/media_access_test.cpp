#include "support/entry_bytes.h"
#include "support/media_builder.h"

#include <nvxprofile/media_property.h>
#include <nvxprofile/profile_access.h>

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace nvx::test {
namespace {

using Values = std::vector<std::int32_t>;

// Opens what is protected.
class Access : public CProfileAccess {
 public:
  using CProfileAccess::GetMediaPropertyData;
};

bool InitWith(CProfileAccess& access, const std::vector<MediaBlock>& blocks) {
  return InitFromEntries(access, {{16, 8, MediaForm(blocks)}});
}

TEST(MediaAccess, FillsAsManyHeatersAsTheBlockHas) {
  const auto heaters = [](const std::vector<MediaBlock>& blocks, bool& found, CError& error) {
    CProfileAccess access;
    EXPECT_TRUE(InitWith(access, blocks));
    std::array<std::int32_t, 4> values{7, 7, 7, 7};
    found = access.GetHeaterTemperature(values[0], values[1], values[2], values[3], &error);
    return values;
  };
  using Four = std::array<std::int32_t, 4>;
  const Values values{40, 50, 60, 70, 80};
  const Four expected[] = {{40, 50, -1, -1}, {40, -1, -1, -1}, {40, 50, -1, -1},
                           {40, 50, 60, -1}, {40, 50, 60, 70}, {-1, -1, -1, -1}};
  bool found = false;
  for (std::uint32_t count = 0; count < std::size(expected); ++count) {
    CError error;
    EXPECT_EQ(heaters({{2, count, values}}, found, error), expected[count]) << count;
    EXPECT_TRUE(found);
  }
}

TEST(MediaAccess, CommonReaderTellsWhatIsWrongWithAnEntry) {
  Access access;
  CError error;
  Values values(16, 77);
  EXPECT_EQ(access.GetMediaPropertyData(nullptr, 1, values.data(), &error), -1);
  ExpectError(error, 0x08008002, u"Profile:Parameter none(media property)");
  const std::unique_ptr<CProfileDataEntry> info(CProfileDataEntry::CreateDataEntry(CProfileDataEntry::kInfo));
  EXPECT_EQ(access.GetMediaPropertyData(info.get(), 1, values.data(), &error), -1);
  ExpectError(error, 0x08008001, u"Profile: Entry format error(not media property). Entry type = 14");
  CMediaPropertyEntry entry;
  EXPECT_EQ(access.GetMediaPropertyData(&entry, 1, values.data(), &error), -1);
  ExpectError(error, 0x08008001, u"Profile: Media property format error(not media property). Entry type = 16");
  entry.GetMediaPropertyData()->AddTail(CMediaPropertyDataEntry::CreateMediaPropertyDataEntry(12, 3));
  EXPECT_EQ(access.GetMediaPropertyData(&entry, 12, values.data(), &error), 0);
  EXPECT_EQ(values, Values(16, 77));
}

}  // namespace
}  // namespace nvx::test
