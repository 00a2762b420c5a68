#include "colorants.h"
#include "numbers.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace nvx::tool {
namespace {

struct Colorant {
  std::string_view letters;
  std::string_view color;
  std::string_view shade;  // "", or what stands before the colour
};

// In the order in which calibration files list them.
constexpr std::array<Colorant, 18> kColorants{{{"C", "cyan", ""},
                                               {"M", "magenta", ""},
                                               {"Y", "yellow", ""},
                                               {"K", "black", ""},
                                               {"O", "orange", ""},
                                               {"R", "red", ""},
                                               {"G", "green", ""},
                                               {"B", "blue", ""},
                                               {"W", "white", ""},
                                               {"c", "cyan", "light"},
                                               {"m", "magenta", "light"},
                                               {"y", "yellow", "light"},
                                               {"k", "black", "light"},
                                               {"2c", "cyan", "medium"},
                                               {"2m", "magenta", "medium"},
                                               {"2y", "yellow", "medium"},
                                               {"2k", "black", "medium"},
                                               {"1k", "black", "lightlight"}}};

const Colorant* Find(std::string_view letters) {
  const auto found =
      std::find_if(kColorants.begin(), kColorants.end(), [=](const Colorant& c) { return c.letters == letters; });
  return found != kColorants.end() ? &*found : nullptr;
}

// Small letters alone, so that "Light Cyan" and "light-cyan" are one name.
std::string Plain(std::string_view name) {
  std::string plain;
  for (const char c : name) {
    if (c >= 'A' && c <= 'Z') plain += static_cast<char>(c - 'A' + 'a');
    if (c >= 'a' && c <= 'z') plain += c;
  }
  return plain;
}

void Replace(std::string& text, std::string_view from, std::string_view to) {
  for (std::size_t at = text.find(from); at != text.npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

// Empty for a name that tells no colorant.
std::string_view ColorantNamed(std::string_view name) {
  if (Find(name) != nullptr) return Find(name)->letters;
  std::string plain = Plain(name);
  if (plain.starts_with("lt")) plain.replace(0, 2, "light");
  Replace(plain, "grey", "gray");
  Replace(plain, "lightgray", "lightlightblack");
  if (plain == "gray") plain = "lightblack";
  Replace(plain, "photo", "");
  Replace(plain, "matte", "");
  for (const Colorant& colorant : kColorants) {
    const std::string full = std::string(colorant.shade) + std::string(colorant.color);
    const bool abbreviated =
        colorant.shade == "light" && plain.size() == 2 && plain[0] == 'l' && plain.substr(1) == colorant.letters;
    if (plain == full || abbreviated) return colorant.letters;
  }
  return {};
}

std::string Letters() {
  std::vector<std::string_view> letters;
  for (const Colorant& colorant : kColorants) letters.push_back(colorant.letters);
  return fmt::format("{}", fmt::join(letters, ", "));
}

}  // namespace

std::vector<std::string> ColorantsIn(std::string_view representation) {
  std::vector<std::string> colorants;
  while (!representation.empty()) {
    const std::size_t length = representation.front() == '1' || representation.front() == '2' ? 2 : 1;
    const Colorant* const colorant = Find(representation.substr(0, length));
    if (colorant == nullptr) return {};
    colorants.emplace_back(colorant->letters);
    representation.remove_prefix(colorant->letters.size());
  }
  return colorants;
}

std::size_t PositionOf(const std::string& colorant) {
  const Colorant* const found = Find(colorant);
  return found != nullptr ? static_cast<std::size_t>(found - kColorants.data()) : kColorants.size();
}

InkTable::InkTable(const std::vector<std::string>& assignments) {
  for (const std::string& assignment : assignments) {
    const std::size_t sign = assignment.find('=');
    const auto ink = NumberOf<std::uint8_t>(std::string_view(assignment).substr(0, sign));
    if (sign == assignment.npos || !ink) {
      throw std::runtime_error(
          fmt::format("\"{}\" assigns no colorant to an ink, as 9=O does with the ink of code 9", assignment));
    }
    const std::string colorant = assignment.substr(sign + 1);
    if (Find(colorant) == nullptr) {
      throw std::runtime_error(
          fmt::format(R"("{}": there is no colorant "{}"; there are {})", assignment, colorant, Letters()));
    }
    assigned_[*ink] = colorant;
  }
}

std::string InkTable::ColorantOf(std::uint32_t inkId, const std::string& name) const {
  const auto assigned = assigned_.find(inkId);
  if (assigned != assigned_.end()) return assigned->second;
  std::string_view colorant = ColorantNamed(name);
  if (colorant.empty() && name.empty() && inkId >= 1 && inkId <= 4) colorant = kColorants[inkId - 1].letters;
  if (!colorant.empty()) return std::string(colorant);
  throw std::runtime_error(fmt::format(
      "the ink {} \"{}\" stands for no colorant by its name; --inks {}=LETTER says which it is", inkId, name, inkId));
}

}  // namespace nvx::tool
