#include "adjust/adjust_keys.h"
#include "adjust/adjust_syntax.h"
#include "adjust/initialize.h"

#include <nvxprofile/adjust_inspection.h>

#include <array>
#include <charconv>
#include <map>
#include <utility>

namespace nvx {
namespace {

using namespace nvx::adjust;

constexpr std::array kKinds = {AdjustKind::kColor, AdjustKind::kColorV3, AdjustKind::kDevice, AdjustKind::kSpecial};

enum class Numbers { kNone, kInk, kIndexAndInk };

struct KeyRule {
  std::string name;
  AdjustForm form;
  Numbers numbers = Numbers::kNone;
};
using KeyRules = std::vector<KeyRule>;

template <class Param>
void AddBlock(KeyRules& rules, const std::string& prefix, AdjustForm curve) {
  for (const DensityField<Param>& field : kDensityFields<Param>) {
    rules.push_back({prefix + field.name, AdjustForm::kNumber});
  }
  rules.push_back({prefix + kInkRatio, AdjustForm::kTruth});
  rules.push_back({prefix + kKCurve, curve});
  rules.push_back({prefix + kMixCurve, curve});
}

template <class Param>
KeyRules ColorRules(AdjustForm curve) {
  KeyRules rules = {{kProfileCode, AdjustForm::kNumber}, {kTotalDensity, AdjustForm::kNumber}};
  AddBlock<Param>(rules, kFirstBlock, curve);
  AddBlock<Param>(rules, kSecondBlock, curve);
  return rules;
}

KeyRules RulesOf(AdjustKind kind) {
  KeyRules rules;
  switch (kind) {
    case AdjustKind::kColor:
      rules = ColorRules<DENSITY_PARAM>(AdjustForm::kCurve8);
      rules.push_back({kGrayCurve, AdjustForm::kCurve8, Numbers::kInk});
      rules.push_back({kLimitCurve, AdjustForm::kCurve8, Numbers::kInk});
      break;
    case AdjustKind::kColorV3:
      rules = ColorRules<DENSITY_PARAM_V3>(AdjustForm::kCurve16);
      rules.push_back({kLinearCurve, AdjustForm::kCurve16, Numbers::kInk});
      rules.push_back({kLimitCurve, AdjustForm::kCurve16, Numbers::kIndexAndInk});
      break;
    case AdjustKind::kDevice:
      for (const DeviceField& field : kDeviceFields) rules.push_back({field.key, AdjustForm::kNumber});
      break;
    case AdjustKind::kSpecial:
      rules = {{kSpecialInkset, AdjustForm::kNumber},
               {kSpecialInkCount, AdjustForm::kNumber},
               {kSpecialInk, AdjustForm::kList},
               {kSpecialDensity, AdjustForm::kNumber, Numbers::kInk},
               {kVDApplyWay, AdjustForm::kNumber, Numbers::kInk}};
      for (const char* const name : {kVD01Curve, kVD02Curve, kVD03Curve, kLimitCurve}) {
        rules.push_back({name, AdjustForm::kCurve16, Numbers::kInk});
      }
      break;
  }
  return rules;
}

// The key as a reader asks for it, if the rule is the one that does.
std::optional<AdjustKey> Match(const KeyRule& rule, std::string_view key) {
  if (key.substr(0, rule.name.size()) != rule.name) return std::nullopt;
  const char* at = key.data() + rule.name.size();
  const char* const end = key.data() + key.size();
  const auto number = [&] {
    int value = 0;
    at = std::from_chars(at, end, value).ptr;
    return value;
  };
  AdjustKey found{std::string(key), rule.name, rule.form, std::nullopt, std::nullopt};
  std::string asked = rule.name;
  if (rule.numbers == Numbers::kInk) {
    found.ink = number();
    asked = InkKey(rule.name.c_str(), *found.ink);
  } else if (rule.numbers == Numbers::kIndexAndInk) {
    found.index = number();
    if (at != end) ++at;
    found.ink = number();
    asked = IndexInkKey(rule.name.c_str(), *found.index, *found.ink);
  }
  return key == asked ? std::optional(std::move(found)) : std::nullopt;
}

std::optional<AdjustKey> Match(const KeyRules& rules, std::string_view key) {
  for (const KeyRule& rule : rules) {
    if (auto found = Match(rule, key)) return found;
  }
  return std::nullopt;
}

std::string_view WithoutBlanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

// The lines that the readers take, and what they leave.
struct Lines {
  struct Line {
    std::size_t number;
    std::string text;
  };
  std::vector<Line> taken;
  std::size_t beyond = 0;
  std::size_t firstBeyond = 0;

  bool operator()(std::string_view text, std::size_t number) {
    if (taken.size() < kMaxLines) {
      taken.push_back({number, std::string(text)});
    } else if (beyond++ == 0) {
      firstBeyond = number;
    }
    return true;
  }
};

class Inspector {
 public:
  Inspector(const Lines& lines, const LineCutter& cutter) : lines_(lines), cutter_(cutter) {
    for (const Lines::Line& line : lines.taken) {
      if (!IsComment(line.text)) last_.insert_or_assign(std::string(Split(line.text).key), &line);
    }
  }

  AdjustInspection Inspect(std::optional<AdjustKind> kind) {
    result_.kind = kind ? kind : Guess();
    if (result_.kind) rules_ = RulesOf(*result_.kind);
    for (const Lines::Line& line : lines_.taken) {
      if (!IsComment(line.text)) InspectLine(line);
    }
    InspectEnd();
    return std::move(result_);
  }

 private:
  std::optional<AdjustKind> Guess() const {
    std::optional<AdjustKind> best;
    std::size_t most = 0;
    for (const AdjustKind kind : kKinds) {
      const KeyRules rules = RulesOf(kind);
      std::size_t count = 0;
      for (const auto& [key, line] : last_) count += Match(rules, key) ? 1 : 0;
      const bool widerCurves = count == most && kind == AdjustKind::kColorV3 && HasWideCurve(rules);
      if (count > most || (count != 0 && widerCurves)) best = kind;
      most = std::max(most, count);
    }
    return best;
  }

  // True if a curve of the file does not fit samples of 8 bits.
  bool HasWideCurve(const KeyRules& rules) const {
    bool wide = false;
    for (const auto& [key, line] : last_) {
      const auto found = Match(rules, key);
      if (!found || found->form != AdjustForm::kCurve16) continue;
      ForEachItem(Split(line->text).value, [&](std::string_view item) {
        wide |= ParseNumber(item).value > 0xFF;
        return !wide;
      });
    }
    return wide;
  }

  void InspectLine(const Lines::Line& line) {
    const auto [key, value] = Split(line.text);
    const Lines::Line* const winner = last_.find(std::string(key))->second;
    if (winner != &line) {
      Remark(line, "line " + std::to_string(winner->number) + " has the same key and takes its place");
      return;
    }
    if (!result_.kind) return;
    auto found = Match(rules_, key);
    if (!found) {
      RemarkUnread(line);
      return;
    }
    result_.keys.push_back(*found);
    if (line.text.find('=') == line.text.npos) Remark(line, "has no \"=\": the whole line is the value");
    InspectValue(line, *found, value);
  }

  void RemarkUnread(const Lines::Line& line) {
    const std::string_view key = Split(line.text).key;
    const bool byPart = *result_.kind == AdjustKind::kColor &&
                        (key.find(kGrayCurvePart) != key.npos || key.find(kLimitCurvePart) != key.npos);
    if (Match(rules_, WithoutBlanks(key))) {
      Remark(line, "blanks belong to the key, so nothing reads it");
    } else if (byPart) {
      Remark(line, "is read only where curves are sought by a part of their keys");
    } else if (line.text.front() == '#') {
      Remark(line, "is no comment, which is a line of \"#\" alone; nothing reads it");
    } else {
      Remark(line, "nothing reads this key");
    }
  }

  void InspectValue(const Lines::Line& line, const AdjustKey& key, std::string_view value) {
    if (value.empty()) {
      Remark(line, "has no value and counts as missing");
      return;
    }
    switch (key.form) {
      case AdjustForm::kNumber:
        InspectNumber(line, key, value);
        break;
      case AdjustForm::kTruth:
        if (value != "true" && value != "false") Remark(line, "is neither true nor false and counts as missing");
        break;
      case AdjustForm::kCurve8:
        InspectCurve(line, value, 0xFF);
        break;
      case AdjustForm::kCurve16:
        InspectCurve(line, value, 0xFFFF);
        break;
      case AdjustForm::kList:
        InspectInks(line, value);
        break;
    }
  }

  void InspectNumber(const Lines::Line& line, const AdjustKey& key, std::string_view value) {
    const Number number = ParseNumber(value);
    if (!number.plain) Remark(line, "is no whole number and reads as " + std::to_string(number.value));
    if (key.name == kSpecialInkCount && number.value > SPECIAL_COLOR_ADJUST::kMaxInks) {
      Remark(line, "more than 8 inks: only the first 8 are read");
    }
  }

  // Remarks on the items that do not read as they stand: how many, and the first. Gives the number of items.
  template <class Convert>
  std::size_t InspectItems(const Lines::Line& line, std::string_view value, std::size_t limit, Convert convert) {
    std::size_t items = 0;
    std::size_t bent = 0;
    std::string first;
    ForEachItem(value, [&](std::string_view item) {
      if (items++ >= limit) return true;
      const Number number = ParseNumber(item);
      const int read = convert(number.value);
      if (number.plain && read == number.value) return true;
      if (bent++ == 0) {
        first = "item " + std::to_string(items) + ", \"" + std::string(item) + "\", reads as " + std::to_string(read);
      }
      return true;
    });
    if (bent > 1) first += ", and " + std::to_string(bent - 1) + " more do not read as they stand";
    if (bent != 0) Remark(line, std::move(first));
    return items;
  }

  void InspectCurve(const Lines::Line& line, std::string_view value, int mask) {
    const std::size_t items = InspectItems(line, value, kCurveLength, [=](int number) { return number & mask; });
    if (items > kCurveLength) {
      Remark(line, "of " + std::to_string(items) + " items the first 256 are read");
    } else if (items < kCurveLength) {
      Remark(line, "has " + std::to_string(items) + " of 256 items; the other samples stay as the caller has them");
    }
  }

  void InspectInks(const Lines::Line& line, std::string_view value) {
    const std::size_t items =
        InspectItems(line, value, SPECIAL_COLOR_ADJUST::kMaxInks, [](int number) { return number; });
    const auto count = last_.find(kSpecialInkCount);
    if (count == last_.end()) return;
    const int inks = ParseNumber(Split(count->second->text).value).value;
    if (inks >= 0 && static_cast<std::size_t>(inks) != items) {
      Remark(line, "has " + std::to_string(items) + " items for " + std::to_string(inks) + " inks");
    }
  }

  void InspectEnd() {
    if (lines_.beyond != 0) {
      result_.remarks.push_back({lines_.firstBeyond,
                                 {},
                                 "only " + std::to_string(kMaxLines) + " lines are read; from here on " +
                                     std::to_string(lines_.beyond) + " are dropped"});
    }
    if (!cutter_.Rest().empty()) {
      result_.remarks.push_back({cutter_.LineNumber(), std::string(Split(cutter_.Rest()).key),
                                 "the last line has no line end and is dropped"});
    }
    if (cutter_.HasEndMark()) {
      result_.remarks.push_back({cutter_.LineNumber(), {}, "byte 0x1A ends the file here"});
    }
  }

  void Remark(const Lines::Line& line, std::string text) {
    result_.remarks.push_back({line.number, std::string(Split(line.text).key), std::move(text)});
  }

  const Lines& lines_;
  const LineCutter& cutter_;
  std::map<std::string, const Lines::Line*> last_;  // the line that gives each key its value
  KeyRules rules_;
  AdjustInspection result_;
};

}  // namespace

std::optional<AdjustInspection> InspectAdjustFile(const char16_t* path, std::optional<AdjustKind> kind, CError& error) {
  LineCutter cutter;
  Lines lines;
  if (!CutFile(TextOf(path), cutter, lines)) {
    FailToOpen(TextOf(path), error);
    return std::nullopt;
  }
  return Inspector(lines, cutter).Inspect(kind);
}

AdjustInspection InspectAdjustText(std::string_view bytes, std::optional<AdjustKind> kind) {
  LineCutter cutter;
  Lines lines;
  cutter.Feed(bytes, lines);
  return Inspector(lines, cutter).Inspect(kind);
}

}  // namespace nvx
