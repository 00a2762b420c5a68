#include "structure_mutator.h"

#include <algorithm>
#include <random>
#include <utility>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace nvx::fuzz {
namespace {

class Mutator {
 public:
  explicit Mutator(unsigned int seed) : random_(seed) {}

  bool OneIn(std::size_t n) { return Below(n) == 0; }

  // The bytes with one part changed, or changed blindly where the form does not fit them.
  Bytes Change(const Form& form, View bytes) {
    std::optional<Parts> parts = OneIn(16) ? std::nullopt : form.Split(bytes);
    if (!parts) return ChangeBlindly(Bytes(bytes.begin(), bytes.end()), kRoomToGrow);
    ChangeOnePart(form, *parts);
    return form.Join(std::move(*parts));
  }

 private:
  static constexpr std::size_t kRoomToGrow = 256;

  std::size_t Below(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random_); }

  static Bytes ChangeBlindly(Bytes bytes, std::size_t room) {
    const std::size_t size = bytes.size();
    bytes.resize(size + std::max<std::size_t>(room, 1));
    bytes.resize(LLVMFuzzerMutate(bytes.data(), size, size + room));
    return bytes;
  }

  // Records and headers keep their size.
  static void ChangeInPlace(Bytes& bytes) {
    const std::size_t size = bytes.size();
    if (size == 0) return;
    bytes = ChangeBlindly(std::move(bytes), 0);
    bytes.resize(size);
  }

  void ChangeNested(Bytes& bytes, Nested nested) {
    if (!nested.form || nested.offset > bytes.size() || OneIn(8)) {
      bytes = ChangeBlindly(std::move(bytes), kRoomToGrow);
      return;
    }
    const auto start = bytes.begin() + static_cast<std::ptrdiff_t>(nested.offset);
    const Bytes inner = Change(*nested.form, View(start, bytes.end()));
    bytes.erase(start, bytes.end());
    bytes.insert(bytes.end(), inner.begin(), inner.end());
  }

  void ChangeOnePart(const Form& form, Parts& parts) {
    std::vector<Part>& list = parts.parts;
    const std::size_t choice = Below(10);
    if (list.empty() || choice == 0) return ChangeInPlace(parts.header);
    const std::size_t index = Below(list.size());
    const auto place = list.begin() + static_cast<std::ptrdiff_t>(index);
    switch (choice) {
      case 1:
        return ChangeInPlace(place->record);
      case 2:
        list.push_back(*place);
        break;
      case 3:
        list.erase(place);
        break;
      case 4:
        std::swap(*place, list[Below(list.size())]);
        break;
      case 5:
        place->body = list[Below(list.size())].body;
        break;
      case 6:
        return ChangeNested(parts.rest, form.InRest());
      default:
        return ChangeNested(place->body, form.InBody(parts, index));
    }
  }

  std::minstd_rand random_;
};

}  // namespace

std::size_t Mutate(const Form& form, std::uint8_t* data, std::size_t size, std::size_t maxSize, unsigned int seed) {
  Mutator mutator(seed);
  if (mutator.OneIn(8)) return LLVMFuzzerMutate(data, size, maxSize);
  const Bytes changed = mutator.Change(form, View(data, size));
  if (changed.empty() || changed.size() > maxSize) return LLVMFuzzerMutate(data, size, maxSize);
  std::copy(changed.begin(), changed.end(), data);
  return changed.size();
}

}  // namespace nvx::fuzz
