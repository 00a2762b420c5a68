// The parameter tables of the UV lamp.
#include "core/report.h"

#include <nvxprofile/large_parameter.h>
#include <nvxprofile/profile_access.h>

#include <algorithm>
#include <array>

namespace {

constexpr const char* kSource = "ProfileAccess";
constexpr const char16_t* kNoParameters = u"Profile:Large Parameter Param - none";
constexpr const char16_t* kNoCount = u"Profile:Large Parameter Param Count - none";

using Conditions = std::array<std::int32_t, 4>;

// The table that answers: the fixed one, for which conditions play no part, else the one of patterns.
struct LampTable {
  CLargeParameterDataEntry* fixed = nullptr;
  CLargeParameterDataEntry* patterns = nullptr;

  bool Find(const CProfileData& profile, const char16_t* missing, CError* error) {
    const auto* const entry = dynamic_cast<const CLargeParameterEntry*>(
        profile.GetProfileDataEntryFromList(CProfileDataEntry::kLargeParameter));
    if (entry == nullptr) {
      return nvx::Fail(error, nvx::kReasonNotFound, kSource, u"Profile:Large Parameter Entry - none");
    }
    const auto find = [entry](std::uint32_t usedType) {
      return entry->GetLargeParameterData()->Entries().First(
          [usedType](const CLargeParameterDataEntry& table) { return table.GetUsedType() == usedType; });
    };
    fixed = find(1);
    if (fixed == nullptr) patterns = find(2);
    return fixed != nullptr || patterns != nullptr || nvx::Fail(error, nvx::kReasonNotFound, kSource, missing);
  }

  std::int32_t PatternOf(const Conditions& c) const {
    return patterns->SeekPatternIndexByCondition(c[0], c[1], c[2], c[3]);
  }
};

// Copies as many of `count` words from `first` as the array that they stand in holds; true if those were all.
bool CopyWords(std::span<const std::int32_t> array, const std::int32_t* first, std::int32_t count,
               std::int32_t* target) {
  if (count <= 0) return true;
  if (first == nullptr) return false;
  const auto words = array.subspan(static_cast<std::size_t>(first - array.data()));
  const auto wanted = static_cast<std::size_t>(count);
  std::copy_n(words.begin(), std::min(words.size(), wanted), target);
  return words.size() >= wanted;
}

}  // namespace

bool CProfileAccess::GetUVLamp500ParamCount(std::uint32_t& count, std::int32_t condition1, std::int32_t condition2,
                                            std::int32_t condition3, std::int32_t condition4, CError* error) {
  LampTable table;
  if (!profile_ || !table.Find(*profile_, kNoCount, error)) return false;
  if (table.fixed != nullptr) {
    count = static_cast<std::uint32_t>(table.fixed->Arrays().Words(0).size());
    return true;
  }
  const std::int32_t pattern = table.PatternOf({condition1, condition2, condition3, condition4});
  count = pattern == -1 ? 0 : static_cast<std::uint32_t>(table.patterns->SeekPatternParamCount(pattern));
  return pattern != -1;
}

bool CProfileAccess::GetUVLamp500Parameter(std::int32_t* parameters, std::int32_t condition1, std::int32_t condition2,
                                           std::int32_t condition3, std::int32_t condition4, CError* error) {
  LampTable table;
  if (!profile_ || !table.Find(*profile_, kNoParameters, error)) return false;
  if (table.fixed != nullptr) {
    const auto words = table.fixed->Arrays().Words(0);
    std::copy(words.begin(), words.end(), parameters);
    return true;
  }
  const std::int32_t pattern = table.PatternOf({condition1, condition2, condition3, condition4});
  if (pattern == -1) return false;
  return CopyWords(table.patterns->Arrays().Words(1), table.patterns->GetRefBufferByPatternIndex(pattern),
                   table.patterns->SeekPatternParamCount(pattern), parameters);
}

bool CProfileAccess::GetUVLamp500SplitCount(std::int32_t& count, std::int32_t condition1, std::int32_t condition2,
                                            std::int32_t condition3, std::int32_t condition4, CError* error) {
  LampTable table;
  if (!profile_ || !table.Find(*profile_, kNoCount, error)) return false;
  if (table.fixed != nullptr) {
    count = CLargeParameterID001Entry::kSplitCount;
    return true;
  }
  const std::int32_t pattern = table.PatternOf({condition1, condition2, condition3, condition4});
  count = table.patterns->SeekPatternSplitCount(std::max(pattern, 0));
  return pattern != -1;
}

bool CProfileAccess::GetUVLamp500SplitParamCount(std::int32_t& count, std::int32_t split, std::int32_t condition1,
                                                 std::int32_t condition2, std::int32_t condition3,
                                                 std::int32_t condition4, CError* error) {
  LampTable table;
  if (!profile_ || !table.Find(*profile_, kNoCount, error)) return false;
  if (table.fixed != nullptr) {
    count = CLargeParameterID001Entry::kSplitWords;
    return true;
  }
  const std::int32_t pattern = table.PatternOf({condition1, condition2, condition3, condition4});
  count = table.patterns->SeekPatternSplitParamCount(std::max(pattern, 0), split);
  return pattern != -1;
}
