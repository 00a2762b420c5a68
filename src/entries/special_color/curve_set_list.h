// Curve sets one after the other, as they stand behind the arrays of a special colour table.
#pragma once

#include "core/stream.h"

#include <nvxprofile/curve.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace nvx {

// Takes `size` bytes at the position of the stream apart into `count` curve sets and hands each to `take`. A set says
// nothing of its whole length, so its first curve stands for the sizes of all. False, with the sets before handed over,
// for a set that leads outside the bytes or does not load.
bool ReadCurveSets(CNvxFile& file, std::uint32_t count, std::uint32_t size,
                   const std::function<void(std::unique_ptr<CCurveData>)>& take);

// Bytes of a set that ReadCurveSets finds whole again; nothing for curves that differ in data size or that the curve
// form cannot carry.
std::optional<std::uint64_t> ListedCurveSetSize(CCurveData& set);

}  // namespace nvx
