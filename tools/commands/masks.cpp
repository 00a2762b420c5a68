// nvxprofile masks: the print masks of a profile, and the buffer that goes to the printer.
#include "command.h"
#include "files.h"
#include "loading.h"
#include "numbers.h"
#include "terminal.h"

#include <nvxprofile/mask_download.h>
#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

struct MasksOptions {
  std::string file;
  bool json = false;
  std::vector<std::string> pack;  // condition, output file
};

struct Condition {
  std::uint32_t pass = 0;
  std::uint32_t specialColorsetCode = 0;
  std::uint32_t printMethod = 0;
  std::vector<std::uint32_t> layerColors;
};

std::vector<std::uint32_t> ParseNumbers(std::string_view text) {
  std::vector<std::uint32_t> numbers;
  for (std::string_view rest = text;; rest.remove_prefix(rest.find(',') + 1)) {
    const auto number = NumberOf<std::uint32_t>(rest.substr(0, rest.find(',')));
    if (!number) throw UsageError("--pack", "numbers with commas between them are expected: " + std::string(text));
    numbers.push_back(*number);
    if (rest.find(',') == rest.npos) return numbers;
  }
}

Condition ParseCondition(std::string_view text) {
  const std::vector<std::uint32_t> numbers = ParseNumbers(text);
  if (numbers.size() < 3) throw UsageError("--pack", "pass, colour set and print method are expected");
  return {numbers[0], numbers[1], numbers[2], {numbers.begin() + 3, numbers.end()}};
}

// The record that the condition finds: its number of layer colours counts, their values do not. The method of a table
// for all methods is a hundred for each layer colour.
const CMaskParameterDataEntry* RecordOf(CProfileAccess& access, const Condition& condition) {
  auto* const entry = dynamic_cast<CMaskDownloadIncludePatternEntry*>(
      access.GetProfileData()->GetProfileDataEntryFromList(CProfileDataEntry::kMaskDownloadIncludePattern));
  if (entry == nullptr) return nullptr;
  const CMaskParameterData& records = *entry->GetMaskParameterData();
  const auto count = static_cast<std::uint32_t>(condition.layerColors.size());
  const CMaskParameterDataEntry* record =
      records.GetEntry(condition.pass, condition.specialColorsetCode, condition.printMethod, count, nullptr);
  return record != nullptr
             ? record
             : records.GetEntry(condition.pass, condition.specialColorsetCode, count * 100, count, nullptr);
}

// A mask for other layer colours than those that were asked for is what the library gives, and hardly what is wanted.
void WarnOfOtherColors(CProfileAccess& access, Condition condition, const std::string& file) {
  const CMaskParameterDataEntry* const record = RecordOf(access, condition);
  if (record == nullptr) return;
  std::vector<std::uint32_t> colors(record->GetLayerColorCount());
  for (std::size_t i = 0; i < colors.size(); ++i) colors[i] = record->GetLeyerColor(static_cast<int>(i));
  std::sort(condition.layerColors.begin(), condition.layerColors.end());
  if (condition.layerColors == colors) return;
  PrintErrorOf(file,
               fmt::format("warning: the mask is that of the layer colours {}; the colours {} are counted and not "
                           "compared",
                           fmt::join(colors, ","), fmt::join(condition.layerColors, ",")));
}

int Pack(CProfileAccess& access, Condition condition, const MasksOptions& options) {
  CError error;
  const auto pack = [&](std::uint8_t* buffer) {
    return access.GetMaskParameterAndPatternBuffer(
        buffer, condition.pass, condition.specialColorsetCode, condition.printMethod,
        static_cast<std::uint32_t>(condition.layerColors.size()), condition.layerColors.data(), &error);
  };
  std::vector<std::uint8_t> bytes(pack(nullptr));
  if (bytes.empty()) {
    const std::string message = MessageOf(error);
    PrintErrorOf(options.file, message.empty() ? "the condition uses a mask pattern that the profile lacks" : message);
    return kFailure;
  }
  pack(bytes.data());
  WarnOfOtherColors(access, condition, options.file);
  WriteOutput(options.pack.back(), bytes);
  return kSuccess;
}

std::string OutputInformation(const _tagDeviceProfileInfo& info) {
  return fmt::format("value {}, codes {} and {}, text \"{}\"", info.OutputFourthValue, info.OutputCodeA,
                     info.OutputCodeB, WideToUtf8(info.OutputText));
}

void PrintBlocks(CMaskDownLoadEntry& masks, const _tagDeviceProfileInfo& info) {
  const tagWeftHeader& header = *masks.GetWeftHeader();
  PrintLine(
      Styled(Style::kHeading, fmt::format("mask blocks, version {}.{}", header.VersionMajor, header.VersionMinor)));
  Table table({{"type", Table::Align::kRight}, {"bytes", Table::Align::kRight}, {"values"}});
  for (const tagWeftDatas& block : masks.GetWeftBlocks()) {
    const bool isOutput = &block == masks.GetWeftData(6);
    table.Add({std::to_string(block.BlockType), std::to_string(block.ByteCount),
               isOutput ? OutputInformation(info)
                        : fmt::format("{}", fmt::join(block.Values, block.Values + block.ValueCount, " "))});
  }
  table.Print(2);
}

void PrintRecords(const CMaskParameterData& records) {
  PrintLine(Styled(Style::kHeading, fmt::format("mask parameters, {}", records.GetEntryCount())));
  Table table({{"pass", Table::Align::kRight},
               {"colour set", Table::Align::kRight},
               {"method", Table::Align::kRight},
               {"bytes", Table::Align::kRight},
               {"layer colours"},
               {"patterns"}});
  for (const CMaskParameterDataEntry* const record : records.Entries()) {
    std::vector<std::uint32_t> colors(record->GetLayerColorCount());
    for (std::size_t i = 0; i < colors.size(); ++i) colors[i] = record->GetLeyerColor(static_cast<int>(i));
    std::vector<std::uint32_t> ids(record->GetUsePatternIDCount());
    for (std::size_t i = 0; i < ids.size(); ++i) ids[i] = record->GetUsePatternID(static_cast<int>(i));
    table.Add({std::to_string(record->GetPass()), std::to_string(record->GetSpecialColorsetCode()),
               std::to_string(record->GetPrintMethod()), std::to_string(record->GetParamDataSize()),
               fmt::format("{}", fmt::join(colors, " ")), fmt::format("{}", fmt::join(ids, " "))});
  }
  table.Print(2);
}

void PrintPatterns(const CMaskPatternData& patterns) {
  PrintLine(Styled(Style::kHeading, fmt::format("mask patterns, {}", patterns.GetEntryCount())));
  Table table({{"ID", Table::Align::kRight}, {"bytes", Table::Align::kRight}});
  for (const CMaskPatternDataEntry* const pattern : patterns.Entries()) {
    table.Add({std::to_string(pattern->GetMaskPatternID()), std::to_string(pattern->GetMaskPatternSize())});
  }
  table.Print(2);
}

int Print(CProfileAccess& access, const MasksOptions& options) {
  CProfileData& profile = *access.GetProfileData();
  auto* const blocks =
      dynamic_cast<CMaskDownLoadEntry*>(profile.GetProfileDataEntryFromList(CProfileDataEntry::kMaskDownload));
  auto* const patterns = dynamic_cast<CMaskDownloadIncludePatternEntry*>(
      profile.GetProfileDataEntryFromList(CProfileDataEntry::kMaskDownloadIncludePattern));
  CError error;
  if (blocks == nullptr && patterns == nullptr && !access.IsSupportWeftVersion(&error)) {
    PrintErrorOf(options.file, MessageOf(error));
    return kFailure;
  }
  if (options.json) {
    PrintJson({{"maskDownload", blocks != nullptr ? PayloadToJson(*blocks) : Json(nullptr)},
               {"maskPatterns", patterns != nullptr ? PayloadToJson(*patterns) : Json(nullptr)}});
    return kSuccess;
  }
  if (blocks != nullptr) PrintBlocks(*blocks, *access.GetProfileInfo());
  if (patterns != nullptr) {
    PrintRecords(*patterns->GetMaskParameterData());
    PrintPatterns(*patterns->GetMaskPatternData());
  }
  return kSuccess;
}

int Run(const MasksOptions& options) {
  Condition condition;
  if (!options.pack.empty()) condition = ParseCondition(options.pack.front());
  CProfileAccess access;
  if (!LoadProfile(options.file, access)) return kFailure;
  return options.pack.empty() ? Print(access, options) : Pack(access, condition, options);
}

}  // namespace

void AddMasksCommand(CommandLine& line) {
  Command command = line.AddCommand("masks", "Show print masks, or pack one for the printer");
  const auto options = std::make_shared<MasksOptions>();
  command.Add("FILE", &options->file, "A profile of any format").Required();
  const Option json = command.AddFlag("--json", options->json, "Write one JSON document");
  command
      .Add("--pack", &options->pack, "Write the printer's buffer for PASS,COLORSET,METHOD[,COLOR...] to the file OUT")
      .Count(2)
      .Type("CONDITION OUT")
      .Excludes(json);
  command.Example("nvxprofile masks glossy.icc --pack 4,1,200,1,2 mask.bin");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
