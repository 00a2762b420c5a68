// Operations on a model as the bytes choose them: whenever a result is true, nothing is lost, and whenever it is false,
// nothing has changed.
#include "check.h"
#include "scratch_folder.h"
#include "support/model_machine.h"

#include <cstdint>
#include <cstdio>

namespace {

// Numbers out of the input, zeros behind its end.
class Choices {
 public:
  Choices(const std::uint8_t* bytes, std::size_t size) : bytes_(bytes), size_(size) {}

  std::uint32_t operator()(std::uint32_t bound) {
    std::uint32_t number = 0;
    for (std::uint32_t left = bound - 1; left != 0; left >>= 8) number = number << 8 | Byte();
    return number % bound;
  }
  bool IsEmpty() const { return next_ >= size_; }

 private:
  std::uint8_t Byte() { return next_ < size_ ? bytes_[next_++] : std::uint8_t{0}; }

  const std::uint8_t* bytes_;
  std::size_t size_;
  std::size_t next_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const nvx::fuzz::ScratchFolder folder;
  Choices choices(bytes, size);
  nvx::test::ModelMachine machine([&](std::uint32_t bound) { return choices(bound); }, folder.WideFile("."));
  for (int step = 0; step < 100 && !choices.IsEmpty(); ++step) {
    const std::string broken = machine.Step();
    if (!broken.empty()) std::fprintf(stderr, "%s\n", broken.c_str());
    nvx::fuzz::Check(broken.empty());
  }
  return 0;
}
