// The private tags: their names, and the one entry that each of the later ones holds.
#pragma once

#include "formats/qpf_records.h"

#include <nvxprofile/profile_data.h>

#include <cstdint>

namespace nvx {

inline constexpr const char* kEntryTag = "NVX1";
inline constexpr const char* kMediaTag = "NVX2";

// A tag that holds the bytes of a route's entries behind its opening.
struct RouteTag {
  const char* name;
  std::uint32_t route;
};

inline constexpr RouteTag kReplaceProfileTag = {"NVX3", kRouteReplaceProfile};
inline constexpr RouteTag kCalibrationTag = {"NVX4", kRouteCalibration};
inline constexpr RouteTag kMaskDownloadTag = {"NVX5", kRouteMaskDownload};
inline constexpr RouteTag kLargeParameterTag = {"NVX6", kRouteLargeParameter};
inline constexpr RouteTag kSpecialColorTag = {"NVX7", kRouteSpecialColor};

// All of them.
inline constexpr const char* kPrivateTags[] = {kEntryTag,
                                               kMediaTag,
                                               kReplaceProfileTag.name,
                                               kCalibrationTag.name,
                                               kMaskDownloadTag.name,
                                               kLargeParameterTag.name,
                                               kSpecialColorTag.name};

}  // namespace nvx
