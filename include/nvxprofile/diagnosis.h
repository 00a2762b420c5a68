// What a load found wrong, and where. A caller who wants to know attaches a Diagnosis to the stream that it loads from
// (CNvxFile::SetDiagnosis); readers then record each refusal with its place and offset. Without one, nothing is
// recorded and nothing is paid.
#pragma once

#include <nvxprofile/export.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nvx {

// An error stops the load of what it is about; a warning stops nothing.
enum class Severity { kWarning, kError };

// One thing that a load found.
struct Finding {
  Severity severity = Severity::kError;
  std::string place;         // path of the enclosing structures, such as "NVX1/entry 6"; empty at the top
  std::uint64_t offset = 0;  // bytes from the start of the outermost stream, as far as it can be known
  std::string rule;          // what the bytes at that place break
};

// All that a load found, in the order of the stream.
class NVX_EXPORT Diagnosis {
 public:
  // Records a finding at the innermost place; `offset` counts from where that starts.
  void Report(Severity severity, std::uint64_t offset, std::string_view rule);

  // All findings, valid until the next one.
  const std::vector<Finding>& Findings() const { return findings_; }
  // Whether a finding is an error.
  bool HasErrors() const;

  // Opens a nested place whose offset 0 is `base` of the enclosing one; Leave closes the innermost.
  void Enter(std::string place, std::uint64_t base);
  void Leave();

 private:
  struct Place {
    std::string path;
    std::uint64_t base = 0;
  };
  std::vector<Place> places_;
  std::vector<Finding> findings_;
};

// Loads the file at `path` the way CProfileAccess::Init does, and records why it does not load, or what is odd in it.
// True if it loads; errors may be recorded all the same, since an entry whose payload does not parse stops no load.
NVX_EXPORT bool DiagnoseProfile(const char16_t* path, Diagnosis& diagnosis);

// Enters a place for as long as it lives. A null diagnosis is allowed and costs nothing but the test.
class DiagnosisScope {
 public:
  // `namePlace` is called for the name of the place if there is a diagnosis.
  template <class NamePlace>
  DiagnosisScope(Diagnosis* diagnosis, std::uint64_t base, NamePlace&& namePlace) : diagnosis_(diagnosis) {
    if (diagnosis_ != nullptr) diagnosis_->Enter(namePlace(), base);
  }
  ~DiagnosisScope() {
    if (diagnosis_ != nullptr) diagnosis_->Leave();
  }
  DiagnosisScope(const DiagnosisScope&) = delete;
  DiagnosisScope& operator=(const DiagnosisScope&) = delete;

 private:
  Diagnosis* diagnosis_;
};

}  // namespace nvx
