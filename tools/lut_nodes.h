// The nodes of a separation table as points of its inputs.
#pragma once

#include <nvxprofile/lut.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace nvx::tool {

// The first input is taken to vary slowest, as in ICC tables.
class LutNodes {
 public:
  explicit LutNodes(CLutData& table);

  std::size_t Count() const { return width_ != 0 ? samples_.size() / width_ : 0; }
  // One sample for each output.
  std::span<const std::uint8_t> SamplesOf(std::size_t number) const;

  // Sum of the samples in percent of the full amount of one ink.
  double TotalInk(std::size_t number) const;

  // Index on the axis of each input.
  std::vector<std::uint32_t> IndicesOf(std::size_t number) const;
  // An index on an axis in percent of the input.
  double InputOf(std::uint32_t index) const { return grid_ > 1 ? 100.0 * index / (grid_ - 1) : 0; }
  // "0/50/100 %"
  std::string InputText(std::size_t number) const;

 private:
  std::vector<std::uint8_t> samples_;
  std::size_t width_;
  std::uint32_t inputs_;
  std::uint32_t grid_;
};

}  // namespace nvx::tool
