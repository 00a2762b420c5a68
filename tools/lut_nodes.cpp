#include "lut_nodes.h"

#include <fmt/format.h>

#include <numeric>

namespace nvx::tool {

LutNodes::LutNodes(CLutData& table)
    : width_(table.GetOutputChannelCount()), inputs_(table.GetInputChannelCount()), grid_(table.GetGridCount()) {
  const std::uint8_t* const samples = table.GetRefBuffer();
  samples_.assign(samples, samples + table.GetLutDataSize());
}

std::span<const std::uint8_t> LutNodes::SamplesOf(std::size_t number) const {
  return std::span(samples_).subspan(number * width_, width_);
}

double LutNodes::TotalInk(std::size_t number) const {
  const auto samples = SamplesOf(number);
  return 100.0 / 255 * std::accumulate(samples.begin(), samples.end(), 0);
}

std::vector<std::uint32_t> LutNodes::IndicesOf(std::size_t number) const {
  std::vector<std::uint32_t> indices(inputs_);
  for (std::size_t axis = inputs_; axis-- > 0; number /= grid_) {
    indices[axis] = static_cast<std::uint32_t>(number % grid_);
  }
  return indices;
}

std::string LutNodes::InputText(std::size_t number) const {
  std::string text;
  for (const std::uint32_t index : IndicesOf(number)) {
    text += fmt::format("{}{:.0f}", text.empty() ? "" : "/", InputOf(index));
  }
  return text + " %";
}

}  // namespace nvx::tool
