#include "core/form.h"
#include "core/text.h"
#include "entries/lut/lut_records.h"

#include <nvxprofile/lut.h>

#include <limits>

using nvx::LutChannelHeader;
using nvx::LutHeader;

namespace {

using ChannelAt = CLutChannelInf* (CLutData::*)(int);

// The counts of a header are claims: the stream must hold all that they promise.
bool HoldsTable(CNvxFile& file, std::uint32_t inputs, std::uint32_t outputs, std::uint32_t grid) {
  constexpr std::uint64_t kMostNodes = std::numeric_limits<int>::max();
  const std::uint64_t channels = std::uint64_t{inputs} + outputs;
  if (!nvx::Holds(file, channels, nvx::kRecordSize<LutChannelHeader>)) {
    return nvx::Refuse(file, "colour table: channel count beyond the end");
  }
  const std::uint64_t nodes = CLutData::CountNodes(inputs, grid);
  const std::uint64_t rest = nvx::Remaining(file) - channels * nvx::kRecordSize<LutChannelHeader>;
  if (nodes > kMostNodes || nodes * outputs > rest) {
    return nvx::Refuse(file, "colour table: node count beyond the end");
  }
  return true;
}

bool ReadChannels(CNvxFile& file, CLutData& data, std::uint32_t count, ChannelAt channelAt) {
  for (std::uint32_t i = 0; i < count; ++i) {
    LutChannelHeader header;
    if (!nvx::ReadChecked(file, header)) return false;
    CLutChannelInf* const channel = (data.*channelAt)(static_cast<int>(i));
    if (channel == nullptr) return false;
    if (nvx::FieldText(header.channelName).size() >= CLutChannelInf::kNameLength) {
      nvx::PassOver(file, "channel header: name cut to 127 characters");
    }
    channel->SetChannelCode(header.channelCode);
    channel->SetChannelAttribute(header.channelAttribute);
    channel->SetChannelName(header.channelName);
  }
  return true;
}

bool WriteChannels(CNvxFile& file, CLutData& data, std::uint32_t count, ChannelAt channelAt) {
  for (std::uint32_t i = 0; i < count; ++i) {
    LutChannelHeader header;
    if (const CLutChannelInf* const channel = (data.*channelAt)(static_cast<int>(i))) {
      header.channelCode = channel->GetChannelCode();
      header.channelAttribute = channel->GetChannelAttribute();
      nvx::CopyText(header.channelName, nvx::TextOf(channel->GetChannelName()));
    }
    if (!nvx::WriteRecord(file, header)) return false;
  }
  return true;
}

// Calls transfer(samples, size) for the samples of all nodes in order until one gives false.
template <class Transfer>
bool ForEachRun(CLutData& data, Transfer transfer) {
  nvx::SampleRun run;
  for (int node = 0; node < data.GetSize(); node += run.nodes) {
    run = data.GetRun(node);
    if (run.size != 0 && !transfer(run.samples, run.size)) return false;
  }
  return true;
}

// Calls visit(run) for the samples of all nodes in order until one gives false.
template <class Visit>
bool ForEachView(const CLutData& data, Visit visit) {
  nvx::SampleView run;
  for (int node = 0; node < data.CountNodes(); node += run.nodes) {
    run = data.ViewRun(node);
    if (!visit(run)) return false;
  }
  return true;
}

// False for a table that would not load again: its nodes or channels are not those that its counts tell of.
bool FitsItsCounts(const CLutData& table) {
  const std::uint64_t outputs = table.GetOutputChannelCount();
  if (table.InputChannels().size() != table.GetInputChannelCount() || table.OutputChannels().size() != outputs) {
    return false;
  }
  std::uint64_t samples = 0;
  const bool even = ForEachView(table, [&](const nvx::SampleView& run) {
    samples += run.size;
    return run.size == static_cast<std::uint64_t>(run.nodes) * outputs;
  });
  const std::uint64_t nodes = CLutData::CountNodes(table.GetInputChannelCount(), table.GetGridCount());
  return even && (outputs == 0 || samples / outputs == nodes);
}

}  // namespace

CLutFile::~CLutFile() = default;

bool CLutFile::LoadHeader(CNvxFile& file) {
  LutHeader header;
  if (!nvx::ReadChecked(file, header)) return false;
  inputChannels_ = header.inputChannels;
  outputChannels_ = header.outputChannels;
  gridCount_ = header.gridCount;
  headerRead_ = true;
  return true;
}

bool CLutFile::LoadFile(CNvxFile& file, CLutData* data) {
  if (data == nullptr || (!headerRead_ && !LoadHeader(file))) return false;
  if (!HoldsTable(file, inputChannels_, outputChannels_, gridCount_)) return false;
  data->Initialize(inputChannels_, outputChannels_, gridCount_);
  return ReadChannels(file, *data, inputChannels_, &CLutData::GetAtInputChannelInf) &&
         ReadChannels(file, *data, outputChannels_, &CLutData::GetAtOutputChannelInf) &&
         (ForEachRun(*data,
                     [&](std::uint8_t* samples, std::uint32_t size) { return nvx::ReadExact(file, samples, size); }) ||
          nvx::Refuse(file, "colour table: nodes cut short"));
}

bool CLutFile::SaveFile(CNvxFile& file, CLutData* data) {
  if (data == nullptr || !FitsItsCounts(*data)) return false;
  LutHeader header;
  header.inputChannels = data->GetInputChannelCount();
  header.outputChannels = data->GetOutputChannelCount();
  header.gridCount = data->GetGridCount();
  return nvx::WriteRecord(file, header) &&
         WriteChannels(file, *data, header.inputChannels, &CLutData::GetAtInputChannelInf) &&
         WriteChannels(file, *data, header.outputChannels, &CLutData::GetAtOutputChannelInf) &&
         ForEachView(*data, [&](const nvx::SampleView& run) { return nvx::WriteExact(file, run.samples, run.size); });
}
