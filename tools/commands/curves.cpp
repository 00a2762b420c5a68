// nvxprofile curves: the curves of a profile, as tables with small plots, as CSV or as JSON.
#include "cal_curves.h"
#include "command.h"
#include "curve_view.h"
#include "files.h"
#include "loading.h"
#include "paths.h"
#include "saving.h"
#include "terminal.h"

#include <nvxprofile/curve_entry.h>

#include <fmt/format.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

struct Options {
  std::string file;
  std::string entry;
  std::optional<std::uint32_t> ink;
  std::optional<std::uint32_t> extendInfo;
  std::string cal;
  std::vector<std::string> inks;
  bool csv = false;
  PlotStyle plot = PlotStyle::kNone;
  bool json = false;
};

// The curves of one entry that were asked for.
struct Selection {
  CProfileDataEntry* entry = nullptr;
  std::vector<CCurveDataEntry*> curves;
};

bool IsWanted(const CCurveDataEntry& curve, const Options& options) {
  return (!options.ink || curve.GetInkID() == *options.ink) &&
         (!options.extendInfo || curve.GetExtendInfo() == *options.extendInfo);
}

// The curves as a query reads them: parsed from the entry's buffer.
Selection Select(CProfileCurveEntry& entry, const Options& options, int& status) {
  if (!entry.BufferToData()) {
    PrintErrorOf(options.file, fmt::format("{}: the curve set is damaged or empty", EntryName(entry.GetUsedType())));
    status = kFailure;
  }
  Selection selection{&entry, {}};
  for (CCurveDataEntry* const curve : CurvesOf(*entry.GetCurveData())) {
    if (IsWanted(*curve, options)) selection.curves.push_back(curve);
  }
  return selection;
}

std::vector<Selection> SelectAll(CProfileData& data, const Options& options, int& status) {
  const std::uint32_t wanted = options.entry.empty() ? 0 : UsedTypeByName(options.entry);
  std::vector<Selection> selections;
  bool more = data.GetEntryStartPos();
  while (more) {
    CProfileDataEntry* const entry = data.GetNextEntry(more);
    auto* const curves = dynamic_cast<CProfileCurveEntry*>(entry);
    if (curves == nullptr || (wanted != 0 && entry->GetUsedType() != wanted)) continue;
    Selection selection = Select(*curves, options, status);
    if (!selection.curves.empty()) selections.push_back(std::move(selection));
  }
  return selections;
}

void Print(const std::vector<Selection>& selections, PlotStyle plot) {
  for (const Selection& selection : selections) {
    if (&selection != &selections.front()) PrintLine();
    PrintCurves(selection.entry->GetUsedType(), selection.curves, plot);
  }
}

void PrintCsv(const std::vector<Selection>& selections) {
  PrintLine("entry,ink,extend,name,index,sample");
  for (const Selection& selection : selections) {
    for (CCurveDataEntry* const curve : selection.curves) {
      const std::string start = fmt::format("{},{},{},{}", EntryName(selection.entry->GetUsedType()), curve->GetInkID(),
                                            curve->GetExtendInfo(), CsvField(NameOf(*curve)));
      const std::vector<std::uint32_t> samples = SamplesOf(*curve);
      for (std::size_t i = 0; i < samples.size(); ++i) PrintLine(fmt::format("{},{},{}", start, i, samples[i]));
    }
  }
}

void PrintDocument(const std::vector<Selection>& selections, const Options& options) {
  Json entries = Json::array();
  for (const Selection& selection : selections) {
    const std::uint32_t usedType = selection.entry->GetUsedType();
    Json payload = CurvesToJson(*selection.entry);
    Json curves = Json::array();
    if (payload.is_object()) {
      for (Json& curve : payload["curves"]) {
        const bool wanted = (!options.ink || curve["inkID"] == *options.ink) &&
                            (!options.extendInfo || curve["extendInfo"] == *options.extendInfo);
        if (wanted) curves.push_back(std::move(curve));
      }
    }
    entries.push_back(
        {{"usedType", usedType}, {"name", std::string(EntryName(usedType))}, {"curves", std::move(curves)}});
  }
  PrintJson({{"file", options.file}, {"entries", std::move(entries)}});
}

// One entry as a calibration file. Nothing is written if the curves make none.
int WriteCalFile(const std::vector<Selection>& selections, const Options& options) {
  if (selections.size() != 1) {
    PrintErrorOf(options.file, fmt::format("{} entries have such curves; choose one with --entry", selections.size()));
    return kFailure;
  }
  try {
    CalFile cal = CurvesToCal(selections.front().curves, InkTable(options.inks));
    cal.description = FileNameOf(options.file);
    WriteText(options.cal, WriteCal(cal));
    return kSuccess;
  } catch (const std::runtime_error& error) {
    PrintErrorOf(options.file, error.what());
    return kFailure;
  }
}

int Run(const Options& options) {
  if (!options.entry.empty() && UsedTypeByName(options.entry) == 0) {
    PrintError(fmt::format("\"{}\" is no kind of entry", options.entry));
    return kUsage;
  }
  CProfileAccess access;
  if (!LoadProfile(options.file, access)) return kFailure;
  int status = kSuccess;
  const std::vector<Selection> selections = SelectAll(*access.GetProfileData(), options, status);
  if (selections.empty()) {
    PrintErrorOf(options.file, "the profile has no such curve");
    status = kFailure;
  }
  if (!options.cal.empty()) return status == kSuccess ? WriteCalFile(selections, options) : status;
  if (options.json) {
    PrintDocument(selections, options);
  } else if (options.csv) {
    PrintCsv(selections);
  } else {
    Print(selections, options.plot);
  }
  return status;
}

}  // namespace

void AddCurvesCommand(CLI::App& app, int& status) {
  CLI::App* const command = app.add_subcommand("curves", "Show the curves of a profile");
  const auto options = std::make_shared<Options>();
  command->add_option("FILE", options->file, "A profile of any format")->required();
  command
      ->add_option("--entry", options->entry,
                   "One kind of curves alone: ink-limit, variable-ink-limit, variable, light-ink, linearization, "
                   "gray-balance, ucr, multi-ink-limit, or its number")
      ->type_name("NAME");
  command->add_option("--ink", options->ink, "The curves of one ink colour code")->type_name("N");
  command->add_option("--extend", options->extendInfo, "The curves of one ExtendInfo")->type_name("N");
  CLI::Option* const csv = command->add_flag("--csv", options->csv, "Write one line for each sample");
  CLI::Option* const json = command->add_flag("--json", options->json, "Write a JSON document")->excludes(csv);
  CLI::Option* const cal =
      command->add_option("--cal", options->cal, "Write the curves of one entry as a calibration file (CGATS text)")
          ->type_name("OUT")
          ->excludes(csv)
          ->excludes(json);
  command->add_option("--inks", options->inks, kInksHelp)->delimiter(',')->type_name("N=LETTER...")->needs(cal);
  AddPlotOptions(*command, options->plot);
  command->footer("Example: nvxprofile curves glossy.icc --entry linearization --cal glossy.cal");
  command->callback([options, &status] { status = Run(*options); });
}

}  // namespace nvx::tool
