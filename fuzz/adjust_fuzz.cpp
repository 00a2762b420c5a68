// Adjust files: the table and the inspection take any bytes, and agree on what is read.
#include "check.h"

#include <nvxprofile/adjust_file.h>
#include <nvxprofile/adjust_inspection.h>

#include <string_view>

using nvx::fuzz::Check;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  CAdjustFileAnalyzer analyzer;
  analyzer.LoadText(text);
  const nvx::AdjustInspection inspection = nvx::InspectAdjustText(text, std::nullopt);
  CError error;
  for (const nvx::AdjustKey& key : inspection.keys) {
    int number = 0;
    bool truth = false;
    std::uint8_t bytes[256];
    std::uint16_t words[256];
    int inks[8];
    bool read = true;
    switch (key.form) {
      case nvx::AdjustForm::kNumber:
        read = analyzer.GetIntValue(key.key.c_str(), &number, error);
        break;
      case nvx::AdjustForm::kTruth:
        read = analyzer.GetBoolValue(key.key.c_str(), &truth, error);
        break;
      case nvx::AdjustForm::kCurve8:
        read = analyzer.GetCurve8(key.key.c_str(), bytes, error);
        break;
      case nvx::AdjustForm::kCurve16:
        read = analyzer.GetCurve16(key.key.c_str(), words, error);
        break;
      case nvx::AdjustForm::kList:
        read = analyzer.GetIntList(key.key.c_str(), inks, 8, error);
        break;
    }
    // A key that cannot be read has a remark that says so.
    bool remarked = false;
    for (const nvx::AdjustRemark& remark : inspection.remarks) {
      remarked |= remark.key == key.key && remark.text.ends_with("counts as missing");
    }
    Check(read != remarked);
  }
  std::uint8_t curves[3 * 256];
  analyzer.GetCurves8("Curve", curves, 3, error);
  return 0;
}
