#include "icc/icc_image.h"

#include "icc/md5.h"
#include "support/icc_builder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

namespace nvx::test {
namespace {

Bytes ImageOf(const IccImage& image) {
  Bytes out(static_cast<std::size_t>(image.Size()), 0xEE);
  EXPECT_TRUE(image.CopyTo(out));
  EXPECT_FALSE(image.CopyTo(std::span(out).first(out.size() - 1)));
  return out;
}

void Set(IccImage& image, std::uint32_t signature, std::string_view text) {
  image.SetTag(signature, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

std::string TagText(const IccImage& image, std::uint32_t signature) {
  const auto tag = image.Tag(signature);
  return tag ? std::string(tag->begin(), tag->end()) : "none";
}

std::string HexOf(const Md5Digest& digest) {
  std::string text;
  for (const std::uint8_t byte : digest) {
    for (const int digit : {byte >> 4, byte & 15}) text += "0123456789abcdef"[digit];
  }
  return text;
}

TEST(Md5, GivesThePublishedDigests) {
  const auto digest = [](std::string_view text, std::size_t step) {
    Md5 md5;
    for (std::size_t i = 0; i < text.size(); i += step) md5.Update(text.data() + i, std::min(step, text.size() - i));
    return HexOf(md5.Finish());
  };
  EXPECT_EQ(digest("", 1), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(digest("abc", 3), "900150983cd24fb0d6963f7d28e17f72");
  const std::string_view digits = "12345678901234567890123456789012345678901234567890123456789012345678901234567890";
  for (const std::size_t step : {1u, 7u, 64u, 80u}) {
    EXPECT_EQ(digest(digits, step), "57edf4a22be3c955ac49da2e2107b67a") << step;
  }
}

TEST(IccImage, ComesOutAsItCameInUnlessATagIsChanged) {
  // Odd offsets, bytes that no tag names, an ID that is wrong, and bytes behind the profile.
  Bytes bytes = IccBytes({{"aaaa", 157, 3}, {"bbbb", 163, 5}}, BigBuilder().Text("?xxx???yyyyy??"));
  bytes = Patched(bytes, 84, 0x12345678);
  const Bytes profile = bytes;
  bytes.insert(bytes.end(), 3, 0xEE);
  const auto image = IccImage::Open(bytes);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(ImageOf(*image), profile);
  Set(*image, Signature("bbbb"), "yyyyy");
  image->RemoveTag(Signature("cccc"));
  EXPECT_EQ(ImageOf(*image), profile) << "nothing has changed yet";
  bytes.assign(bytes.size(), 0);
  EXPECT_EQ(TagText(*image, Signature("aaaa")), "xxx");
}

TEST(IccImage, LaysOutAnEditedImage) {
  const Bytes bytes = IccBytes({{"bbbb", 185, 5}, {"gone", 190, 6}, {"aaaa", 181, 3}, {"same", 185, 5}},
                               BigBuilder().Text("-xxx-yyyyyzzzzzz-garbage"));
  const auto image = IccImage::Open(bytes);
  ASSERT_NE(image, nullptr);
  image->RemoveTag(Signature("gone"));
  Set(*image, Signature("new1"), "12345");
  Set(*image, Signature("new2"), "6");
  EXPECT_FALSE(image->Tag(Signature("gone")).has_value());

  BigBuilder expected;
  expected.Append(IccHeaderBytes(216)).U32(5);
  expected.Text("bbbb").U32(196, 5).Text("aaaa").U32(192, 3).Text("same").U32(196, 5);
  expected.Text("new1").U32(204, 5).Text("new2").U32(212, 1);
  expected.Text("xxx").Zero(1).Text("yyyyy").Zero(3).Text("12345").Zero(3).Text("6").Zero(3);
  EXPECT_EQ(ImageOf(*image), static_cast<const Bytes&>(expected));
  EXPECT_EQ(image->Header().phSize, 216u);
}

TEST(IccImage, AProfileIDLeavesOutFlagsIntentAndItself) {
  const auto image = IccImage::Open(Patched(IccWithTags({"desc"}), 96, 0x01020304));
  ASSERT_NE(image, nullptr);
  Set(*image, Signature("cprt"), "text");
  const Bytes composed = ImageOf(*image);
  Bytes hashed = composed;
  ASSERT_NE(hashed[47] + hashed[67], 0) << "flags and intent are there to be left out";
  std::fill_n(hashed.begin() + 44, 4, std::uint8_t{0});
  std::fill_n(hashed.begin() + 64, 4, std::uint8_t{0});
  std::fill_n(hashed.begin() + 84, 16, std::uint8_t{0});
  Md5 md5;
  md5.Update(hashed.data(), hashed.size());
  const Md5Digest digest = md5.Finish();
  EXPECT_EQ(Bytes(composed.begin() + 84, composed.begin() + 100), Bytes(digest.begin(), digest.end()));
}

TEST(IccImage, SharedDataStaysSharedUntilItIsSet) {
  const auto image =
      IccImage::Open(IccBytes({{"A2B0", 168, 8}, {"A2B1", 168, 8}, {"A2B2", 170, 4}}, BigBuilder().Text("01234567")));
  ASSERT_NE(image, nullptr);
  Set(*image, Signature("cprt"), "text");
  const auto reopened = IccImage::Open(ImageOf(*image));
  ASSERT_NE(reopened, nullptr);
  EXPECT_EQ(reopened->Size(), 180u + 8 + 4) << "a part of another tag's data moves with it";
  EXPECT_EQ(TagText(*reopened, Signature("A2B2")), "2345");
  Set(*reopened, Signature("A2B0"), "other");
  EXPECT_EQ(TagText(*reopened, Signature("A2B1")), "01234567");
  EXPECT_EQ(reopened->Size(), 180u + 8 + 4 + 8);
  reopened->RemoveTag(Signature("A2B1"));
  EXPECT_EQ(reopened->Size(), 168u + 4 + 4 + 8) << "what no tag names any more does not come along";
  EXPECT_EQ(TagText(*IccImage::Open(ImageOf(*reopened)), Signature("A2B2")), "2345");
}

TEST(IccImage, ATagThatReturnsTakesItsOldPlace) {
  const auto image = IccImage::Open(IccWithTags({"aaaa", "bbbb", "cccc"}));
  image->RemoveTag(Signature("aaaa"));
  Set(*image, Signature("dddd"), "d");
  Set(*image, Signature("aaaa"), "back");
  EXPECT_EQ(image->Signatures(),
            (std::vector<std::uint32_t>{Signature("aaaa"), Signature("bbbb"), Signature("cccc"), Signature("dddd")}));
  for (const std::uint32_t signature : image->Signatures()) image->RemoveTag(signature);
  EXPECT_EQ(image->Size(), 132u);
  const auto empty = IccImage::Open(ImageOf(*image));
  ASSERT_NE(empty, nullptr);
  EXPECT_TRUE(empty->Signatures().empty());
}

struct Refusal {
  Bytes bytes;
  std::uint64_t offset;
  std::string rule;
};

TEST(IccImage, RefusesWhatIsBrokenAndSaysWhere) {
  const Bytes good = IccWithTags({"desc", "cprt"});
  ASSERT_EQ(good.size(), 164u);
  const std::uint32_t greatest = 0xFFFFFFFF;
  const std::vector<Refusal> cases{
      {{}, 0, "ICC profile: ends inside the header or the tag count"},
      {Bytes(good.begin(), good.begin() + 131), 131, "ICC profile: ends inside the header or the tag count"},
      {Patched(good, 36, 0), 36, "ICC header: signature is not acsp"},
      {Patched(good, 0, 0), 0, "ICC header: size too small for header and tag count"},
      {Patched(good, 0, 131), 0, "ICC header: size too small for header and tag count"},
      {Patched(good, 0, 165), 0, "ICC header: size beyond the end"},
      {Patched(good, 0, greatest), 0, "ICC header: size beyond the end"},
      {Patched(good, 128, 3), 128, "ICC tag table: count beyond the end"},
      {Patched(good, 128, greatest), 128, "ICC tag table: count beyond the end"},
      {Patched(good, 128, 0x15555556), 128, "ICC tag table: count beyond the end"},
      {Patched(good, 136, 155), 132, "ICC tag table: tag data inside header or tag table"},
      {Patched(good, 136, 0), 132, "ICC tag table: tag data inside header or tag table"},
      {Patched(good, 140, 9), 132, "ICC tag table: tag data beyond the end"},
      {Patched(good, 152, greatest), 144, "ICC tag table: tag data beyond the end"},
      {Patched(Patched(good, 148, greatest), 152, greatest), 144, "ICC tag table: tag data beyond the end"},
      {Patched(good, 144, Signature("desc")), 144, "ICC tag table: signature stands twice"},
  };
  for (const Refusal& c : cases) {
    Diagnosis diagnosis;
    EXPECT_EQ(IccImage::Open(c.bytes), nullptr) << c.rule;
    EXPECT_EQ(IccImage::Open(c.bytes, &diagnosis), nullptr) << c.rule;
    ASSERT_EQ(diagnosis.Findings().size(), 1u) << c.rule;
    EXPECT_EQ(diagnosis.Findings()[0].offset, c.offset) << c.rule;
    EXPECT_EQ(diagnosis.Findings()[0].rule, c.rule);
  }
  for (std::size_t size = 0; size < good.size(); ++size) {
    Bytes cut = First(good, size);
    EXPECT_EQ(IccImage::Open(cut), nullptr) << size;
    if (size < 132) continue;
    // A size field that fits leaves the table to refuse.
    EXPECT_EQ(IccImage::Open(Patched(cut, 0, static_cast<std::uint32_t>(size))), nullptr) << size;
  }
}

TEST(IccImage, OddProfilesOpenWithAWarningOfEachKind) {
  Bytes bytes = IccBytes({{"aaaa", 169, 3}, {"bbbb", 171, 1}, {"none", 0, 0}}, BigBuilder().Text("?xxx"));
  bytes.push_back(0);
  Diagnosis diagnosis;
  const auto image = IccImage::Open(bytes, &diagnosis);
  ASSERT_NE(image, nullptr);
  EXPECT_FALSE(diagnosis.HasErrors());
  EXPECT_EQ(diagnosis.Findings().size(), 3u);
  ASSERT_TRUE(image->Tag(Signature("none")).has_value()) << "a tag without data is kept";
  image->RemoveTag(Signature("bbbb"));
  const auto reopened = IccImage::Open(ImageOf(*image));
  ASSERT_NE(reopened, nullptr);
  EXPECT_EQ(reopened->Signatures().size(), 2u);
  EXPECT_EQ(reopened->Tag(Signature("none"))->size(), 0u);
}

TEST(IccImage, HoldsAnyNumberOfTags) {
  constexpr std::uint32_t kCount = 200'000;
  BigBuilder builder;
  builder.Append(IccHeaderBytes(132 + 12 * kCount + 4)).U32(kCount);
  for (std::uint32_t i = 0; i < kCount; ++i) builder.U32(i * 2654435761u, 132 + 12 * kCount, 4);
  const Bytes& bytes = builder.Text("data");
  const auto image = IccImage::Open(bytes);
  ASSERT_NE(image, nullptr);
  for (std::uint32_t i = 0; i < kCount; i += 3) ASSERT_TRUE(image->Tag(i * 2654435761u).has_value());
  image->RemoveTag(0);
  EXPECT_EQ(image->Size(), bytes.size() - 12);
  const Bytes composed = ImageOf(*image);
  EXPECT_EQ(LoadBig<std::uint32_t>(composed.data() + 128), kCount - 1);
  EXPECT_NE(IccImage::Open(composed), nullptr);
  EXPECT_EQ(IccImage::Open(Patched(bytes, 132 + 12 * (kCount - 1), 0)), nullptr) << "a repeated signature";
}

// Tags of any layout: tags that touch, leave gaps, share bytes, overlap in part or are empty.
Bytes RandomProfile(std::mt19937& random, std::uint32_t tagCount) {
  constexpr std::uint32_t kData = 200;
  const std::uint32_t start = nvx::kIccTableStart + tagCount * nvx::kIccTagEntrySize;
  const auto below = [&](std::uint32_t limit) { return static_cast<std::uint32_t>(random() % limit); };
  std::vector<IccPart> parts;
  for (std::uint32_t i = 0; i < tagCount; ++i) {
    const std::uint32_t offset = below(kData);
    const std::uint32_t size = below(3) == 0 ? 0 : below(std::min(60u, kData - offset));
    static constexpr const char* kNames[] = {"aaaa", "bbbb", "cccc", "dddd", "eeee", "ffff"};
    parts.push_back({kNames[i], start + offset, size});
  }
  BigBuilder data;
  for (std::uint32_t i = 0; i < kData; ++i) data.Text(std::string(1, static_cast<char>('A' + i % 50)));
  return Patched(IccBytes(parts, data), 84, below(2));
}

// Reads run forwards, whatever the places of the tags; only a profile that is taken whole starts anew.
class ForwardStream : public CNvxMemFile {
 public:
  explicit ForwardStream(Bytes& bytes, std::uint32_t readable = ~0u)
      : CNvxMemFile(bytes.data(), static_cast<std::uint32_t>(bytes.size())), readable_(readable) {}

  std::uint32_t Read(void* buffer, std::uint32_t count) override {
    EXPECT_TRUE(Position == 0 || Position >= end_) << "a byte is read twice, or behind a later one";
    const std::uint32_t done = Position + count <= readable_ ? CNvxMemFile::Read(buffer, count) : 0;
    end_ = Position;
    return done;
  }

 private:
  std::uint32_t readable_;
  std::uint32_t end_ = 0;
};

TEST(IccImage, BytesThatCannotBeReadAreToldAsSuch) {
  Bytes bytes = IccWithTags({"aaaa", "bbbb"});
  const std::uint32_t wanted[] = {Signature("bbbb")};
  const auto size = static_cast<std::uint32_t>(bytes.size());
  for (const std::size_t count : {std::size_t{0}, std::size_t{1}}) {
    const auto apart = std::span<const std::uint32_t>(wanted).first(count);
    ForwardStream good(bytes, size);
    EXPECT_NE(IccImage::Open(good, apart), nullptr);
    ForwardStream bad(bytes, size - 1);
    Diagnosis diagnosis;
    bad.SetDiagnosis(&diagnosis);
    EXPECT_EQ(IccImage::Open(bad, apart), nullptr);
    ASSERT_EQ(diagnosis.Findings().size(), 1u);
    EXPECT_EQ(diagnosis.Findings()[0].rule, "ICC profile: unreadable");
  }
}

// Whether the bytes of a tag are named by no other tag.
bool StandsAlone(const IccImage& image, std::uint32_t signature) {
  const auto range = [&](std::uint32_t tag) {
    const std::uint64_t start = image.OpenedOffset(tag);
    return std::pair(start, start + image.Tag(tag)->size());
  };
  const auto [start, end] = range(signature);
  for (const std::uint32_t other : image.Signatures()) {
    const auto [otherStart, otherEnd] = range(other);
    if (other != signature && otherStart != otherEnd && start < otherEnd && otherStart < end) return false;
  }
  return true;
}

TEST(IccImage, TagsThatAreOpenedApartLeaveTheSameImage) {
  std::mt19937 random(11);
  const std::uint32_t wanted[] = {Signature("bbbb"), Signature("dddd"), Signature("gggg")};
  for (int round = 0; round < 2000; ++round) {
    Bytes bytes = RandomProfile(random, 1 + static_cast<std::uint32_t>(random() % 6));
    const auto whole = IccImage::Open(bytes);
    ForwardStream stream(bytes);
    const auto apart = IccImage::Open(stream, wanted);
    ASSERT_EQ(whole == nullptr, apart == nullptr);
    if (!whole) continue;
    for (const std::uint32_t signature : {Signature("aaaa"), Signature("bbbb"), Signature("dddd"), Signature("ffff")}) {
      EXPECT_EQ(TagText(*apart, signature), TagText(*whole, signature));
      EXPECT_EQ(apart->OpenedOffset(signature), whole->OpenedOffset(signature));
    }
    for (const std::uint32_t signature : wanted) {
      const auto tag = apart->Tag(signature);
      if (!tag || tag->empty()) continue;
      EXPECT_EQ(apart->ShareTag(signature).Data() == tag->data(), StandsAlone(*whole, signature))
          << "has its own block";
    }
    for (const std::uint32_t signature : wanted) {
      const auto taken = apart->ShareTag(signature);
      EXPECT_EQ(std::string(taken.Bytes().begin(), taken.Bytes().end()),
                whole->Tag(signature) ? TagText(*whole, signature) : "");
      apart->RemoveTag(signature);
      whole->RemoveTag(signature);
    }
    const Bytes image = ImageOf(*whole);
    EXPECT_EQ(ImageOf(*apart), image);
    std::uint32_t size = 0;
    const nvx::Block released = std::move(*apart).Release(size);
    EXPECT_EQ(Bytes(released.get(), released.get() + size), image);
  }
}

// The three ways to take an image out are held against each other as well.
// Tags side by side at odd offsets move up where each is placed at a multiple of 4, although one has been taken out.
TEST(IccImage, TagsThatMoveUpAreNotWrittenOverEachOther) {
  constexpr std::uint32_t kTags = 8, kSize = 5, kStart = 132 + 12 * (kTags + 1);
  std::vector<IccPart> table;
  std::string data;
  for (std::uint32_t i = 0; i < kTags; ++i) {
    table.push_back({std::string("tag") + static_cast<char>('0' + i), kStart + kSize * i, kSize});
    data += std::string(kSize, static_cast<char>('0' + i));
  }
  table.push_back({"last", kStart + kSize * kTags, 100});
  auto image = IccImage::Open(IccBytes(table, BigBuilder().Text(data + std::string(100, 'x'))));
  ASSERT_NE(image, nullptr);
  image->RemoveTag(Signature("last"));
  std::uint32_t size = 0;
  const Block released = std::move(*image).Release(size);
  const auto again = IccImage::Open(Bytes(released.get(), released.get() + size));
  ASSERT_NE(again, nullptr);
  for (std::uint32_t i = 0; i < kTags; ++i) {
    EXPECT_EQ(TagText(*again, Signature("tag0") + i), std::string(kSize, static_cast<char>('0' + i)));
  }
}

TEST(IccImage, AgreesWithAMapOfTagsUnderRandomEdits) {
  std::mt19937 random(20240229);
  for (int round = 0; round < 300; ++round) {
    const auto below = [&](std::uint32_t limit) { return static_cast<std::uint32_t>(random() % limit); };
    auto image = IccImage::Open(RandomProfile(random, below(7)));
    ASSERT_NE(image, nullptr);
    std::map<std::uint32_t, Bytes> model;
    for (const std::uint32_t signature : image->Signatures()) {
      model[signature] = Bytes(image->Tag(signature)->begin(), image->Tag(signature)->end());
    }
    for (std::uint32_t edits = below(6); edits > 0; --edits) {
      const std::uint32_t signature = Signature("aaaa") + below(9) * 0x01010101;
      const Bytes value(below(3) == 0 ? 0 : below(90), static_cast<std::uint8_t>(random()));
      image->SetTag(signature, value);
      model.erase(signature);
      if (!value.empty()) model[signature] = value;
    }
    const Bytes composed = ImageOf(*image);
    const auto reopened = IccImage::Open(composed);
    ASSERT_NE(reopened, nullptr);
    ASSERT_EQ(reopened->Signatures(), image->Signatures());
    ASSERT_EQ(reopened->Signatures().size(), model.size());
    for (const auto& [signature, value] : model) {
      const auto tag = reopened->Tag(signature);
      ASSERT_TRUE(tag && std::equal(tag->begin(), tag->end(), value.begin(), value.end()));
    }
    EXPECT_TRUE(image->Take([&](std::span<const std::uint8_t> out) {
      return std::equal(out.begin(), out.end(), composed.begin(), composed.end());
    }));
    std::uint32_t size = 0;
    const Block released = std::move(*image).Release(size);
    ASSERT_TRUE(std::equal(composed.begin(), composed.end(), released.get(), released.get() + size)) << round;
  }
}

}  // namespace
}  // namespace nvx::test
