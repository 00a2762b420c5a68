#include <nvxprofile/diagnosis.h>

#include <algorithm>
#include <utility>

namespace nvx {

void Diagnosis::Report(Severity severity, std::uint64_t offset, std::string_view rule) {
  Finding finding;
  finding.severity = severity;
  finding.offset = offset;
  finding.rule = rule;
  if (!places_.empty()) {
    finding.place = places_.back().path;
    finding.offset += places_.back().base;
  }
  findings_.push_back(std::move(finding));
}

bool Diagnosis::HasErrors() const {
  return std::any_of(findings_.begin(), findings_.end(),
                     [](const Finding& finding) { return finding.severity == Severity::kError; });
}

void Diagnosis::Enter(std::string place, std::uint64_t base) {
  Place inner{std::move(place), base};
  if (!places_.empty()) {
    inner.path = places_.back().path + "/" + inner.path;
    inner.base += places_.back().base;
  }
  places_.push_back(std::move(inner));
}

void Diagnosis::Leave() {
  if (!places_.empty()) places_.pop_back();
}

}  // namespace nvx
