// Settings of the medium, print masks, lamp tables and special colours, as tuples in the order of their fields.
#include "arrays.h"

#include <pybind11/stl.h>

namespace nvx::python {
namespace {

MediaSetting SettingOf(std::uint32_t number) { return static_cast<MediaSetting>(number); }

void BindMedia(ProfileClass& profile) {
  profile
      .def("media",
           [](const SharedProfile& self, std::uint32_t setting) {
             const auto state = self.Read();
             return ViewOf(state->Media(SettingOf(setting)), state);
           })
      .def("set_media",
           [](SharedProfile& self, std::uint32_t setting, const std::vector<std::int32_t>& values) {
             self.Edit([&](Profile& changed) { changed.SetMedia(SettingOf(setting), values); });
           })
      .def("remove_media", [](SharedProfile& self, std::uint32_t setting) {
        return self.Edit([=](Profile& changed) { return changed.RemoveMedia(SettingOf(setting)); });
      });
}

// --- Print masks ---

using Numbers = std::vector<std::uint32_t>;
using BlockTuple = std::tuple<std::uint32_t, Numbers, py::bytes>;
using ConditionTuple = std::tuple<std::uint32_t, std::uint32_t, std::uint32_t, Numbers>;
using RuleTuple = std::tuple<ConditionTuple, py::bytes, Numbers>;
using PatternList = std::vector<std::tuple<std::uint32_t, py::bytes>>;

std::vector<std::uint8_t> VectorOf(const py::bytes& bytes) {
  const std::string_view view = bytes;
  return {view.begin(), view.end()};
}

BlockTuple TupleOf(const MaskBlock& block) { return {block.type, block.values, BytesOf(block.bytes)}; }

MaskCondition ConditionOf(const ConditionTuple& tuple) {
  const auto& [pass, specialColorset, printMethod, layerColors] = tuple;
  return {pass, specialColorset, printMethod, layerColors};
}

py::object MasksOf(const SharedProfile& self) {
  const auto masks = self.Read()->Masks();
  if (!masks) return py::none();
  std::vector<RuleTuple> rules;
  for (const auto& [condition, parameters, patterns] : masks->rules) {
    const ConditionTuple when{condition.pass, condition.specialColorset, condition.printMethod, condition.layerColors};
    rules.push_back({when, BytesOf(parameters), patterns});
  }
  PatternList patterns;
  for (const auto& [id, bytes] : masks->patterns) patterns.emplace_back(id, BytesOf(bytes));
  return py::make_tuple(rules, patterns);
}

void SetMasks(SharedProfile& self, const std::vector<RuleTuple>& rules, const PatternList& patterns) {
  MaskSet masks;
  for (const auto& [condition, parameters, ids] : rules) {
    masks.rules.push_back({ConditionOf(condition), VectorOf(parameters), ids});
  }
  for (const auto& [id, bytes] : patterns) masks.patterns[id] = VectorOf(bytes);
  self.Edit([&](Profile& changed) { changed.SetMasks(masks); });
}

void BindMasks(ProfileClass& profile) {
  profile
      .def("mask_blocks",
           [](const SharedProfile& self) {
             std::vector<BlockTuple> blocks;
             for (const MaskBlock& block : self.Read()->MaskBlocks()) blocks.push_back(TupleOf(block));
             return blocks;
           })
      .def("set_mask_blocks",
           [](SharedProfile& self, const std::vector<BlockTuple>& tuples) {
             std::vector<MaskBlock> blocks;
             for (const auto& [type, values, bytes] : tuples) blocks.push_back({type, values, VectorOf(bytes)});
             self.Edit([&](Profile& changed) { changed.SetMaskBlocks(blocks); });
           })
      .def("masks", &MasksOf)
      .def("set_masks", &SetMasks)
      .def("packed_mask",
           [](const SharedProfile& self, const ConditionTuple& condition) -> py::object {
             const auto packed = self.Read()->PackedMask(ConditionOf(condition));
             return packed ? py::object(BytesOf(*packed)) : py::none();
           })
      .def_property_readonly("supports_mask_version",
                             [](const SharedProfile& self) { return self.Read()->SupportsMaskVersion(); });
}

// --- Lamp ---

using Words = std::vector<std::int32_t>;
using SettingsTuple = std::tuple<std::array<std::int32_t, 2>, std::vector<Words>, Words>;
using LampTuple = std::tuple<std::array<std::int32_t, 4>, SettingsTuple>;

SettingsTuple TupleOf(const LampSettings& settings) { return {settings.head, settings.splits, settings.rest}; }

LampSettings LampSettingsOf(const SettingsTuple& tuple) {
  LampSettings settings;
  std::tie(settings.head, settings.splits, settings.rest) = tuple;
  return settings;
}

template <std::size_t N>
std::array<std::int32_t, N> NumbersOf(const std::array<Condition, N>& conditions) {
  std::array<std::int32_t, N> numbers;
  for (std::size_t i = 0; i < N; ++i) numbers[i] = conditions[i].Value();
  return numbers;
}

template <std::size_t N>
void TakeConditions(const std::array<std::int32_t, N>& numbers, std::array<Condition, N>& conditions) {
  for (std::size_t i = 0; i < N; ++i) conditions[i] = Condition::Is(numbers[i]);
}

std::vector<LampPattern> LampPatternsOf(const std::vector<LampTuple>& tuples) {
  std::vector<LampPattern> patterns;
  for (const auto& [conditions, settings] : tuples) {
    LampPattern& pattern = patterns.emplace_back();
    TakeConditions(conditions, pattern.conditions);
    pattern.settings = LampSettingsOf(settings);
  }
  return patterns;
}

void BindLamp(ProfileClass& profile) {
  profile
      .def("lamp",
           [](const SharedProfile& self, const std::array<std::int32_t, 4>& conditions) {
             const auto settings = self.Read()->Lamp(conditions);
             return settings ? std::optional(TupleOf(*settings)) : std::nullopt;
           })
      .def("lamp_patterns",
           [](const SharedProfile& self) {
             std::vector<LampTuple> tuples;
             for (const LampPattern& pattern : self.Read()->LampPatterns()) {
               tuples.emplace_back(NumbersOf(pattern.conditions), TupleOf(pattern.settings));
             }
             return tuples;
           })
      .def("set_lamp_patterns",
           [](SharedProfile& self, const std::vector<LampTuple>& tuples) {
             self.Edit([patterns = LampPatternsOf(tuples)](Profile& changed) { changed.SetLampPatterns(patterns); });
           })
      .def("set_fixed_lamp", [](SharedProfile& self, const SettingsTuple& settings) {
        self.Edit([fixed = LampSettingsOf(settings)](Profile& changed) { changed.SetFixedLamp(fixed); });
      });
}

// --- Special colours ---

using ColorTuple =
    std::tuple<std::array<std::int32_t, 2>, Words, std::int32_t, std::int32_t, std::optional<std::size_t>>;
using TwoConditions = std::array<std::int32_t, 2>;

ColorTuple TupleOf(const SpecialColorPattern& pattern) {
  Words colors;
  for (const Condition color : pattern.colors) colors.push_back(color.Value());
  return {NumbersOf(pattern.conditions), std::move(colors), pattern.level, pattern.density, pattern.curveSet};
}

SpecialColorPattern ColorPatternOf(const ColorTuple& tuple) {
  const auto& [conditions, colors, level, density, curveSet] = tuple;
  SpecialColorPattern pattern;
  TakeConditions(conditions, pattern.conditions);
  for (const std::int32_t color : colors) pattern.colors.push_back(Condition::Is(color));
  pattern.level = level;
  pattern.density = density;
  pattern.curveSet = curveSet;
  return pattern;
}

py::object SpecialColorsOf(const SharedProfile& self) {
  const auto state = self.Read();
  const auto table = state->SpecialColors();
  if (!table) return py::none();
  std::vector<ColorTuple> patterns;
  for (const SpecialColorPattern& pattern : table->patterns) patterns.push_back(TupleOf(pattern));
  py::list sets;
  for (const std::vector<Curve>& set : table->curveSets) sets.append(TuplesOf(set, state));
  return py::make_tuple(table->profileColorType, patterns, sets);
}

void SetSpecialColors(SharedProfile& self, std::uint32_t profileColorType, const std::vector<ColorTuple>& patterns,
                      const std::vector<std::vector<CurveTuple>>& curveSets) {
  SpecialColorTable table;
  table.profileColorType = profileColorType;
  for (const ColorTuple& pattern : patterns) table.patterns.push_back(ColorPatternOf(pattern));
  for (const std::vector<CurveTuple>& set : curveSets) table.curveSets.push_back(CurvesOf(set));
  self.Edit([&](Profile& changed) { changed.SetSpecialColors(table); });
}

void BindSpecialColors(ProfileClass& profile) {
  profile.def("special_colors", &SpecialColorsOf)
      .def("set_special_colors", &SetSpecialColors)
      .def("recommended_density", [](const SharedProfile& self, const TwoConditions& conditions,
                                     std::int32_t ink) { return self.Read()->RecommendedDensity(conditions, ink); })
      .def("recommended_level", [](const SharedProfile& self, const TwoConditions& conditions,
                                   const Words& colors) { return self.Read()->RecommendedLevel(conditions, colors); })
      .def("variable_dot_curve",
           [](const SharedProfile& self, const TwoConditions& conditions, std::int32_t ink, std::int32_t extendInfo) {
             const auto state = self.Read();
             return ViewOf(state->VariableDotCurve(conditions, ink, extendInfo), state);
           });
}

}  // namespace

void BindTables(ProfileClass& profile) {
  BindMedia(profile);
  BindMasks(profile);
  BindLamp(profile);
  BindSpecialColors(profile);
}

}  // namespace nvx::python
