#include "progress.h"

#include "console.h"

#include <fmt/format.h>

#include <cstdio>
#include <string>

namespace nvx::tool {
namespace {

void WriteNow(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fflush(stderr);
}

}  // namespace

ProgressBar::ProgressBar(std::size_t total) : total_(total), visible_(total > 1 && IsTerminal(stderr)) {}

void ProgressBar::Show(std::size_t done) const {
  if (!visible_) return;
  constexpr std::size_t kWidth = 40;
  const std::size_t filled = kWidth * done / total_;
  WriteNow(fmt::format("\r[{}{}] {} of {}", std::string(filled, '#'), std::string(kWidth - filled, '.'), done, total_));
}

void ProgressBar::Clear() const {
  if (visible_) WriteNow("\r\033[K");
}

}  // namespace nvx::tool
