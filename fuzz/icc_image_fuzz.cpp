// An ICC image: open, edit as the last bytes say, take out in each way, open again; all of them hold the same tags. The
// descriptions of what opens are taken apart and put together as well.
#include "check.h"
#include "forms.h"
#include "icc/icc_image.h"

#include <nvxprofile/icc_profile.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <vector>

namespace {

using nvx::fuzz::Check;
using Bytes = std::vector<std::uint8_t>;
using Tags = std::map<std::uint32_t, Bytes>;

Tags TagsOf(const nvx::IccImage& image) {
  Tags tags;
  for (const std::uint32_t signature : image.Signatures()) {
    const auto bytes = image.Tag(signature);
    tags[signature] = Bytes(bytes->begin(), bytes->end());
  }
  return tags;
}

// Each two bytes of the script set or remove one tag: an old one where the first byte names one, else a new one.
void Edit(nvx::IccImage& image, Tags& tags, std::span<const std::uint8_t> script) {
  const std::vector<std::uint32_t> present = image.Signatures();
  for (std::size_t i = 0; i + 1 < script.size(); i += 2) {
    const std::uint32_t signature =
        script[i] < present.size() ? present[script[i]] : nvx::Signature("NVX0") + script[i];
    const Bytes value(script[i + 1], script[i]);
    image.SetTag(signature, value);
    tags.erase(signature);
    if (!value.empty()) tags[signature] = value;
  }
}

void CheckDescription(const Bytes& tag) {
  CICCTextDescription description;
  Check(description.Parse(tag.data(), static_cast<std::uint32_t>(tag.size())));
  Bytes form(description.GetSerializedSize());
  Check(form.size() <= 2 * tag.size() + 100);
  Check(description.Serialize(form.data(), static_cast<std::uint32_t>(form.size())));
  CICCTextDescription again;
  again.Parse(form.data(), static_cast<std::uint32_t>(form.size()));
  Check(again.GetAsciiDescription() == description.GetAsciiDescription());
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  return nvx::fuzz::Mutate(nvx::fuzz::IccForm(), data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::span<const std::uint8_t> input(bytes, size);
  nvx::Diagnosis diagnosis;
  auto image = nvx::IccImage::Open(input, &diagnosis);
  Check((image == nullptr) == diagnosis.HasErrors());

  CNvxMemFile stream(const_cast<std::uint8_t*>(bytes), static_cast<std::uint32_t>(size));
  nvx::IccDirectory directory;
  Check(nvx::ReadIccDirectory(stream, directory) == (image != nullptr));
  if (!image) return 0;

  const auto whole = static_cast<std::size_t>(image->Size());
  Check(whole == image->Header().phSize && whole <= size);
  Bytes same(whole);
  Check(image->CopyTo(same) && std::equal(same.begin(), same.end(), bytes));

  Tags tags = TagsOf(*image);
  for (const auto& [signature, tag] : tags) CheckDescription(tag);
  Edit(*image, tags, input.last(std::min<std::size_t>(size, 8)));
  Check(TagsOf(*image) == tags);

  Bytes composed(static_cast<std::size_t>(image->Size()));
  Check(composed.size() <= size + 16 * 256 + 12 * 4 + 4 * tags.size());
  Check(image->CopyTo(composed));
  const auto again = nvx::IccImage::Open(composed);
  Check(again != nullptr && TagsOf(*again) == tags && again->Signatures() == image->Signatures());
  Check(image->Take([&](std::span<const std::uint8_t> out) {
    return std::equal(out.begin(), out.end(), composed.begin(), composed.end());
  }));
  std::uint32_t released = 0;
  const nvx::Block block = std::move(*image).Release(released);
  Check(std::equal(composed.begin(), composed.end(), block.get(), block.get() + released));
  return 0;
}
