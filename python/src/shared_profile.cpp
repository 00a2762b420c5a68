#include "shared_profile.h"

#include "document.h"
#include "loading.h"

#include <span>

namespace nvx::python {
namespace {

// Of an object that the caller holds, and that nobody can change.
std::span<const std::uint8_t> SpanOf(const py::bytes& bytes) {
  const std::string_view view = bytes;
  return {reinterpret_cast<const std::uint8_t*>(view.data()), view.size()};
}

// That files of the document's format usually have; empty for a format that there is not.
std::string ExtensionOf(const tool::Json& document) {
  const bool hasFormat = document.is_object() && document.contains("format") && document["format"].is_string();
  const FormatType* const type = hasFormat ? FindFormatType(document["format"].get<std::string>()) : nullptr;
  return type != nullptr ? std::string(type->extension) : std::string();
}

}  // namespace

void SharedProfile::Save(const std::filesystem::path& path) {
  const std::shared_ptr<nvx::Profile> former = Present();
  auto saved = std::make_shared<nvx::Profile>(former->Clone());
  {
    const py::gil_scoped_release unlocked;
    saved->Save(path);
  }
  // The times of the save are now those of the profile, unless somebody has changed it meanwhile.
  if (state_ == former) state_ = std::move(saved);
}

std::vector<std::uint8_t> SharedProfile::ToBytes(std::string_view name) const {
  nvx::Profile copy = Present()->Clone();
  const py::gil_scoped_release unlocked;
  return copy.ToBytes(name);
}

std::string SharedProfile::Document() const {
  // The walk over the published classes opens payloads to changes.
  nvx::Profile copy = Present()->Clone();
  const py::gil_scoped_release unlocked;
  return tool::TextOf(tool::ProfileToDocument(copy.Access(), {}));
}

SharedProfile Open(const std::filesystem::path& path) {
  const py::gil_scoped_release unlocked;
  return SharedProfile(nvx::Profile::Open(path));
}

SharedProfile FromBytes(const py::bytes& bytes, std::string_view name) {
  const auto span = SpanOf(bytes);
  const py::gil_scoped_release unlocked;
  return SharedProfile(nvx::Profile::FromBytes(span, name));
}

SharedProfile Create(const py::bytes& iccProfile) {
  const auto span = SpanOf(iccProfile);
  const py::gil_scoped_release unlocked;
  return SharedProfile(nvx::Profile::Create(span));
}

SharedProfile Build(const std::string& text, const std::filesystem::path& folder, std::string name) {
  const py::gil_scoped_release unlocked;
  const tool::Json document = tool::ParseDocument(text);
  if (name.empty()) name = "profile" + ExtensionOf(document);
  const std::vector<std::uint8_t> bytes = tool::BuildProfile(document, folder.string(), name);
  return SharedProfile(nvx::Profile::FromBytes(bytes, name));
}

}  // namespace nvx::python
