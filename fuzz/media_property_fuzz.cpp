// The media property set: counts stay in their bounds, and parameters in use are those of the form.
#include "entry_round_trip.h"
#include "forms.h"

#include <nvxprofile/media_property.h>

using nvx::fuzz::Check;

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  return nvx::fuzz::Mutate(nvx::fuzz::MediaPropertyForm(), data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  CMediaPropertyEntry entry;
  if (!nvx::fuzz::RoundTrip(entry, bytes, size)) return 0;
  CMediaPropertyData& data = *entry.GetMediaPropertyData();
  const auto count = static_cast<std::size_t>(data.GetPropertyCount());
  Check(16 + 20 * count <= size);
  std::size_t place = 16 + 20 * count + 4;
  bool more = data.GetHeadPosition();
  while (more) {
    CMediaPropertyDataEntry& block = *data.GetNext(more);
    const std::int32_t used = block.GetParameterMax();
    Check(used >= 0 && used <= 16);
    const std::size_t length = 4 * static_cast<std::size_t>(used);
    if (place + 64 <= size) Check(length == 0 || std::memcmp(block.GetRefBuffer(), bytes + place, length) == 0);
    for (std::int32_t i = used; i < 16; ++i) Check(block.GetParameter(i) == 0);
    place += 68;
  }
  return 0;
}
