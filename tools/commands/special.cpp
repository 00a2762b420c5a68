// nvxprofile special: what a profile recommends for special colours, or for those of a printing condition.
#include "command.h"
#include "loading.h"
#include "terminal.h"

#include <nvxprofile/special_color.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

using Words = std::vector<std::int32_t>;

struct SpecialOptions {
  std::string file;
  Words condition;
  Words colors;
  bool json = false;
};

CSpecialColorInfoEntry* ColorsOf(CProfileAccess& access) {
  return dynamic_cast<CSpecialColorInfoEntry*>(
      access.GetProfileData()->GetProfileDataEntryFromList(CProfileDataEntry::kSpecialColorInfo));
}

std::string StoredColor(std::int32_t value) { return value == -1 ? "any" : std::to_string(value); }

void PrintPatterns(CSpecialColorInfoDataEntry& table) {
  PrintLine(Styled(Style::kHeading, fmt::format("patterns, {}", table.GetPatternCount())));
  Table list({{"pattern", Table::Align::kRight},
              {"condition 1", Table::Align::kRight},
              {"2", Table::Align::kRight},
              {"colours"},
              {"level", Table::Align::kRight},
              {"density", Table::Align::kRight},
              {"VD curves", Table::Align::kRight}});
  constexpr std::int32_t kHead = 4;
  const auto words = table.Arrays().Words(0);
  const std::int32_t stride =
      table.GetPatternCount() > 0 && words.size() > kHead
          ? static_cast<std::int32_t>((words.size() - kHead) / static_cast<std::size_t>(table.GetPatternCount()))
          : 0;
  const std::int32_t slots = table.GetParameter(kHead + 4, 0);
  for (std::int32_t i = 0; stride > 0 && i < table.GetPatternCount(); ++i) {
    const auto word = [&](std::int32_t number) { return table.GetParameter(kHead + i * stride + number, 0); };
    std::vector<std::string> colors;
    for (std::int32_t j = 5; j < stride && j - 5 < slots; ++j) colors.push_back(StoredColor(word(j)));
    list.Add({std::to_string(i), StoredColor(word(2)), StoredColor(word(3)), fmt::format("{}", fmt::join(colors, " ")),
              std::to_string(table.SeekPatternRecommendLevel(i)), std::to_string(table.SeekPatternRecommendDensity(i)),
              std::to_string(table.SeekPatternVDCurveIndex(i))});
  }
  list.Print(2);
}

void PrintCurves(CSpecialColorInfoDataEntry& table) {
  if (table.GetCountVD() == 0) return;
  PrintLine(Styled(Style::kHeading, fmt::format("VD curve sets, {}", table.GetCountVD())));
  Table list({{"set", Table::Align::kRight},
              {"ink", Table::Align::kRight},
              {"name"},
              {"extend", Table::Align::kRight},
              {"samples", Table::Align::kRight},
              {"bits", Table::Align::kRight}});
  int number = 0;
  for (CCurveData* const set : table.CurvesVD()) {
    ++number;
    bool more = set->GetHeadPosition();
    while (more) {
      CCurveDataEntry& curve = *set->GetNext(more);
      const Json name = NarrowToJson(curve.GetInkName());
      list.Add({std::to_string(number), std::to_string(curve.GetInkID()),
                name.is_string() ? name.get<std::string>() : "", std::to_string(curve.GetExtendInfo()),
                std::to_string(curve.GetCount()), curve.GetDataType() == 2 ? "16" : "8"});
    }
  }
  list.Print(2);
}

int PrintColors(CProfileAccess& access, bool json) {
  CSpecialColorInfoEntry* const entry = ColorsOf(access);
  if (json) {
    PrintJson(PayloadToJson(*entry));
    return kSuccess;
  }
  CSpecialColorInfoData& data = *entry->GetSpecialColorInfoData();
  PrintLine(fmt::format("profile colour type {}", data.GetProfileColorType()));
  for (CSpecialColorInfoDataEntry* const table : data.Entries()) {
    PrintPatterns(*table);
    PrintCurves(*table);
  }
  return kSuccess;
}

// What a print job learns of one ink.
struct InkAnswer {
  std::int32_t ink = 0;
  std::optional<std::int32_t> density;
  Words samples;
};

InkAnswer AskInk(CProfileAccess& access, const Words& condition, std::int32_t ink) {
  InkAnswer answer{ink, std::nullopt, {}};
  CError error;
  std::int32_t density = 0;
  if (access.GetSpecialColorRecommendDensity(density, condition[0], condition[1], ink, &error)) {
    answer.density = density;
  }
  std::int32_t size = 0;
  std::int32_t type = 0;
  const void* const samples = access.GetSpecialColorVDCurve(size, type, 0, condition[0], condition[1], ink, &error);
  if (samples == nullptr) return answer;
  const auto* const bytes = static_cast<const std::uint8_t*>(samples);
  const auto* const words = static_cast<const std::uint16_t*>(samples);
  for (std::int32_t i = 0; i < (type == 2 ? size / 2 : size); ++i) {
    answer.samples.push_back(type == 2 ? words[i] : bytes[i]);
  }
  return answer;
}

Json NumberOrNull(const std::optional<std::int32_t>& number) { return number ? Json(*number) : Json(nullptr); }

int PrintAnswer(CProfileAccess& access, SpecialOptions options) {
  CError error;
  std::optional<std::int32_t> level;
  std::int32_t found = 0;
  if (access.GetSpecialColorRecommendLevel(found, options.condition[0], options.condition[1],
                                           static_cast<std::int32_t>(options.colors.size()), options.colors.data(),
                                           &error)) {
    level = found;
  }
  std::vector<InkAnswer> inks;
  bool isAnswered = level.has_value();
  for (const std::int32_t ink : options.colors) {
    inks.push_back(AskInk(access, options.condition, ink));
    isAnswered = isAnswered || inks.back().density;
  }
  if (!isAnswered) {
    PrintErrorOf(options.file, "no pattern passes the condition");
    return kFailure;
  }
  if (options.json) {
    Json list = Json::array();
    for (const InkAnswer& ink : inks) {
      list.push_back({{"ink", ink.ink},
                      {"density", NumberOrNull(ink.density)},
                      {"curveVD", ink.samples.empty() ? Json(nullptr) : Json(ink.samples)}});
    }
    PrintJson({{"condition", options.condition},
               {"colors", options.colors},
               {"level", NumberOrNull(level)},
               {"inks", std::move(list)}});
    return kSuccess;
  }
  PrintLine(level ? fmt::format("level {}, counted from 0", *level) : "no level for these colours together");
  Table list({{"ink", Table::Align::kRight}, {"density", Table::Align::kRight}, {"VD curve"}});
  for (const InkAnswer& ink : inks) {
    list.Add({std::to_string(ink.ink), ink.density ? std::to_string(*ink.density) : "-",
              ink.samples.empty()
                  ? "-"
                  : fmt::format("{} samples, {} to {}", ink.samples.size(), ink.samples.front(), ink.samples.back())});
  }
  list.Print(2);
  return kSuccess;
}

int Run(const SpecialOptions& options) {
  CProfileAccess access;
  if (!LoadProfile(options.file, access)) return kFailure;
  if (ColorsOf(access) == nullptr) {
    PrintErrorOf(options.file, "the profile has no special colours");
    return kFailure;
  }
  return options.condition.empty() ? PrintColors(access, options.json) : PrintAnswer(access, options);
}

}  // namespace

void AddSpecialCommand(CommandLine& line) {
  Command command = line.AddCommand("special", "Show what a profile recommends for special colours");
  const auto options = std::make_shared<SpecialOptions>();
  command.Add("FILE", &options->file, "A profile of any format").Required();
  const Option condition =
      command.Add("--condition", &options->condition, "Ask for the colours under this printing condition")
          .Separated()
          .Count(2)
          .Type("A,B");
  command.Add("--colors", &options->colors, "Codes of the special colours that are printed together")
      .Separated()
      .Type("N,N...")
      .Needs(condition);
  command.AddFlag("--json", options->json, "Write one JSON document");
  command.Example("nvxprofile special glossy.icc --condition 1,2 --colors 17,18");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
