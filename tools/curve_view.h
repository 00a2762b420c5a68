// Curves for people: a table with a line for each, and a plot of each.
#pragma once

#include "command_line.h"
#include "terminal.h"

#include <nvxprofile/curve.h>

#include <cstdint>
#include <string>
#include <vector>

namespace nvx::tool {

// The ExtendInfo of the curve that limits an ink among those of a multi ink limit.
inline constexpr std::uint32_t kInkLimitKey = 12;

// The curves of a set, in order.
std::vector<CCurveDataEntry*> CurvesOf(CCurveData& set);
std::vector<std::uint32_t> SamplesOf(CCurveDataEntry& curve);
// The ink name in UTF-8.
std::string NameOf(const CCurveDataEntry& curve);

// The options --plot and --no-plot of a command; `style` starts as what the terminal shows.
void AddPlotOptions(Command& command, PlotStyle& style);

// Writes the curves of an entry of that type to standard output.
void PrintCurves(std::uint32_t usedType, const std::vector<CCurveDataEntry*>& curves, PlotStyle style);

}  // namespace nvx::tool
