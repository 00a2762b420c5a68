// Mutation that knows how a form is built. A blind change of a nested form breaks a count, a size or a magic and gets
// no further than the first check; this one takes the form apart, changes one of its parts, or a part of a form inside
// of that, and puts it together again with counts and sizes that fit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace nvx::fuzz {

using Bytes = std::vector<std::uint8_t>;
using View = std::span<const std::uint8_t>;

class Form;

// A form that stands inside of other bytes, from `offset` to their end.
struct Nested {
  const Form* form = nullptr;
  std::size_t offset = 0;
};

struct Part {
  Bytes record;
  Bytes body;
};

struct Parts {
  Bytes header;
  std::vector<Part> parts;
  Bytes rest;
};

class Form {
 public:
  virtual ~Form() = default;
  // Nothing if the bytes are too far from the form to be taken apart.
  virtual std::optional<Parts> Split(View bytes) const = 0;
  virtual Bytes Join(Parts parts) const = 0;
  virtual Nested InBody(const Parts& parts, std::size_t index) const = 0;
  virtual Nested InRest() const { return {}; }
};

// What a fuzz target gives to LLVMFuzzerCustomMutator. One call in eight is a blind change of the whole.
std::size_t Mutate(const Form& form, std::uint8_t* data, std::size_t size, std::size_t maxSize, unsigned int seed);

}  // namespace nvx::fuzz
