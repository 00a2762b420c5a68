// The colours that an ICC profile says its device makes, out of the profile's own table.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace nvx::tool {

struct Lab {
  double l = 0;
  double a = 0;
  double b = 0;
};

struct Gamut {
  std::string tag;         // the table that was read
  std::uint32_t grid = 0;  // nodes along the first axis
  std::uint64_t nodes = 0;
  std::vector<Lab> outline;  // in a*b*: the convex hull of all nodes, anticlockwise
  std::vector<Lab> surface;  // the nodes that mix two colorants at most, each stored colour once
  Lab paper;                 // no colorant, or for additive devices all of them
  std::vector<Lab> solids;   // one for each colorant, alone at its greatest
};

// Reads the colorimetric table from the device (A2B1), or else the perceptual one (A2B0): of type lut8, lut16 or
// lutAToB with a colour table, into Lab or XYZ. Nothing for a profile without such a table or with one that breaks a
// rule.
std::optional<Gamut> ReadGamut(std::span<const std::uint8_t> profile);

}  // namespace nvx::tool
