#include "icc/description.h"
#include "icc/icc_image.h"
#include "support/environment.h"
#include "support/icc_builder.h"

#include <gtest/gtest.h>
#include <nvxprofile/icc_profile.h>

#include <cmath>
#include <cstdlib>
#include <limits>

namespace nvx::test {
namespace {

bool Open(CICCProfile& profile, const Bytes& bytes, bool headerOnly = false) {
  return profile.OpenBuffer(bytes.data(), static_cast<std::uint32_t>(bytes.size()), headerOnly);
}

Bytes ImageOf(CICCProfile& profile) {
  Bytes image(profile.GetProfileSize());
  EXPECT_TRUE(profile.CopyImage(image.data(), static_cast<std::uint32_t>(image.size())));
  return image;
}

Bytes TagOf(const CICCProfile& profile, const char* tag) {
  std::uint32_t size = 0;
  const std::uint8_t* const bytes = profile.GetRefTag(tag, size);
  return Bytes(bytes, bytes + size);
}

TEST(IccProfile, OpensBuffersPathsAndStreamsOrHoldsNothing) {
  const TempFolder folder;
  const Bytes bytes = IccWithTags({"desc", "cprt"});
  WriteBytes(folder.File("a.icc"), bytes);
  CICCProfile profile;
  EXPECT_EQ(profile.GetColorSpace(), 0u);
  EXPECT_EQ(profile.GetProfileSize(), 0u);
  ASSERT_TRUE(profile.OpenPath(folder.WideFile("a.icc").c_str(), false));
  EXPECT_TRUE(profile.IsCMYK());
  EXPECT_EQ(ImageOf(profile), bytes);

  ASSERT_TRUE(Open(profile, bytes, true));
  EXPECT_TRUE(profile.IsCMYK());
  EXPECT_FALSE(profile.IsTagPresent("desc")) << "the header alone leaves no working copy";
  ASSERT_TRUE(profile.OpenPath(folder.WideFile("a.icc").c_str(), true));
  EXPECT_FALSE(profile.IsTagPresent("desc"));

  CNvxFile file;
  ASSERT_TRUE(file.Open(folder.WideFile("a.icc").c_str(), kGenericRead, kShareRead, kOpenExisting));
  ASSERT_TRUE(profile.OpenStream(file));
  EXPECT_EQ(ImageOf(profile), bytes);

  for (const std::u16string& path : {folder.WideFile("none"), folder.WideFile("."), std::u16string()}) {
    EXPECT_FALSE(profile.OpenPath(path.c_str(), false));
    EXPECT_FALSE(profile.IsTagPresent("desc")) << "a failed open has closed what was open";
  }
  EXPECT_FALSE(profile.OpenBuffer(nullptr, 0, false));
  EXPECT_TRUE(profile.IsCMYK()) << "the header copy stays";
  EXPECT_FALSE(profile.ReadHeader(nullptr));
  EXPECT_FALSE(profile.IsCMYK());
}

TEST(IccProfile, WithoutAWorkingCopyEverythingFails) {
  CICCProfile profile;
  std::uint32_t size = 7;
  std::uint8_t byte = 0;
  CNvxMemFile stream;
  const TempFolder folder;
  EXPECT_FALSE(profile.GetTag("desc", nullptr, size));
  EXPECT_EQ(size, 7u);
  EXPECT_FALSE(profile.SetTag("desc", &byte, 1));
  EXPECT_FALSE(profile.SetTag("desc", nullptr, 0));
  EXPECT_FALSE(profile.CopyImage(&byte, 1));
  EXPECT_FALSE(profile.WriteTo(stream));
  EXPECT_FALSE(profile.WriteToPath(folder.WideFile("x").c_str()));
  EXPECT_FALSE(std::filesystem::exists(folder.File("x")));
  EXPECT_EQ(profile.DetachImage(size), nullptr);
}

TEST(IccProfile, TagsAreReadInTwoSteps) {
  CICCProfile profile;
  {
    const Bytes bytes = IccWithTags({"desc", "cprt"});
    ASSERT_TRUE(Open(profile, bytes));
  }
  std::uint32_t size = 0;
  EXPECT_TRUE(profile.GetTag("none", nullptr, size));
  EXPECT_EQ(size, 0u);
  std::uint8_t room[8] = {};
  EXPECT_FALSE(profile.GetTag("none", room, size));
  EXPECT_TRUE(profile.GetTag("cprt", nullptr, size));
  EXPECT_EQ(size, 4u);
  size = 3;
  EXPECT_FALSE(profile.GetTag("cprt", room, size)) << "a block that is too small";
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(room[0], 0);
  size = sizeof room;
  EXPECT_TRUE(profile.GetTag("cprt", room, size));
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(std::string(room, room + 4), "cprt");
  EXPECT_EQ(profile.GetRefTag("none", size), nullptr);
  ASSERT_TRUE(profile.SetTag("one ", "1", 1));
  ASSERT_NE(profile.GetRefTag("one ", size), nullptr);
  EXPECT_EQ(size, 1u);
  EXPECT_EQ(CICCProfile::MakeTagSignature("desc"), 0x64657363u);
  EXPECT_EQ(CICCProfile::MakeTagSignature("ab"), 0x61620000u);
}

TEST(IccProfile, ChangesReachTheImageAndNothingElse) {
  const TempFolder folder;
  const Bytes bytes = IccWithTags({"desc", "NVX1"});
  WriteBytes(folder.File("a.icc"), bytes);
  CICCProfile profile;
  ASSERT_TRUE(profile.OpenPath(folder.WideFile("a.icc").c_str(), false));
  EXPECT_TRUE(profile.SetTag("NVX1", nullptr, 0));
  EXPECT_FALSE(profile.IsTagPresent("NVX1"));
  EXPECT_FALSE(profile.SetTag("NVX2", nullptr, 1));
  EXPECT_EQ(ImageOf(profile), IccWithTags({"desc"}));
  EXPECT_EQ(ReadBytes(folder.File("a.icc")), bytes);

  ASSERT_TRUE(profile.WriteToPath(folder.WideFile("b.icc").c_str()));
  EXPECT_EQ(ReadBytes(folder.File("b.icc")), IccWithTags({"desc"}));

  std::uint32_t size = 0;
  std::uint8_t* const image = profile.DetachImage(size);
  EXPECT_EQ(Bytes(image, image + size), IccWithTags({"desc"}));
  EXPECT_FALSE(profile.IsTagPresent("desc"));
  std::free(image);
}

TEST(IccProfile, CountsChannels) {
  const std::pair<const char*, std::uint32_t> kCases[] = {{"CMYK", 4}, {"6CLR", 6}, {"7CLR", 7}, {"8CLR", 8},
                                                          {"5CLR", 3}, {"RGB ", 3}, {"GRAY", 3}};
  for (const auto& [space, count] : kCases) {
    CICCProfile profile;
    ASSERT_TRUE(Open(profile, IccWithTags({}, space), true));
    EXPECT_EQ(profile.GetColorCount(), count) << space;
  }
}

TEST(IccHeader, TellsItsFields) {
  IccDirectory directory;
  const Bytes bytes = IccWithTags({"desc", "cprt"});
  ASSERT_TRUE(ReadIccDirectory(bytes.data(), bytes.size(), directory));
  const IccHeader& h = directory.header;
  using Words = std::vector<std::uint32_t>;
  EXPECT_EQ((Words{h.phCMMType, h.phClass, h.phConnectionSpace, h.phPlatform, h.phModel, h.phCreator}),
            (Words{Signature("cmm1"), Signature("prtr"), Signature("Lab "), Signature("APPL"), Signature("modl"),
                   Signature("crea")}));
  EXPECT_EQ((Words{h.phSize, h.phVersion, h.phProfileFlags, h.phRenderingIntent}), (Words{164, 0x02100000, 1, 2}));
  EXPECT_EQ((Words{h.phDateTime[0], h.phDateTime[5]}), (Words{2024, 56}));
  EXPECT_EQ(h.phAttributes, 3u);
  EXPECT_EQ(h.phIlluminant[2], 0xD32D);
  ASSERT_EQ(directory.tags.size(), 2u);
  EXPECT_EQ(directory.Find(Signature("cprt"))->offset, 160u);
  EXPECT_EQ(directory.Find(Signature("none")), nullptr);
}

TEST(IccBufferAccess, ReadsAndWritesBigEndian) {
  Bytes bytes{0xFF, 0x12, 0x34, 0x89, 0xAB, 0xCD, 0xEF, 0xFF, 0xFE, 0x80, 0x00, 0x55};
  CICCProfileBufferAccess stream(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  EXPECT_EQ(stream.ReadUInt8(), 0xFF);
  EXPECT_EQ(stream.ReadUInt16(), 0x1234);
  EXPECT_EQ(stream.ReadUInt32(), 0x89ABCDEFu);
  EXPECT_EQ(stream.ReadS15Fixed16(), -1.5);
  EXPECT_EQ(stream.ReadUInt16(), 0x5500) << "what is missing counts as zero";
  EXPECT_EQ(stream.ReadUInt8(), 0);

  const auto written = [](double value) {
    CICCProfileBufferAccess out;
    out.WriteS15Fixed16(value);
    const Bytes result(out.Buffer, out.Buffer + out.Position);
    std::free(out.Buffer);
    return result;
  };
  EXPECT_EQ(written(1.5), (Bytes{0x00, 0x01, 0x80, 0x00}));
  EXPECT_EQ(written(1.0 / 131072), (Bytes{0, 0, 0, 1})) << "half a unit rounds up";
  EXPECT_EQ(written(-1.0 / 131072), (Bytes{0, 0, 0, 0})) << "also below zero";
  EXPECT_EQ(written(-32768.0), (Bytes{0x80, 0, 0, 0}));
  EXPECT_EQ(written(32767.0 + 65535.0 / 65536), (Bytes{0x7F, 0xFF, 0xFF, 0xFF}));
  for (const double value : {32768.0, 32767.0 + 65535.5 / 65536, -32768.0 - 1.0 / 131072, std::nan(""),
                             std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(written(value), Bytes()) << value;
  }
}

Bytes Serialized(const CICCTextDescription& description) {
  Bytes bytes(description.GetSerializedSize());
  EXPECT_TRUE(description.Serialize(bytes.data(), static_cast<std::uint32_t>(bytes.size())));
  return bytes;
}

CICCTextDescription Parsed(const Bytes& bytes) {
  CICCTextDescription description;
  EXPECT_TRUE(description.Parse(bytes.data(), static_cast<std::uint32_t>(bytes.size())));
  return description;
}

TEST(IccTextDescription, TakesATagApartAndPutsItTogether) {
  const Bytes mac(67, 0x4D);
  const Bytes tag =
      BigBuilder().Text("desc").U32(0x01020304, 4).Text("old").U8(0).U32(0x656E5553, 0).U16(0x1234).U8(5).Append(mac);
  CICCTextDescription description = Parsed(tag);
  EXPECT_EQ(description.GetAsciiDescription(), "old");
  EXPECT_EQ(Serialized(description), tag);

  description.SetAsciiDescription("");
  description.SetUnicodeDescription(u"ab");
  const Bytes changed =
      BigBuilder().Text("desc").U32(0x01020304, 0, 0x656E5553, 3).Wide(u"ab").U16(0, 0x1234).U8(5).Append(mac);
  EXPECT_EQ(Serialized(description), changed);
  EXPECT_EQ(Parsed(changed).GetUnicodeDescription(), std::u16string(u"ab\0", 3)) << "the terminator counts";
  EXPECT_EQ(Serialized(CICCTextDescription()), Bytes(BigBuilder().Text("desc").Zero(19)));

  Bytes room(10, 0xEE);
  EXPECT_TRUE(description.Serialize(room.data(), 9));
  EXPECT_EQ(room, Bytes(BigBuilder().Text("desc").U32(0x01020304).U8(0, 0xEE))) << "no byte beyond the block";
}

TEST(IccTextDescription, SurvivesEveryTruncationAndHostileCounts) {
  const Bytes whole = DescriptionTag("a description");
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    const auto description = Parsed(First(whole, size));
    EXPECT_EQ(description.GetAsciiDescription(),
              std::string("a description", size < 12 ? 0 : std::min<std::size_t>(size - 12, 13)));
    if (size == 90) {
      EXPECT_EQ(Serialized(description), whole) << "a full Macintosh part again";
    }
  }
  const Bytes counts = BigBuilder().Text("desc").U32(0, 0xFFFFFFFF).Text("abc");
  EXPECT_EQ(Parsed(counts).GetAsciiDescription(), "abc");
  const Bytes unicode = BigBuilder().Text("desc").U32(0, 0, 0, 0xFFFFFFFF).Wide(u"xyz").U8(1);
  EXPECT_EQ(Parsed(unicode).GetUnicodeDescription(), u"xyz");
}

// The tag of a profile that is saved under a name.
Bytes Rewritten(const Bytes& tag, const char* name) {
  const TempFolder folder;
  const std::uint32_t size = static_cast<std::uint32_t>(tag.size());
  CICCProfile profile;
  EXPECT_TRUE(Open(profile, IccBytes({{"desc", 144, size}}, tag)));
  CNvxFile file;
  EXPECT_TRUE(file.Open(folder.WideFile(name).c_str(), kGenericWrite, kNoShare, kCreateAlways));
  RewriteDescription(profile, file);
  return TagOf(profile, "desc");
}

TEST(IccDescription, TakesTheNameOfTheFile) {
  const Bytes tag = Rewritten(DescriptionTag("old name"), "a.icc");
  EXPECT_EQ(
      tag,
      Bytes(BigBuilder().Text("desc").U32(0, 6).Text("a.icc").U8(0).U32(0, 6).Wide(u"a.icc").U16(0, 0).U8(0).Zero(67)));
  EXPECT_EQ(Rewritten(tag, "a.icc").size(), tag.size()) << "again and again without growing";
  const Bytes localized = BigBuilder().Text("mluc").U32(0, 0, 12);
  EXPECT_EQ(Rewritten(localized, "a.icc"), localized) << "another type is left alone";
}

TEST(IccDescription, CutsLongNamesBetweenCharacters) {
  const ScopedVariable page("NVXPROFILE_CODEPAGE", "932");
  std::string name(64, 'x');
  for (int i = 0; i < 40; ++i) name += "\xE3\x81\x82";  // HIRAGANA LETTER A, two bytes in code page 932
  const CICCTextDescription description = Parsed(Rewritten(DescriptionTag(""), name.c_str()));
  std::u16string wide(64, u'x');
  wide.append(40, u'\u3042');
  EXPECT_EQ(description.GetUnicodeDescription(), wide + u'\0');
  EXPECT_EQ(description.GetAsciiDescription().size(), 126u) << "64 bytes and 31 whole characters";

  const CICCTextDescription cut = Parsed(Rewritten(DescriptionTag(""), std::string(150, 'y').c_str()));
  EXPECT_EQ(cut.GetAsciiDescription(), std::string(127, 'y'));
  EXPECT_EQ(cut.GetUnicodeDescription(), std::u16string(127, u'y') + u'\0');
  const std::string halved = std::string(126, 'z') + "😀";
  EXPECT_EQ(Parsed(Rewritten(DescriptionTag(""), halved.c_str())).GetUnicodeDescription(),
            std::u16string(126, u'z') + u'\0')
      << "no half of a pair";
}

}  // namespace
}  // namespace nvx::test
