// What a test changes in its process for a while: environment variables, and the room that the disk has.
#pragma once

#if !defined(_WIN32)
#include <sys/resource.h>
#endif

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
#if defined(_WIN32)
    ::_putenv_s(name_, value != nullptr ? value : "");
#else
    if (value != nullptr) {
      ::setenv(name_, value, 1);
    } else {
      ::unsetenv(name_);
    }
#endif
  }

  const char* name_;
  std::optional<std::string> before_;
};

// The language of the system.
class ScopedLanguage {
 public:
  explicit ScopedLanguage(const char* locale) : all_(kVariable, locale), page_("NVXPROFILE_CODEPAGE", nullptr) {}

 private:
#if defined(_WIN32)
  static constexpr const char* kVariable = "NVXPROFILE_LANGUAGE";
#else
  static constexpr const char* kVariable = "LC_ALL";
#endif
  ScopedVariable all_;
  ScopedVariable page_;
};

#if !defined(_WIN32)

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

#endif

}  // namespace nvx::test
