// What callers do with a calibration history, in one step each: add a calibration, and take over those of another
// profile without losing any.
#pragma once

#include <nvxprofile/calibration.h>
#include <nvxprofile/export.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace nvx {

// A deep copy of an entry: flags, types, option info, label, buffer and payload; of a container also the description
// and all children, of a history also the next ID. Buffer and payload are copied apart, as either may be newer than the
// other; the source is the same afterwards. Null for an entry of a type that CProfileDataEntry::CreateDataEntry does
// not know, for an edited payload that its form cannot carry, and for one with such a child.
NVX_EXPORT std::unique_ptr<CProfileDataEntry> CloneEntry(CProfileDataEntry& entry);

// A new calibration. Curve entries that are null are left out.
struct NewCalibration {
  std::u16string_view name;  // cut to the 20 characters that the form keeps
  std::int32_t value = 0;
  std::int64_t time = 0;
  std::unique_ptr<CCalibrationInklimitEntry> inkLimit;
  std::unique_ptr<CCalibrationLinearizationEntry> linearization;
  std::unique_ptr<CCalibrationGrayBalanceEntry> grayBalance;
};

// Appends a calibration to a history under a code from GetNextID that no calibration there has; codes that are taken
// are passed over. The calibration and its curve entries are marked complete and their buffers are up to date, so that
// queries answer from it at once; call DataToBuffer on the history before the profile is saved. A history without a
// target entry first gets one with the calibration's time as its create time, since queries count the calibrations from
// behind it. The result stays the history's, its option info is the code. Null, with the history as it was and the
// curve entries gone, for curves that cannot be written and for a history whose own form was read in part, to which
// nothing could be written.
NVX_EXPORT CCalibrationContainerEntry* AddCalibration(CCalibrationHistoryEntry& history, NewCalibration calibration);

// The codes of the source's calibrations that could not be taken over as they are, in the source's order: the history
// has that code, or an earlier calibration of the source has it too. Empty if all can.
NVX_EXPORT std::vector<std::uint32_t> CollidingCodes(const CCalibrationHistoryEntry& history,
                                                     const CCalibrationHistoryEntry& source);

// Where a calibration of the source has gone.
struct ImportedCalibration {
  std::uint32_t sourceCode = 0;
  std::uint32_t code = 0;  // in the history; a fresh one where the source's code collided
};

// Takes over all calibrations of the source and keeps all that are here, whatever the counts: as the second case of
// CCalibrationHistoryEntry::DoImport, but each colliding calibration gets a fresh code, so that none is lost when the
// form is loaded again. The history gets the contents of the source's target entry, and a target entry in any case.
// Other children than calibrations are taken over if the history has none of their used type and option info. The next
// ID is then above all codes. Copies are deep; the source stays as it is. Gives the codes in the source's order;
// nothing, with the history as it was, if a child cannot be copied (CloneEntry), if the source is the history itself,
// and if one of the two is unread or was read in part.
NVX_EXPORT std::optional<std::vector<ImportedCalibration>> ImportCalibrations(CCalibrationHistoryEntry& history,
                                                                              CCalibrationHistoryEntry& source);

}  // namespace nvx
