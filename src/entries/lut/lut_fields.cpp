#include "entries/entry_fields.h"

#include <nvxprofile/lut.h>

namespace nvx {
namespace {

using Channel = CLutChannelInf;

void DescribeChannel(FieldCodec& codec, Channel& channel) {
  codec.Number({"channelCode"}, channel, &Channel::GetChannelCode, &Channel::SetChannelCode);
  codec.Number({"channelAttribute"}, channel, &Channel::GetChannelAttribute, &Channel::SetChannelAttribute);
  codec.Text({.name = "channelName", .count = {0, Channel::kNameLength - 1}}, channel, &Channel::GetChannelName,
             &Channel::SetChannelName);
}

// The channels of a table, or those that the source has.
std::vector<Channel> DescribeChannels(FieldCodec& codec, const char* name, std::span<const Channel> channels) {
  std::vector<Channel> made;
  codec.Groups(
      {name}, channels, [&](Channel channel) { DescribeChannel(codec, channel); },
      [&](std::size_t) { DescribeChannel(codec, made.emplace_back()); });
  return made;
}

// The samples of all nodes, which lie in one run after a load and after Initialize.
std::vector<std::uint8_t> DescribeSamples(FieldCodec& codec, const CLutData& table) {
  std::vector<std::uint8_t> gathered;
  SampleView run = table.CountNodes() != 0 ? table.ViewRun(0) : SampleView{};
  if (run.nodes < table.CountNodes()) {
    for (int node = 0; node < table.CountNodes(); node += run.nodes) {
      run = table.ViewRun(node);
      gathered.insert(gathered.end(), run.samples, run.samples + run.size);
    }
    run = {gathered.data(), static_cast<std::uint32_t>(gathered.size()), table.CountNodes()};
  }
  return codec.Bytes({.name = "samples", .isBulk = true}, {run.samples, run.size});
}

void Shape(FieldCodec& codec, CLutData& table, std::uint32_t gridCount, std::span<const Channel> inputs,
           std::span<const Channel> outputs, std::span<const std::uint8_t> samples) {
  const auto inputCount = static_cast<std::uint32_t>(inputs.size());
  const std::uint64_t nodes = CLutData::CountNodes(inputCount, gridCount);
  if (nodes > std::numeric_limits<int>::max()) codec.Refuse("gridCount", "the table has too many nodes");
  if (nodes * outputs.size() != samples.size()) {
    codec.Refuse("samples",
                 std::to_string(nodes * outputs.size()) + " bytes are expected, one for each output and node");
  }
  table.Initialize(inputCount, static_cast<std::uint32_t>(outputs.size()), gridCount);
  for (std::size_t i = 0; i < inputs.size(); ++i) *table.GetAtInputChannelInf(static_cast<int>(i)) = inputs[i];
  for (std::size_t i = 0; i < outputs.size(); ++i) *table.GetAtOutputChannelInf(static_cast<int>(i)) = outputs[i];
  if (!samples.empty()) std::copy(samples.begin(), samples.end(), table.GetRun(0).samples);
}

}  // namespace

void Describe(FieldCodec& codec, CSeparateChromaEntry& entry) {
  const CLutData& table = entry.Table();
  std::uint32_t gridCount = table.GetGridCount();
  codec.Number({"gridCount"}, gridCount);
  const std::vector<Channel> inputs = DescribeChannels(codec, "inputChannels", table.InputChannels());
  const std::vector<Channel> outputs = DescribeChannels(codec, "outputChannels", table.OutputChannels());
  const std::vector<std::uint8_t> samples = DescribeSamples(codec, table);
  if (codec.Fills()) Shape(codec, *entry.GetLutData(), gridCount, inputs, outputs, samples);
  codec.Rebuild(entry, "the table does not fit its form");
}

}  // namespace nvx
