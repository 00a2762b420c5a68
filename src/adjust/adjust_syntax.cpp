#include "adjust/adjust_syntax.h"

#include <cstdint>
#include <limits>

namespace nvx::adjust {

Number ParseNumber(std::string_view text) {
  constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";
  constexpr std::int64_t kLeast = std::numeric_limits<int>::min();
  constexpr std::int64_t kGreatest = std::numeric_limits<int>::max();
  text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
  const bool negative = !text.empty() && text.front() == '-';
  if (negative || (!text.empty() && text.front() == '+')) text.remove_prefix(1);
  std::size_t digits = 0;
  std::int64_t magnitude = 0;
  for (; digits < text.size() && text[digits] >= '0' && text[digits] <= '9'; ++digits) {
    magnitude = std::min(magnitude * 10 + (text[digits] - '0'), kGreatest + 2);
  }
  const std::int64_t number = negative ? -magnitude : magnitude;
  const std::int64_t value = std::clamp(number, kLeast, kGreatest);
  return {static_cast<int>(value), digits != 0 && digits == text.size() && value == number};
}

}  // namespace nvx::adjust
