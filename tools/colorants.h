// Names of colorants in calibration files, and the inks that they stand for.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace nvx::tool {

// Takes "CMYKcm" apart; empty if a part of it is no colorant.
std::vector<std::string> ColorantsIn(std::string_view representation);

// What the option --inks is for.
inline constexpr const char* kInksHelp =
    "Which colorant an ink colour code stands for (9=O), in place of what the name of the ink says";

// The order in which calibration files list a colorant; colorants have different ones.
std::size_t PositionOf(const std::string& colorant);

// Tells the colorant of an ink by its name ("Light Cyan", "lc" and "LtCyan" are c); an ink without a name is C, M, Y or
// K by its code, 1 to 4. What the user says of a code goes before both.
class InkTable {
 public:
  // Assignments such as "9=O". Throws std::runtime_error for one that is none.
  explicit InkTable(const std::vector<std::string>& assignments);

  // Throws std::runtime_error for an ink whose colorant is not known.
  std::string ColorantOf(std::uint32_t inkId, const std::string& name) const;

 private:
  std::map<std::uint32_t, std::string> assigned_;
};

}  // namespace nvx::tool
