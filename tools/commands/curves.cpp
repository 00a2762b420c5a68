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

struct CurvesOptions {
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

bool IsWanted(const CCurveDataEntry& curve, const CurvesOptions& options) {
  return (!options.ink || curve.GetInkID() == *options.ink) &&
         (!options.extendInfo || curve.GetExtendInfo() == *options.extendInfo);
}

// The curves as a query reads them: parsed from the entry's buffer.
Selection Select(CProfileCurveEntry& entry, const CurvesOptions& options, int& status) {
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

std::vector<Selection> SelectAll(CProfileData& data, const CurvesOptions& options, int& status) {
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

void PrintDocument(const std::vector<Selection>& selections, const CurvesOptions& options) {
  Json entries = Json::array();
  for (const Selection& selection : selections) {
    const std::uint32_t usedType = selection.entry->GetUsedType();
    Json payload = PayloadToJson(*selection.entry);
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
int WriteCalFile(const std::vector<Selection>& selections, const CurvesOptions& options) {
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

int Run(const CurvesOptions& options) {
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

void AddCurvesCommand(CommandLine& line) {
  Command command = line.AddCommand("curves", "Show the curves of a profile");
  const auto options = std::make_shared<CurvesOptions>();
  command.Add("FILE", &options->file, "A profile of any format").Required();
  command
      .Add("--entry", &options->entry,
           "One kind of curves alone: ink-limit, variable-ink-limit, variable, light-ink, linearization, "
           "gray-balance, ucr, multi-ink-limit, or its number")
      .Type("NAME");
  command.Add("--ink", &options->ink, "The curves of one ink colour code").Type("N");
  command.Add("--extend", &options->extendInfo, "The curves of one ExtendInfo").Type("N");
  const Option csv = command.AddFlag("--csv", options->csv, "Write one line for each sample");
  const Option json = command.AddFlag("--json", options->json, "Write a JSON document").Excludes(csv);
  const Option cal =
      command.Add("--cal", &options->cal, "Write the curves of one entry as a calibration file (CGATS text)")
          .Type("OUT")
          .Excludes(csv)
          .Excludes(json);
  command.Add("--inks", &options->inks, kInksHelp).Separated().Type("N=LETTER...").Needs(cal);
  AddPlotOptions(command, options->plot);
  command.Example("nvxprofile curves glossy.icc --entry linearization --cal glossy.cal");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
