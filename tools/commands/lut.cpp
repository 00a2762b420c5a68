// nvxprofile lut: the colour separation table of a profile.
#include "command.h"
#include "loading.h"
#include "terminal.h"

#include <nvxprofile/lut.h>
#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

struct Options {
  std::string file;
  bool json = false;
};

// The values of one output channel over all nodes.
struct Range {
  std::uint8_t least = 255;
  std::uint8_t greatest = 0;
  std::uint64_t sum = 0;
};

// One range for each output channel; empty for a table without nodes.
std::vector<Range> RangesOf(CLutData& table) {
  const std::size_t width = table.GetOutputChannelCount();
  const std::uint8_t* const samples = table.GetRefBuffer();
  const std::size_t size = table.GetLutDataSize();
  std::vector<Range> ranges(size != 0 ? width : 0);
  for (std::size_t i = 0; i < size; ++i) {
    Range& range = ranges[i % width];
    range.least = std::min(range.least, samples[i]);
    range.greatest = std::max(range.greatest, samples[i]);
    range.sum += samples[i];
  }
  return ranges;
}

double MeanOf(const Range& range, CLutData& table) { return static_cast<double>(range.sum) / table.GetSize(); }

Json ChannelToJson(const CLutChannelInf& channel) {
  return {{"channelCode", channel.GetChannelCode()},
          {"channelAttribute", channel.GetChannelAttribute()},
          {"channelName", NarrowToJson(channel.GetChannelName())}};
}

Json ToJson(const std::string& file, CLutData& table) {
  Json inputs = Json::array();
  for (int i = 0; const CLutChannelInf* const channel = table.GetAtInputChannelInf(i); ++i) {
    inputs.push_back(ChannelToJson(*channel));
  }
  const std::vector<Range> ranges = RangesOf(table);
  Json outputs = Json::array();
  for (int i = 0; const CLutChannelInf* const channel = table.GetAtOutputChannelInf(i); ++i) {
    Json output = ChannelToJson(*channel);
    const auto index = static_cast<std::size_t>(i);
    if (index < ranges.size()) {
      output["least"] = ranges[index].least;
      output["greatest"] = ranges[index].greatest;
      output["mean"] = MeanOf(ranges[index], table);
    }
    outputs.push_back(std::move(output));
  }
  return {{"file", file},
          {"inputChannelCount", table.GetInputChannelCount()},
          {"outputChannelCount", table.GetOutputChannelCount()},
          {"gridCount", table.GetGridCount()},
          {"size", table.GetSize()},
          {"lutDataSize", table.GetLutDataSize()},
          {"inputChannels", std::move(inputs)},
          {"outputChannels", std::move(outputs)}};
}

std::vector<std::string> CellsOf(const char* kind, const CLutChannelInf& channel) {
  return {kind, std::to_string(channel.GetChannelCode()), fmt::format("{:#x}", channel.GetChannelAttribute()),
          WideToUtf8(AnsiToWide(channel.GetChannelName()))};
}

void Print(CLutData& table) {
  PrintLine(fmt::format("{} inputs, {} outputs, grid {}: {} nodes, {} bytes", table.GetInputChannelCount(),
                        table.GetOutputChannelCount(), table.GetGridCount(), table.GetSize(), table.GetLutDataSize()));
  constexpr auto kRight = Table::Align::kRight;
  Table channels({{"channel"},
                  {"code", kRight},
                  {"attribute", kRight},
                  {"name"},
                  {"least", kRight},
                  {"greatest", kRight},
                  {"mean", kRight}});
  for (int i = 0; const CLutChannelInf* const channel = table.GetAtInputChannelInf(i); ++i) {
    channels.Add(CellsOf("input", *channel));
  }
  const std::vector<Range> ranges = RangesOf(table);
  for (int i = 0; const CLutChannelInf* const channel = table.GetAtOutputChannelInf(i); ++i) {
    std::vector<std::string> cells = CellsOf("output", *channel);
    const auto index = static_cast<std::size_t>(i);
    if (index < ranges.size()) {
      const Range& range = ranges[index];
      cells.push_back(std::to_string(range.least));
      cells.push_back(std::to_string(range.greatest));
      cells.push_back(fmt::format("{:.1f}", MeanOf(range, table)));
    }
    channels.Add(std::move(cells));
  }
  channels.Print();
}

int Run(const Options& options) {
  CProfileAccess access;
  if (!LoadProfile(options.file, access)) return kFailure;
  auto* const entry = dynamic_cast<CSeparateChromaEntry*>(
      access.GetProfileData()->GetProfileDataEntryFromList(CProfileDataEntry::kSeparateChroma));
  if (entry == nullptr) {
    // The library has the words.
    CError error;
    access.GetChromaInputChannel(nullptr, &error);
    PrintErrorOf(options.file, MessageOf(error));
    return kFailure;
  }
  if (!entry->BufferToData()) {
    PrintErrorOf(options.file, "the colour table of the profile cannot be read");
    return kFailure;
  }
  CLutData& table = *entry->GetLutData();
  if (options.json) {
    PrintJson(ToJson(options.file, table));
  } else {
    Print(table);
  }
  return kSuccess;
}

}  // namespace

void AddLutCommand(CLI::App& app, int& status) {
  CLI::App* const command = app.add_subcommand("lut", "Describe the colour separation table");
  const auto options = std::make_shared<Options>();
  command->add_option("FILE", options->file, "Profile of any format")->required();
  command->add_flag("--json", options->json, "Write a JSON document");
  command->callback([options, &status] { status = Run(*options); });
}

}  // namespace nvx::tool
