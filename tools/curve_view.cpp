#include "curve_view.h"

#include "loading.h"
#include "terminal.h"

#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>

#include <map>

namespace nvx::tool {
namespace {

void PrintTable(const std::vector<CCurveDataEntry*>& curves) {
  using enum Table::Align;
  Table table({{"ink", kRight},
               {"name"},
               {"slot", kRight},
               {"extend", kRight},
               {"bits", kRight},
               {"samples", kRight},
               {"min", kRight},
               {"max", kRight},
               {"first", kRight},
               {"middle", kRight},
               {"last", kRight}});
  for (CCurveDataEntry* const curve : curves) {
    const std::vector<std::uint32_t> samples = SamplesOf(*curve);
    const auto sample = [&](std::size_t index) { return samples.empty() ? "-" : std::to_string(samples[index]); };
    table.Add({std::to_string(curve->GetInkID()), NameOf(*curve), std::to_string(curve->GetSlotNo()),
               std::to_string(curve->GetExtendInfo()), std::to_string(8 * curve->GetDataType()),
               std::to_string(samples.size()), std::to_string(curve->GetMin()), std::to_string(curve->GetMax()),
               sample(0), sample(samples.size() / 2), sample(samples.size() - 1)});
  }
  table.Print(2);
}

void PrintPlot(CCurveDataEntry& curve, PlotStyle style) {
  const std::vector<std::uint32_t> samples = SamplesOf(curve);
  if (samples.empty()) return;
  const auto greatest = static_cast<std::uint32_t>(curve.GetMaxBitValue());
  PrintLine();
  std::string title = fmt::format("  ink {}", curve.GetInkID());
  if (const std::string name = NameOf(curve); !name.empty()) title += " " + name;
  if (curve.GetExtendInfo() != 0) title += fmt::format(", extend {}", curve.GetExtendInfo());
  PrintLine(Styled(Style::kHeading, title));
  const std::vector<std::string> lines = Plot(samples, greatest, style);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string label = i == 0 ? std::to_string(greatest) : i + 1 == lines.size() ? "0" : "";
    PrintLine(fmt::format("  {:>6} {}", label, lines[i]));
  }
  PrintLine(fmt::format("  {:>6} 0{:>47}", "", samples.size() - 1));
}

}  // namespace

std::vector<CCurveDataEntry*> CurvesOf(CCurveData& set) {
  std::vector<CCurveDataEntry*> curves;
  bool more = set.GetHeadPosition();
  while (more) curves.push_back(set.GetNext(more));
  return curves;
}

std::vector<std::uint32_t> SamplesOf(CCurveDataEntry& curve) {
  std::vector<std::uint32_t> samples(curve.GetCount());
  for (std::uint32_t i = 0; i < curve.GetCount(); ++i) curve.GetAt(i, samples[i]);
  return samples;
}

std::string NameOf(const CCurveDataEntry& curve) { return WideToUtf8(AnsiToWide(curve.GetInkName())); }

void AddPlotOptions(Command& command, PlotStyle& style) {
  style = UsualPlotStyle();
  const std::map<std::string, PlotStyle> styles{
      {"braille", PlotStyle::kBraille}, {"ascii", PlotStyle::kAscii}, {"none", PlotStyle::kNone}};
  const Option plot =
      command.AddWords("--plot", style, styles, "Plot the curves in this style; by default as a terminal shows them");
  command
      .AddFlag(
          "--no-plot", [&style] { style = PlotStyle::kNone; }, "Do not plot the curves")
      .Excludes(plot);
}

void PrintCurves(std::uint32_t usedType, const std::vector<CCurveDataEntry*>& curves, PlotStyle style) {
  PrintLine(Styled(Style::kHeading, EntryName(usedType)) + fmt::format(" (type {})", usedType));
  PrintTable(curves);
  if (style == PlotStyle::kNone) return;
  for (CCurveDataEntry* const curve : curves) PrintPlot(*curve, style);
}

}  // namespace nvx::tool
