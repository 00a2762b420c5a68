// Environment variables for the time of a test.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace nvx::test {

// Sets a variable, or removes it for a null value, and puts the old state back at the end.
class ScopedVariable {
 public:
  ScopedVariable(const char* name, const char* value) : name_(name) {
    if (const char* const present = std::getenv(name)) before_ = present;
    Set(value);
  }
  ScopedVariable(const char* name, const std::string& value) : ScopedVariable(name, value.c_str()) {}
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;
  ~ScopedVariable() { Set(before_ ? before_->c_str() : nullptr); }

 private:
  void Set(const char* value) const {
    if (value != nullptr) {
      ::setenv(name_, value, 1);
    } else {
      ::unsetenv(name_);
    }
  }

  const char* name_;
  std::optional<std::string> before_;
};

// The language of the system.
class ScopedLanguage {
 public:
  explicit ScopedLanguage(const char* locale) : all_("LC_ALL", locale), page_("NVXPROFILE_CODEPAGE", nullptr) {}

 private:
  ScopedVariable all_;
  ScopedVariable page_;
};

}  // namespace nvx::test
