// What a test changes in its process for a while: environment variables, and the room that the disk has.
#pragma once

#include <sys/resource.h>

#include <csignal>
#include <cstddef>
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

// No file grows beyond a size, as on a full disk.
class ScopedFileSizeLimit {
 public:
  explicit ScopedFileSizeLimit(std::size_t size) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const ::rlimit limit{size, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ScopedFileSizeLimit(const ScopedFileSizeLimit&) = delete;
  ScopedFileSizeLimit& operator=(const ScopedFileSizeLimit&) = delete;
  ~ScopedFileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, signal_);
  }

 private:
  ::rlimit before_{};
  void (*signal_)(int);
};

}  // namespace nvx::test
