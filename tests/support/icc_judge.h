// What Little CMS sees of a profile.
#pragma once

#include "support/files.h"

#include <lcms2.h>

#include <memory>
#include <optional>
#include <vector>

namespace nvx::test {

class IccJudge {
 public:
  explicit IccJudge(const Bytes& image)
      : profile_(cmsOpenProfileFromMem(image.data(), static_cast<cmsUInt32Number>(image.size()))) {}

  bool Opens() const { return profile_ != nullptr; }

  std::vector<std::uint32_t> Tags() const {
    std::vector<std::uint32_t> tags;
    for (cmsInt32Number i = 0; i < cmsGetTagCount(profile_.get()); ++i) {
      tags.push_back(static_cast<std::uint32_t>(cmsGetTagSignature(profile_.get(), static_cast<cmsUInt32Number>(i))));
    }
    return tags;
  }

  Bytes Raw(std::uint32_t tag) const {
    const auto signature = static_cast<cmsTagSignature>(tag);
    Bytes bytes(cmsReadRawTag(profile_.get(), signature, nullptr, 0));
    const auto size = static_cast<cmsUInt32Number>(bytes.size());
    if (!bytes.empty()) cmsReadRawTag(profile_.get(), signature, bytes.data(), size);
    return bytes;
  }

  std::uint32_t LinkedTo(std::uint32_t tag) const {
    return static_cast<std::uint32_t>(cmsTagLinkedTo(profile_.get(), static_cast<cmsTagSignature>(tag)));
  }

  std::string Description() const {
    char text[64] = {};
    cmsGetProfileInfoASCII(profile_.get(), cmsInfoDescription, "en", "US", text, sizeof text);
    return text;
  }

  Bytes StoredID() const {
    Bytes id(16);
    cmsGetHeaderProfileID(profile_.get(), id.data());
    return id;
  }

  // Nothing if Little CMS cannot compute it.
  Bytes ComputedID() { return cmsMD5computeID(profile_.get()) ? StoredID() : Bytes(); }

  // A grid of colours to sRGB; nothing for a profile that carries no transform.
  std::optional<Bytes> ColorsInSrgb() const {
    constexpr cmsUInt32Number kPixels = 5 * 5 * 5 * 5;
    const cmsUInt32Number channels = cmsChannelsOf(cmsGetColorSpace(profile_.get()));
    const bool named = cmsGetDeviceClass(profile_.get()) == cmsSigNamedColorClass;
    const cmsUInt32Number format =
        named ? TYPE_NAMED_COLOR_INDEX : cmsFormatterForColorspaceOfProfile(profile_.get(), 1, FALSE);
    const Profile srgb(cmsCreate_sRGBProfile());
    const std::unique_ptr<void, Dropped> transform(
        cmsCreateTransform(profile_.get(), format, srgb.get(), TYPE_RGB_8, INTENT_PERCEPTUAL, cmsFLAGS_NOOPTIMIZE));
    if (!transform) return std::nullopt;
    Bytes colors(kPixels * 3);
    if (named) {
      std::vector<cmsUInt16Number> indices;
      for (cmsUInt16Number i = 0; i < 20; ++i) indices.push_back(i);
      cmsDoTransform(transform.get(), indices.data(), colors.data(), 20);
      return colors;
    }
    Bytes grid;
    for (cmsUInt32Number pixel = 0; pixel < kPixels; ++pixel) {
      cmsUInt32Number rest = pixel;
      for (cmsUInt32Number channel = 0; channel < channels; ++channel, rest /= 5) {
        grid.push_back(static_cast<std::uint8_t>(rest % 5 * 63));
      }
    }
    cmsDoTransform(transform.get(), grid.data(), colors.data(), kPixels);
    return colors;
  }

 private:
  struct Closed {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
  };
  struct Dropped {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
  };
  using Profile = std::unique_ptr<void, Closed>;
  Profile profile_;
};

}  // namespace nvx::test
