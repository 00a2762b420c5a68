// What the readers of adjust files take from a file, and what they drop or bend without a word: for tools that show a
// file to people. The readers themselves stand in nvxprofile/adjust_file.h.
#pragma once

#include <nvxprofile/error.h>
#include <nvxprofile/export.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nvx {

// The kinds of file, one for each reader class.
enum class AdjustKind { kColor, kColorV3, kDevice, kSpecial };

// The forms of values.
enum class AdjustForm { kNumber, kTruth, kCurve8, kCurve16, kList };

// A key of the file that a reader of its kind reads.
struct AdjustKey {
  std::string key;   // narrow text as in the file
  std::string name;  // without the numbers: "LimitCurve_"
  AdjustForm form = AdjustForm::kNumber;
  std::optional<int> index;  // the numbers in the key, as the getters take them
  std::optional<int> ink;
};

// Something odd about a file.
struct AdjustRemark {
  std::size_t line = 0;  // as an editor counts, from 1
  std::string key;       // narrow text as in the file; empty where a remark concerns no single key
  std::string text;
};

// What a reader takes from a file, and what is odd about it.
struct AdjustInspection {
  std::optional<AdjustKind> kind;  // as asked for, or the one whose reader reads most keys; none if no reader reads any
  std::vector<AdjustKey> keys;     // in the order of the file
  std::vector<AdjustRemark> remarks;  // by line
};

// Looks at a file, as one of the given kind or of the kind that its keys speak for. Nothing, with the record filled as
// by the readers, if the file cannot be opened.
NVX_EXPORT std::optional<AdjustInspection> InspectAdjustFile(const char16_t* path, std::optional<AdjustKind> kind,
                                                             CError& error);

// The same for the bytes of a file.
NVX_EXPORT AdjustInspection InspectAdjustText(std::string_view bytes, std::optional<AdjustKind> kind);

}  // namespace nvx
