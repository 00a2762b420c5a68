// Curves, the separation table and the calibration history.
#include "arrays.h"

#include <pybind11/stl.h>

namespace nvx::python {
namespace {

// A query as a method of that name, which gives a view or None.
template <class... Keys>
void DefineQuery(ProfileClass& profile, const char* name, std::optional<Samples> (Profile::*query)(Keys...) const) {
  profile.def(name, [query](const SharedProfile& self, Keys... keys) {
    const auto state = self.Read();
    return ViewOf(((*state).*query)(keys...), state);
  });
}

template <class T>
py::array ArrayOf(const std::vector<T>& values) {
  return py::array_t<T>(static_cast<py::ssize_t>(values.size()), values.data());
}

CurveKind CurveKindOf(const std::string& name) { return static_cast<CurveKind>(NumberOfKind(name)); }

CalibrationCurves CalibrationKindOf(const std::string& name) {
  return static_cast<CalibrationCurves>(NumberOfKind("calibration-" + name));
}

py::object Merged(const SharedProfile& self, std::uint32_t ink) {
  const auto merged = self.Read()->MergedGrayBalance(ink);
  if (!merged) return py::none();
  return std::visit([](const auto& values) { return py::object(ArrayOf(values)); }, *merged);
}

void BindCurveSets(ProfileClass& profile) {
  profile
      .def("curves",
           [](const SharedProfile& self, const std::string& kind) {
             const auto state = self.Read();
             return TuplesOf(state->Curves(CurveKindOf(kind)), state);
           })
      .def("set_curves",
           [](SharedProfile& self, const std::string& kind, const std::vector<CurveTuple>& tuples) {
             self.Edit([number = CurveKindOf(kind), curves = CurvesOf(tuples)](Profile& changed) {
               changed.SetCurves(number, curves);
             });
           })
      .def("set_curve",
           [](SharedProfile& self, const std::string& kind, const CurveTuple& tuple) {
             self.Edit([number = CurveKindOf(kind), curves = CurvesOf({tuple})](Profile& changed) {
               changed.SetCurve(number, curves.front());
             });
           })
      .def("remove_curve",
           [](SharedProfile& self, const std::string& kind, std::uint8_t ink, std::uint32_t extendInfo) {
             return self.Edit([=, number = CurveKindOf(kind)](Profile& changed) {
               return changed.RemoveCurve(number, ink, extendInfo);
             });
           });
}

// --- Separation table ---

using ChannelTuple = std::tuple<std::uint8_t, std::uint32_t, std::string>;

py::tuple ChannelTuplesOf(const std::vector<TableChannel>& channels) {
  py::list list;
  for (const TableChannel& channel : channels) {
    list.append(py::make_tuple(channel.code, channel.attribute, TextOf(channel.name)));
  }
  return py::tuple(list);
}

std::vector<TableChannel> ChannelsOf(const std::vector<ChannelTuple>& tuples) {
  std::vector<TableChannel> channels;
  for (const auto& [code, attribute, name] : tuples) channels.push_back({code, attribute, name});
  return channels;
}

py::object TableOf(const SharedProfile& self) {
  const auto state = self.Read();
  const std::optional<SeparationTable> table = state->Table();
  if (!table) return py::none();
  constexpr std::size_t kMostAxes = 32;
  if (table->inputs.size() >= kMostAxes) {
    throw ProfileError("separation table: more inputs than an array has axes");
  }
  std::vector<py::ssize_t> shape(table->inputs.size(), static_cast<py::ssize_t>(table->gridPoints));
  shape.push_back(static_cast<py::ssize_t>(table->outputs.size()));
  return py::make_tuple(ChannelTuplesOf(table->inputs), ChannelTuplesOf(table->outputs),
                        ViewOf(table->samples, state, std::move(shape)));
}

void SetTable(SharedProfile& self, const std::vector<ChannelTuple>& inputs, const std::vector<ChannelTuple>& outputs,
              std::uint32_t gridPoints, const py::array& samples) {
  const SeparationTable table{ChannelsOf(inputs), ChannelsOf(outputs), gridPoints, SpanOf<std::uint8_t>(samples)};
  self.Edit([&](Profile& changed) { changed.SetTable(table); });
}

// --- History ---

py::tuple TupleOf(const Calibration& calibration) {
  return py::make_tuple(calibration.code, TextOf(calibration.name), calibration.value,
                        calibration.time.time_since_epoch().count());
}

std::uint32_t AddCalibration(SharedProfile& self, const std::string& name, std::int32_t value, std::int64_t seconds,
                             const std::vector<CurveTuple>& inkLimit, const std::vector<CurveTuple>& linearization,
                             const std::vector<CurveTuple>& grayBalance) {
  CalibrationData added;
  added.name = name;
  added.value = value;
  added.time = std::chrono::sys_seconds(std::chrono::seconds(seconds));
  added.inkLimit = CurvesOf(inkLimit);
  added.linearization = CurvesOf(linearization);
  added.grayBalance = CurvesOf(grayBalance);
  return self.Edit([&](Profile& changed) { return changed.AddCalibration(added); });
}

void BindHistory(ProfileClass& profile) {
  profile
      .def("calibrations",
           [](const SharedProfile& self) {
             py::list list;
             for (const Calibration& calibration : self.Read()->Calibrations()) list.append(TupleOf(calibration));
             return list;
           })
      .def("newest_calibration",
           [](const SharedProfile& self) {
             const auto newest = self.Read()->NewestCalibration();
             return newest ? std::optional(newest->code) : std::nullopt;
           })
      .def("calibration_curve",
           [](const SharedProfile& self, std::uint32_t code, const std::string& kind, std::uint32_t ink) {
             const auto state = self.Read();
             return ViewOf(state->CalibrationCurve(code, CalibrationKindOf(kind), ink), state);
           })
      .def("calibration_curves",
           [](const SharedProfile& self, std::uint32_t code, const std::string& kind) {
             const auto state = self.Read();
             return TuplesOf(state->CurvesOfCalibration(code, CalibrationKindOf(kind)), state);
           })
      .def("add_calibration", &AddCalibration)
      .def("remove_calibration", [](SharedProfile& self, std::uint32_t code) {
        return self.Edit([=](Profile& changed) { return changed.RemoveCalibration(code); });
      });
}

}  // namespace

py::list TuplesOf(const std::vector<Curve>& curves, const SharedProfile::State& state) {
  py::list list;
  for (const Curve& curve : curves) {
    list.append(py::make_tuple(curve.ink, curve.extendInfo, curve.slot, curve.displayRgb, curve.min, curve.max,
                               TextOf(curve.name), ViewOf(curve.samples, state)));
  }
  return list;
}

std::vector<Curve> CurvesOf(const std::vector<CurveTuple>& tuples) {
  std::vector<Curve> curves;
  for (const auto& [ink, extendInfo, slot, displayRgb, min, max, name, samples] : tuples) {
    curves.push_back({ink, extendInfo, slot, displayRgb, min, max, name, SamplesOf(samples)});
  }
  return curves;
}

void BindCurves(ProfileClass& profile) {
  DefineQuery(profile, "ink_limit", &Profile::InkLimit);
  DefineQuery(profile, "linearization", &Profile::Linearization);
  DefineQuery(profile, "gray_balance", &Profile::GrayBalance);
  DefineQuery(profile, "light_ink", &Profile::LightInk);
  DefineQuery(profile, "multi_ink_limit", &Profile::MultiInkLimit);
  DefineQuery(profile, "variable", &Profile::Variable);
  DefineQuery(profile, "variable_ink_limit", &Profile::VariableInkLimit);
  DefineQuery(profile, "under_color_removal", &Profile::UnderColorRemoval);
  DefineQuery(profile, "black_generation", &Profile::BlackGeneration);
  profile.def("merged_gray_balance", &Merged);
  BindCurveSets(profile);
  profile.def("table", &TableOf).def("set_table", &SetTable);
  BindHistory(profile);
}

}  // namespace nvx::python
