// A profile whose memory Python looks at.
#pragma once

#include <nvxprofile/profile.h>

#include <pybind11/pybind11.h>

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace nvx::python {

namespace py = pybind11;

// Keeps the memory below views valid and as it is: a state that anybody looks at is never changed. Each view owns the
// state that it was taken from; a change works on the state in place as long as nobody else owns it, and on a copy that
// takes its place otherwise. What runs without the interpreter's lock works on a copy of its own, so that all access to
// a state is under that lock and needs none of its own.
class SharedProfile {
 public:
  using State = std::shared_ptr<const nvx::Profile>;

  explicit SharedProfile(nvx::Profile profile) : state_(std::make_shared<nvx::Profile>(std::move(profile))) {}

  // To be held for as long as its memory is looked at, which makes a change meanwhile spare it. Throws after Close.
  State Read() const { return Present(); }

  // Runs change(nvx::Profile&), which calls nothing of Python, and gives what it gives.
  template <class Change>
  auto Edit(Change&& change) {
    std::shared_ptr<nvx::Profile> target =
        Present().use_count() == 1 ? state_ : std::make_shared<nvx::Profile>(state_->Clone());
    if constexpr (std::is_void_v<decltype(change(*target))>) {
      change(*target);
      state_ = std::move(target);
    } else {
      auto result = change(*target);
      state_ = std::move(target);
      return result;
    }
  }

  void Save(const std::filesystem::path& path);
  std::vector<std::uint8_t> ToBytes(std::string_view name) const;
  // The document of docs/profile_document.md.
  std::string Document() const;

  SharedProfile Clone() const { return SharedProfile(Present()->Clone()); }
  void Close() { state_.reset(); }
  bool IsClosed() const { return state_ == nullptr; }

 private:
  const std::shared_ptr<nvx::Profile>& Present() const {
    if (!state_) throw py::value_error("the profile is closed");
    return state_;
  }

  std::shared_ptr<nvx::Profile> state_;
};

// Each without the interpreter's lock.
SharedProfile Open(const std::filesystem::path& path);
SharedProfile FromBytes(const py::bytes& bytes, std::string_view name);
SharedProfile Create(const py::bytes& iccProfile);
// A profile of a document in JSON; files that it names are looked up from `folder`. An empty name is one that suits the
// format.
SharedProfile Build(const std::string& text, const std::filesystem::path& folder, std::string name);

}  // namespace nvx::python
