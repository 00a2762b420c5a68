// A bar for work on many things.
#pragma once

#include <cstddef>

namespace nvx::tool {

// A line on standard error that tells how much is done. Writes nothing where standard error is no terminal, and for a
// single thing.
class ProgressBar {
 public:
  explicit ProgressBar(std::size_t total);
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;
  ~ProgressBar() { Clear(); }

  void Show(std::size_t done) const;
  // Takes the bar off the terminal, so that a line can be written in its place.
  void Clear() const;

 private:
  std::size_t total_;
  bool visible_;
};

}  // namespace nvx::tool
