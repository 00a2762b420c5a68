// Taking a profile's private tags out: open from memory, drop the tags NVX1 to NVX7, take the image out. Against Little
// CMS doing the same, and against the two copies that nobody can avoid: the bytes given, and the image taken.
#include "core/byte_order.h"
#include "timing.h"

#include <benchmark/benchmark.h>
#include <lcms2.h>
#include <nvxprofile/icc_profile.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace {

using nvx::bench::Median;
using nvx::bench::Seconds;

using Bytes = std::vector<std::uint8_t>;

constexpr const char* kPrivateTags[] = {"NVX1", "NVX2", "NVX3", "NVX4", "NVX5", "NVX6", "NVX7"};
constexpr const char* kCmykProfile = "/usr/share/color/icc/ghostscript/default_cmyk.icc";

struct FreeBlock {
  void operator()(void* block) const { std::free(block); }
};
using Image = std::unique_ptr<void, FreeBlock>;

Image NewImage(std::size_t size) { return Image(std::malloc(size)); }

Bytes RealProfile() {
  std::ifstream file(kCmykProfile, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

// The same with seven private tags of 276 bytes to 2 MB, some 3.3 MB in all.
Bytes WithPrivateTags(const Bytes& profile) {
  constexpr std::uint32_t kSizes[] = {700'000, 276, 190'000, 120'000, 2'000'000, 90'000, 60'000};
  CICCProfile copy;
  copy.OpenBuffer(profile.data(), static_cast<std::uint32_t>(profile.size()), false);
  for (std::size_t i = 0; i < std::size(kPrivateTags); ++i) {
    const Bytes tag(kSizes[i], static_cast<std::uint8_t>(i + 1));
    copy.SetTag(kPrivateTags[i], tag.data(), kSizes[i]);
  }
  Bytes image(copy.GetProfileSize());
  copy.CopyImage(image.data(), copy.GetProfileSize());
  return image;
}

void OpenWithoutPrivateTags(CICCProfile& copy, const Bytes& profile) {
  copy.OpenBuffer(profile.data(), static_cast<std::uint32_t>(profile.size()), false);
  for (const char* const tag : kPrivateTags) copy.SetTag(tag, nullptr, 0);
}

// As a load does it: the working copy ends with its image.
std::size_t DropPrivateTags(const Bytes& profile) {
  CICCProfile copy;
  OpenWithoutPrivateTags(copy, profile);
  std::uint32_t size = 0;
  const Image image(copy.DetachImage(size));
  benchmark::DoNotOptimize(image.get());
  return size;
}

// As a caller does it who goes on with the working copy.
std::size_t DropPrivateTagsAndCopy(const Bytes& profile) {
  CICCProfile copy;
  OpenWithoutPrivateTags(copy, profile);
  const std::uint32_t size = copy.GetProfileSize();
  const Image image = NewImage(size);
  copy.CopyImage(static_cast<std::uint8_t*>(image.get()), size);
  benchmark::DoNotOptimize(image.get());
  return size;
}

std::size_t DropPrivateTagsWithLcms(const Bytes& profile) {
  const cmsHPROFILE copy = cmsOpenProfileFromMem(profile.data(), static_cast<cmsUInt32Number>(profile.size()));
  for (const char* const tag : kPrivateTags) {
    const auto signature = static_cast<cmsTagSignature>(CICCProfile::MakeTagSignature(tag));
    if (cmsIsTag(copy, signature)) cmsWriteTag(copy, signature, nullptr);
  }
  cmsUInt32Number size = 0;
  cmsSaveProfileToMem(copy, nullptr, &size);
  const Image image = NewImage(size);
  cmsSaveProfileToMem(copy, image.get(), &size);
  benchmark::DoNotOptimize(image.get());
  cmsCloseProfile(copy);
  return size;
}

void CopyTwice(const Bytes& profile, std::size_t imageSize) {
  const Image opened = NewImage(profile.size());
  std::memcpy(opened.get(), profile.data(), profile.size());
  benchmark::DoNotOptimize(opened.get());
  const Image image = NewImage(imageSize);
  std::memcpy(image.get(), opened.get(), imageSize);
  benchmark::DoNotOptimize(image.get());
}

// All run in turn, so that they meet the same machine.
void Compare(benchmark::State& state, const Bytes& profile) {
  const std::size_t size = DropPrivateTags(profile);
  if (profile.empty() || size == 0 || DropPrivateTagsWithLcms(profile) == 0) {
    state.SkipWithError("the profile of libgs-common is missing");
    return;
  }
  std::vector<double> ours, copied, lcms, copies;
  for (auto _ : state) {
    ours.push_back(Seconds([&] { DropPrivateTags(profile); }));
    copied.push_back(Seconds([&] { DropPrivateTagsAndCopy(profile); }));
    lcms.push_back(Seconds([&] { DropPrivateTagsWithLcms(profile); }));
    copies.push_back(Seconds([&] { CopyTwice(profile, size); }));
    state.SetIterationTime(ours.back());
  }
  state.counters["bytes"] = static_cast<double>(profile.size());
  state.counters["ratio"] = Median(ours) / Median(lcms);
  state.counters["ratio_copied"] = Median(copied) / Median(lcms);
  state.counters["to_copies"] = Median(ours) / Median(copies);
  state.counters["to_copies_copied"] = Median(copied) / Median(copies);
}

void IccDropTagsOfProfile(benchmark::State& state) { Compare(state, RealProfile()); }
void IccDropTagsOfLargeProfile(benchmark::State& state) { Compare(state, WithPrivateTags(RealProfile())); }

BENCHMARK(IccDropTagsOfProfile)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(IccDropTagsOfLargeProfile)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace
