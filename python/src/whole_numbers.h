// Whole numbers of Python, to be included wherever numbers are converted.
#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <limits>
#include <utility>

namespace nvx::python {

// Takes what Python takes for an index, in the range of the number, and nothing else. What pybind11 brings along falls
// back on int(), which cuts the fractions of NumPy's float32 and of decimals without a word.
template <class Number>
struct WholeNumberCaster {
  PYBIND11_TYPE_CASTER(Number, pybind11::detail::const_name("int"));

  bool load(pybind11::handle source, bool) {
    if (!source || PyIndex_Check(source.ptr()) == 0) return false;
    const auto index = pybind11::reinterpret_steal<pybind11::object>(PyNumber_Index(source.ptr()));
    int overflow = 0;
    const long long number = index ? PyLong_AsLongLongAndOverflow(index.ptr(), &overflow) : -1;
    if (PyErr_Occurred() != nullptr) {
      PyErr_Clear();
      return false;
    }
    value = static_cast<Number>(number);
    return overflow == 0 && std::in_range<Number>(number);
  }

  static pybind11::handle cast(Number number, pybind11::return_value_policy, pybind11::handle) {
    if constexpr (std::numeric_limits<Number>::is_signed) return PyLong_FromLongLong(number);
    return PyLong_FromUnsignedLongLong(static_cast<unsigned long long>(number));
  }
};

}  // namespace nvx::python

namespace pybind11::detail {

template <>
struct type_caster<std::uint8_t> : nvx::python::WholeNumberCaster<std::uint8_t> {};
template <>
struct type_caster<std::uint16_t> : nvx::python::WholeNumberCaster<std::uint16_t> {};
template <>
struct type_caster<std::uint32_t> : nvx::python::WholeNumberCaster<std::uint32_t> {};
template <>
struct type_caster<std::int32_t> : nvx::python::WholeNumberCaster<std::int32_t> {};
template <>
struct type_caster<std::int64_t> : nvx::python::WholeNumberCaster<std::int64_t> {};
template <>
struct type_caster<std::uint64_t> : nvx::python::WholeNumberCaster<std::uint64_t> {};

}  // namespace pybind11::detail
