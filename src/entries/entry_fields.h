// The fields of each class of entries, described next to its form. A class without a description has no fields.
#pragma once

#include "core/field_codec.h"

#include <nvxprofile/word_arrays.h>

#include <cstddef>
#include <cstdint>
#include <vector>

class CCalibrationInfoEntry;
class CCalibrationTargetEntry;
class CContainerEntry;
class CCurveData;
class CInfoEntry;
class CLargeParameterEntry;
class CMaskDownLoadEntry;
class CMaskDownloadIncludePatternEntry;
class CMediaPropertyEntry;
class CModelEntry;
class CProfileCurveEntry;
class CSeparateChromaEntry;
class CSpecialColorInfoEntry;

namespace nvx {

void Describe(FieldCodec& codec, CModelEntry& entry);
void Describe(FieldCodec& codec, CInfoEntry& entry);
void Describe(FieldCodec& codec, CProfileCurveEntry& entry);
void Describe(FieldCodec& codec, CSeparateChromaEntry& entry);
void Describe(FieldCodec& codec, CMediaPropertyEntry& entry);
void Describe(FieldCodec& codec, CMaskDownLoadEntry& entry);
void Describe(FieldCodec& codec, CMaskDownloadIncludePatternEntry& entry);
void Describe(FieldCodec& codec, CLargeParameterEntry& entry);
void Describe(FieldCodec& codec, CSpecialColorInfoEntry& entry);
void Describe(FieldCodec& codec, CContainerEntry& entry);
void Describe(FieldCodec& codec, CCalibrationTargetEntry& entry);
void Describe(FieldCodec& codec, CCalibrationInfoEntry& entry);

// What entries of several classes hold. A set that is given no used type gets that one.
void DescribeCurveSet(FieldCodec& codec, CCurveData& set, std::uint32_t usedType);
// Tells the arrays of a table. Where a source gives them, `count` of them come back, for the caller to shape a table
// by.
using GivenArrays = std::vector<std::vector<std::int32_t>>;
GivenArrays DescribeWordArrays(FieldCodec& codec, const WordArrays& told, std::size_t count);
// Stores the words in arrays of these lengths.
void SetWords(WordArrays& arrays, const GivenArrays& given);

}  // namespace nvx
