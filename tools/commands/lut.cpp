// nvxprofile lut: the colour separation table of a profile.
#include "command.h"
#include "loading.h"
#include "lut_nodes.h"
#include "numbers.h"
#include "terminal.h"

#include <nvxprofile/lut.h>
#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

struct LutOptions {
  std::string file;
  std::vector<std::string> slice;
  bool neutral = false;
  bool csv = false;
  bool json = false;
};

using NodeNumbers = std::vector<std::size_t>;

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

// The greatest total of all inks over the nodes, and their mean.
struct TotalInk {
  double greatest = 0;
  std::size_t node = 0;
  double mean = 0;
};

TotalInk TotalInkOf(const LutNodes& nodes) {
  TotalInk total;
  for (std::size_t i = 0; i < nodes.Count(); ++i) {
    const double percent = nodes.TotalInk(i);
    total.mean += percent / static_cast<double>(nodes.Count());
    if (percent > total.greatest) total = {percent, i, total.mean};
  }
  return total;
}

// An input that is held at one index of its axis.
struct Fixed {
  std::size_t input = 0;
  std::uint32_t index = 0;
};

// "1=16" holds the input 1 at the index 16; both count from 0.
Fixed FixedFrom(const std::string& text, CLutData& table) {
  const std::size_t sign = text.find('=');
  const auto input = NumberOf<std::size_t>(std::string_view(text).substr(0, sign));
  const std::string_view behind = sign != text.npos ? std::string_view(text).substr(sign + 1) : std::string_view();
  const auto index = NumberOf<std::uint32_t>(behind);
  if (!input || !index || *input >= table.GetInputChannelCount() || *index >= table.GetGridCount()) {
    throw std::runtime_error(
        fmt::format("--slice {}: INPUT=INDEX is expected, with an input from 0 to {} and an index "
                    "from 0 to {}",
                    text, table.GetInputChannelCount() - 1, table.GetGridCount() - 1));
  }
  return {*input, *index};
}

// The nodes that were asked for; all of them unless the options say otherwise.
NodeNumbers SelectNodes(CLutData& table, const LutNodes& nodes, const LutOptions& options) {
  std::vector<Fixed> slice;
  for (const std::string& text : options.slice) slice.push_back(FixedFrom(text, table));
  NodeNumbers numbers;
  for (std::size_t i = 0; i < nodes.Count(); ++i) {
    const std::vector<std::uint32_t> indices = nodes.IndicesOf(i);
    const bool isNeutral = std::adjacent_find(indices.begin(), indices.end(), std::not_equal_to<>()) == indices.end();
    const bool isInSlice = std::all_of(slice.begin(), slice.end(),
                                       [&](const Fixed& fixed) { return indices[fixed.input] == fixed.index; });
    if (isInSlice && (isNeutral || !options.neutral)) numbers.push_back(i);
  }
  return numbers;
}

// Names of the outputs, or what their codes are.
std::vector<std::string> OutputNames(CLutData& table) {
  std::vector<std::string> names;
  for (int i = 0; const CLutChannelInf* const channel = table.GetAtOutputChannelInf(i); ++i) {
    std::string name = WideToUtf8(AnsiToWide(channel->GetChannelName()));
    names.push_back(name.empty() ? fmt::format("ink {}", channel->GetChannelCode()) : std::move(name));
  }
  return names;
}

void PrintNodes(CLutData& table, const LutNodes& nodes, const NodeNumbers& numbers) {
  std::vector<Table::Column> columns{{"inputs", Table::Align::kRight}};
  for (const std::string& name : OutputNames(table)) columns.push_back({name, Table::Align::kRight});
  columns.push_back({"total", Table::Align::kRight});
  Table list(std::move(columns));
  for (const std::size_t number : numbers) {
    std::vector<std::string> cells{nodes.InputText(number)};
    for (const std::uint8_t sample : nodes.SamplesOf(number))
      cells.push_back(fmt::format("{:.1f}", 100.0 / 255 * sample));
    cells.push_back(fmt::format("{:.1f} %", nodes.TotalInk(number)));
    list.Add(std::move(cells));
  }
  list.Print();
}

void PrintCsv(CLutData& table, const LutNodes& nodes, const NodeNumbers& numbers) {
  std::string titles;
  for (std::uint32_t i = 0; i < table.GetInputChannelCount(); ++i) titles += fmt::format("input {},", i);
  for (const std::string& name : OutputNames(table)) titles += CsvField(name) + ',';
  PrintLine(titles + "total percent");
  for (const std::size_t number : numbers) {
    PrintLine(fmt::format("{},{},{:.2f}", fmt::join(nodes.IndicesOf(number), ","),
                          fmt::join(nodes.SamplesOf(number), ","), nodes.TotalInk(number)));
  }
}

Json NodesToJson(const LutNodes& nodes, const NodeNumbers& numbers) {
  Json list = Json::array();
  for (const std::size_t number : numbers) {
    const auto samples = nodes.SamplesOf(number);
    list.push_back({{"inputs", nodes.IndicesOf(number)},
                    {"samples", std::vector<std::uint8_t>(samples.begin(), samples.end())},
                    {"totalInk", nodes.TotalInk(number)}});
  }
  return list;
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
  const LutNodes nodes(table);
  const TotalInk total = TotalInkOf(nodes);
  const std::vector<std::uint32_t> at = nodes.Count() != 0 ? nodes.IndicesOf(total.node) : std::vector<std::uint32_t>();
  return {{"file", file},
          {"totalInk", {{"greatest", total.greatest}, {"at", at}, {"mean", total.mean}}},
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
  const LutNodes nodes(table);
  if (nodes.Count() == 0) return;
  const TotalInk total = TotalInkOf(nodes);
  PrintLine(fmt::format("total ink at most {:.1f} %, at {}; {:.1f} % on average", total.greatest,
                        nodes.InputText(total.node), total.mean));
}

int Run(const LutOptions& options) {
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
  const LutNodes nodes(table);
  const bool wantsNodes = options.neutral || !options.slice.empty();
  if (options.json) {
    Json document = ToJson(options.file, table);
    if (wantsNodes) document["nodes"] = NodesToJson(nodes, SelectNodes(table, nodes, options));
    PrintJson(document);
  } else if (options.csv) {
    PrintCsv(table, nodes, SelectNodes(table, nodes, options));
  } else if (wantsNodes) {
    PrintNodes(table, nodes, SelectNodes(table, nodes, options));
  } else {
    Print(table);
  }
  return kSuccess;
}

}  // namespace

void AddLutCommand(CommandLine& line) {
  Command command = line.AddCommand("lut", "Describe the colour separation table");
  const auto options = std::make_shared<LutOptions>();
  command.Add("FILE", &options->file, "Profile of any format").Required();
  command
      .Add("--slice", &options->slice,
           "The nodes where inputs are held at an index of their axis; both count from 0, and the first input "
           "varies slowest")
      .Separated()
      .Type("INPUT=INDEX...");
  command.AddFlag("--neutral", options->neutral, "The nodes where all inputs are equal");
  const Option csv = command.AddFlag("--csv", options->csv, "Write one line for each node, with its total ink");
  command.AddFlag("--json", options->json, "Write a JSON document").Excludes(csv);
  command.Example("nvxprofile lut glossy.icc --slice 0=0,1=0 --csv");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
