// nvxprofile lamp: the parameter tables of the UV lamp, or the one of a printing condition.
#include "command.h"
#include "loading.h"
#include "terminal.h"

#include <nvxprofile/large_parameter.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

using Words = std::vector<std::int32_t>;

struct LampOptions {
  std::string file;
  Words condition;
  bool json = false;
};

CLargeParameterEntry* EntryOf(CProfileAccess& access) {
  return dynamic_cast<CLargeParameterEntry*>(
      access.GetProfileData()->GetProfileDataEntryFromList(CProfileDataEntry::kLargeParameter));
}

// Ten to a line, each line with the number of its first word.
void PrintWords(std::span<const std::int32_t> words, int indent) {
  constexpr std::size_t kPerLine = 10;
  for (std::size_t i = 0; i < words.size(); i += kPerLine) {
    const auto line = words.subspan(i, std::min(kPerLine, words.size() - i));
    PrintLine(fmt::format("{:{}}{:>5}  {:>8}", "", indent, i, fmt::join(line, " ")));
  }
}

void PrintFixed(CLargeParameterDataEntry& table) {
  PrintLine(Styled(Style::kHeading, "one table for all conditions"));
  PrintWords(table.Arrays().Words(0), 2);
}

std::string Stored(std::int32_t condition) { return condition == -1 ? "any" : std::to_string(condition); }

void PrintPatterns(CLargeParameterDataEntry& table) {
  PrintLine(Styled(Style::kHeading, fmt::format("patterns, {}", table.GetPatternCount())));
  Table list({{"pattern", Table::Align::kRight},
              {"condition 1", Table::Align::kRight},
              {"2", Table::Align::kRight},
              {"3", Table::Align::kRight},
              {"4", Table::Align::kRight},
              {"parameters", Table::Align::kRight},
              {"splits"}});
  const auto words = table.Arrays().Words(0);
  const std::int32_t stride =
      table.GetPatternCount() > 0 && words.size() > 2
          ? static_cast<std::int32_t>((words.size() - 2) / static_cast<std::size_t>(table.GetPatternCount()))
          : 0;
  for (std::int32_t i = 0; stride > 0 && i < table.GetPatternCount(); ++i) {
    const auto condition = [&](std::int32_t number) {
      return Stored(table.GetParameter(2 + i * stride + 1 + number, 0));
    };
    Words splits;
    for (std::int32_t j = 0; j < table.SeekPatternSplitCount(i) && 12 + j < stride; ++j) {
      splits.push_back(table.SeekPatternSplitParamCount(i, j));
    }
    list.Add({std::to_string(i), condition(1), condition(2), condition(3), condition(4),
              std::to_string(table.SeekPatternParamCount(i)), fmt::format("{}", fmt::join(splits, " "))});
  }
  list.Print(2);
}

int PrintAll(CProfileAccess& access, bool json) {
  CLargeParameterEntry* const entry = EntryOf(access);
  if (json) {
    PrintJson(PayloadToJson(*entry));
    return kSuccess;
  }
  for (CLargeParameterDataEntry* const table : entry->GetLargeParameterData()->Entries()) {
    table->GetUsedType() == 1 ? PrintFixed(*table) : PrintPatterns(*table);
  }
  return kSuccess;
}

struct Answer {
  Words splitParamCounts;
  Words parameters;
};

// False with a message on standard error.
bool Ask(CProfileAccess& access, const LampOptions& options, Answer& answer) {
  const Words& c = options.condition;
  CError error;
  std::uint32_t count = 0;
  if (!access.GetUVLamp500ParamCount(count, c[0], c[1], c[2], c[3], &error)) {
    const std::string message = MessageOf(error);
    PrintErrorOf(options.file, message.empty() ? "no pattern passes the condition" : message);
    return false;
  }
  // The count is what the file says; the tables themselves say how much of it there can be.
  std::size_t most = 0;
  for (CLargeParameterDataEntry* const table : EntryOf(access)->GetLargeParameterData()->Entries()) {
    for (const std::int64_t array : {0, 1}) most = std::max(most, table->Arrays().Words(array).size());
  }
  if (count <= most) answer.parameters.resize(count);
  if (count > most || !access.GetUVLamp500Parameter(answer.parameters.data(), c[0], c[1], c[2], c[3], &error)) {
    PrintErrorOf(options.file, "the table ends before the parameters of its pattern");
    return false;
  }
  std::int32_t splits = 0;
  access.GetUVLamp500SplitCount(splits, c[0], c[1], c[2], c[3], &error);
  for (std::int32_t i = 0; i < splits && static_cast<std::size_t>(i) < most; ++i) {
    std::int32_t size = 0;
    access.GetUVLamp500SplitParamCount(size, i, c[0], c[1], c[2], c[3], &error);
    answer.splitParamCounts.push_back(size);
  }
  return true;
}

int PrintAnswer(CProfileAccess& access, const LampOptions& options) {
  Answer answer;
  if (!Ask(access, options, answer)) return kFailure;
  if (options.json) {
    PrintJson({{"condition", options.condition},
               {"splitParamCounts", answer.splitParamCounts},
               {"parameters", answer.parameters}});
    return kSuccess;
  }
  PrintLine(Styled(Style::kHeading, fmt::format("{} parameters, splits of {}", answer.parameters.size(),
                                                fmt::join(answer.splitParamCounts, " and "))));
  PrintWords(answer.parameters, 2);
  return kSuccess;
}

int Run(const LampOptions& options) {
  CProfileAccess access;
  if (!LoadProfile(options.file, access)) return kFailure;
  CError error;
  std::int32_t splits = 0;
  if (!access.GetUVLamp500SplitCount(splits, 0, 0, 0, 0, &error) && error.GetErrorReason() != 0) {
    PrintErrorOf(options.file, MessageOf(error));
    return kFailure;
  }
  return options.condition.empty() ? PrintAll(access, options.json) : PrintAnswer(access, options);
}

}  // namespace

void AddLampCommand(CommandLine& line) {
  Command command = line.AddCommand("lamp", "Show the parameter tables of the UV lamp");
  const auto options = std::make_shared<LampOptions>();
  command.Add("FILE", &options->file, "A profile of any format").Required();
  command.Add("--condition", &options->condition, "Ask for the table of this printing condition")
      .Separated()
      .Count(4)
      .Type("A,B,C,D");
  command.AddFlag("--json", options->json, "Write one JSON document");
  command.Example("nvxprofile lamp glossy.icc --condition 1,2,3,4");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
