// The colour table (type 8) as JSON: channels, grid count, and the samples of all nodes in one base64 text.
#include "payload.h"

#include <nvxprofile/lut.h>

#include <algorithm>
#include <limits>
#include <string>

namespace nvx::tool {
namespace {

using ChannelAt = CLutChannelInf* (CLutData::*)(int);

Json ChannelsToJson(CLutData& table, ChannelAt channelAt) {
  Json channels = Json::array();
  for (int i = 0; const CLutChannelInf* const channel = (table.*channelAt)(i); ++i) {
    channels.push_back({{"channelCode", channel->GetChannelCode()},
                        {"channelAttribute", channel->GetChannelAttribute()},
                        {"channelName", NarrowToJson(channel->GetChannelName())}});
  }
  return channels;
}

// The table has as many channels as the node has items.
void ChannelsFromJson(const Node& node, CLutData& table, ChannelAt channelAt) {
  int index = 0;
  for (const Node& item : node.Items()) {
    CLutChannelInf& channel = *(table.*channelAt)(index++);
    channel.SetChannelCode(static_cast<std::uint32_t>(item.At("channelCode").Integer(0, 255)));
    channel.SetChannelAttribute(item.At("channelAttribute").U32());
    channel.SetChannelName(NarrowFromJson(item.At("channelName"), CLutChannelInf::kNameLength - 1).c_str());
  }
}

// Base64 stands for whole nodes of one count, as a table has them after a load.
// To gather them in one place is a copy, which nobody needs who asks for the size.
Json SamplesToJson(CLutData& table, Detail detail) {
  const std::uint8_t* const samples = detail == Detail::kSizes ? nullptr : table.GetRefBuffer();
  return BytesToJson(samples, table.GetLutDataSize(), detail);
}

}  // namespace

Json LutToJson(CProfileDataEntry& entry, Detail detail) {
  // Who asks for the payload may change it, so that what the load has parsed is told before.
  const bool isParsed = entry.GetPayloadState() == PayloadState::kWhole && entry.GetSize() != 0;
  auto* const table = dynamic_cast<CLutData*>(entry.GetFormatData());
  if (table == nullptr || (!isParsed && !entry.BufferToData())) return nullptr;
  return {{"gridCount", table->GetGridCount()},
          {"inputChannels", ChannelsToJson(*table, &CLutData::GetAtInputChannelInf)},
          {"outputChannels", ChannelsToJson(*table, &CLutData::GetAtOutputChannelInf)},
          {"samples", SamplesToJson(*table, detail)}};
}

void LutFromJson(const Node& node, CProfileDataEntry& entry) {
  auto* const table = dynamic_cast<CLutData*>(entry.GetFormatData());
  if (table == nullptr) node.Fail("the entry holds no colour table");
  const auto inputs = static_cast<std::uint32_t>(node.At("inputChannels").Items().size());
  const auto outputs = static_cast<std::uint32_t>(node.At("outputChannels").Items().size());
  const std::uint32_t grid = node.At("gridCount").U32();
  const std::vector<std::uint8_t> samples = node.At("samples").Base64();
  const std::uint64_t nodes = CLutData::CountNodes(inputs, grid);
  if (nodes > std::numeric_limits<int>::max()) node.At("gridCount").Fail("the table has too many nodes");
  if (nodes * outputs != samples.size()) {
    node.At("samples").Fail(std::to_string(nodes * outputs) + " bytes are expected, one for each output and node");
  }
  table->Initialize(inputs, outputs, grid);
  ChannelsFromJson(node.At("inputChannels"), *table, &CLutData::GetAtInputChannelInf);
  ChannelsFromJson(node.At("outputChannels"), *table, &CLutData::GetAtOutputChannelInf);
  if (!samples.empty()) std::copy(samples.begin(), samples.end(), table->GetRun(0).samples);
  if (!entry.DataToBuffer()) node.Fail("the table does not fit its form");
}

}  // namespace nvx::tool
