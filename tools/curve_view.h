// Curves for people: a table with a line for each, and a plot of each.
#pragma once

#include "terminal.h"

#include <nvxprofile/curve.h>

#include <CLI/CLI.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace nvx::tool {

// The curves of a set, in order.
std::vector<CCurveDataEntry*> CurvesOf(CCurveData& set);
std::vector<std::uint32_t> SamplesOf(CCurveDataEntry& curve);
// The ink name in UTF-8.
std::string NameOf(const CCurveDataEntry& curve);

// The options --plot and --no-plot of a command; `style` starts as what the terminal shows.
void AddPlotOptions(CLI::App& command, PlotStyle& style);

// Writes the curves of an entry of that type to standard output.
void PrintCurves(std::uint32_t usedType, const std::vector<CCurveDataEntry*>& curves, PlotStyle style);

}  // namespace nvx::tool
