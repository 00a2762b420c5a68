// The colour table: what loads keeps its samples in place, in the saved form, in the flat copy and in the nodes.
#include "entry_round_trip.h"

#include <nvxprofile/lut.h>

using nvx::fuzz::Check;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  CSeparateChromaEntry entry;
  if (!nvx::fuzz::RoundTrip(entry, bytes, size)) return 0;
  CLutData3D& table = *entry.GetLutData();
  const std::size_t channels = std::size_t{table.GetInputChannelCount()} + table.GetOutputChannelCount();
  const std::size_t start = 280 + 336 * channels;
  const std::size_t samples = table.GetLutDataSize();
  Check(start + samples <= size && start + samples <= entry.GetSize());
  if (samples == 0) return 0;
  Check(std::memcmp(entry.GetRefBuffer() + start, bytes + start, samples) == 0);
  Check(std::memcmp(table.GetRefBuffer(), bytes + start, samples) == 0);
  const int last = table.GetSize() - 1;
  CLutDataEntry& node = *table.GetAt(last);
  const auto width = static_cast<std::size_t>(node.GetCount());
  Check(std::memcmp(node.GetRefBuffer(), bytes + start + samples - width, width) == 0);
  // A node that grows moves nobody else, and no form can carry it.
  node.Add(1);
  table.GetAt(last / 2)->Add(2);
  Check(table.GetAt(0)->GetAt(0) == bytes[start]);
  Check(!entry.DataToBuffer());
  return 0;
}
