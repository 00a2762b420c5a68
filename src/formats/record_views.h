// The one place that switches an information record between its two views.
#pragma once

#include <nvxprofile/profile_data.h>
#include <nvxprofile/profile_info.h>

namespace nvx {

// Make the view the one that holds, for a load that fills it. A record that held the other one gets an empty view, so
// that no text is taken for a pointer; a record that held neither keeps what its maker put there.
void SelectTextView(_tagDeviceProfileInfo& info);
void SelectBinaryView(_tagDeviceProfileInfo& info);

// Makes the binary view the one that holds. What a record without one says goes over: its numbers, and its names as a
// Japanese and an English media name.
void ConvertToBinaryView(CProfileData& data);

// The same for a save, where a record with neither view keeps what its maker put into the binary one.
void UseBinaryView(CProfileData& data);

}  // namespace nvx
