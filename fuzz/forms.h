// The nested forms, as the mutator sees them. docs/formats draws each.
#pragma once

#include "structure_mutator.h"

namespace nvx::fuzz {

const Form& CalibrationForm();
const Form& ContainerForm();
const Form& CurveSetForm();
const Form& IccForm();
const Form& LargeParameterForm();
const Form& MaskDownloadForm();
const Form& MaskParameterForm();
const Form& MaskPatternForm();
const Form& MediaPropertyForm();
const Form& QpfForm();
const Form& SpecialColorForm();
// The text and the section table stand before the first container and are changed as one piece.
const Form& TextHeadedForm();

}  // namespace nvx::fuzz
