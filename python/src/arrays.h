// Arrays that look at the memory of a profile, and memory of arrays for it.
#pragma once

#include "shared_profile.h"
#include "whole_numbers.h"

#include <pybind11/numpy.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nvx::python {

// A read-only array over memory inside the state, which it owns.
template <class T>
py::array ViewOf(std::span<const T> values, const SharedProfile::State& state, std::vector<py::ssize_t> shape = {}) {
  if (shape.empty()) shape = {static_cast<py::ssize_t>(values.size())};
  auto owner = std::make_unique<SharedProfile::State>(state);
  const py::capsule base(owner.get(), [](void* held) { delete static_cast<SharedProfile::State*>(held); });
  owner.release();
  py::array array(py::dtype::of<T>(), std::move(shape), values.data(), base);
  py::detail::array_proxy(array.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
  return array;
}

inline py::array ViewOf(const Samples& samples, const SharedProfile::State& state) {
  return std::visit([&](auto span) { return ViewOf(span, state); }, samples);
}

template <class T>
py::object ViewOf(const std::optional<T>& samples, const SharedProfile::State& state) {
  return samples ? py::object(ViewOf(*samples, state)) : py::none();
}

// The memory of an array of this type whose values lie one behind the other; std::nullopt for others.
template <class T>
std::optional<std::span<const T>> TrySpanOf(const py::array& array) {
  if (!py::isinstance<py::array_t<T, py::array::c_style>>(array)) return std::nullopt;
  return std::span<const T>(static_cast<const T*>(array.data()), static_cast<std::size_t>(array.size()));
}

// The same for the one type that will do. Throws TypeError.
template <class T>
std::span<const T> SpanOf(const py::array& array) {
  if (const auto span = TrySpanOf<T>(array)) return *span;
  throw py::type_error("not an array of this type with its values one behind the other");
}

inline Samples SamplesOf(const py::array& array) {
  if (const auto bytes = TrySpanOf<std::uint8_t>(array)) return *bytes;
  return SpanOf<std::uint16_t>(array);
}

// Text of a file, where anything may stand.
inline py::str TextOf(std::string_view text) {
  return py::reinterpret_steal<py::str>(
      PyUnicode_DecodeUTF8(text.data(), static_cast<py::ssize_t>(text.size()), "replace"));
}

inline py::bytes BytesOf(std::span<const std::uint8_t> bytes) {
  return py::bytes(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

// The number of a kind of entry by its name. Throws KeyError.
std::uint32_t NumberOfKind(std::string_view name);
inline EntryKind KindOf(std::string_view name) { return static_cast<EntryKind>(NumberOfKind(name)); }

// Curves as tuples in the order of their fields, the samples at the end.
using CurveTuple = std::tuple<std::uint8_t, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t,
                              std::string, py::array>;
py::list TuplesOf(const std::vector<Curve>& curves, const SharedProfile::State& state);
// The samples are those of the arrays.
std::vector<Curve> CurvesOf(const std::vector<CurveTuple>& tuples);

using ProfileClass = py::class_<SharedProfile>;
void BindCurves(ProfileClass& profile);
void BindInfo(ProfileClass& profile);
void BindTables(ProfileClass& profile);

}  // namespace nvx::python
