// What a profile says about itself, as a dictionary.
#include "arrays.h"

#include <pybind11/stl.h>

namespace nvx::python {
namespace {

// Runs visit(name, field) for each.
template <class Info, class Visit>
void VisitFields(Info& info, Visit&& visit) {
  visit("major_version", info.majorVersion);
  visit("minor_version", info.minorVersion);
  visit("created", info.created);
  visit("updated", info.updated);
  visit("model_code", info.modelCode);
  visit("model_sub_code", info.modelSubCode);
  visit("internal_code", info.internalCode);
  visit("media_code", info.mediaCode);
  visit("media_name", info.mediaName);
  visit("default_media_name", info.defaultMediaName);
  visit("media_names", info.mediaNames);
  visit("revision", info.revision);
  visit("create_module", info.createModule);
  visit("maker", info.maker);
  visit("printer_comment", info.printerComment);
  visit("scan_resolution", info.scanResolution);
  visit("feed_resolution", info.feedResolution);
  visit("rendering_scan", info.renderingScan);
  visit("rendering_feed", info.renderingFeed);
  visit("expand", info.expand);
  visit("colorset_code", info.colorsetCode);
  visit("ink_type_code", info.inkTypeCode);
  visit("ink_maker_code", info.inkMakerCode);
  visit("ink_version", info.inkVersion);
  visit("dot_type", info.dotType);
  visit("halftone_code", info.halftoneCode);
  visit("separate_way_code", info.separateWayCode);
  visit("output_third_value", info.outputThirdValue);
  visit("output_fourth_value", info.outputFourthValue);
  visit("database_key", info.databaseKey);
}

using Time = std::optional<std::chrono::sys_seconds>;
using NameTuple = std::tuple<std::uint16_t, std::string>;

template <class Number>
py::object ObjectOf(const Number& number) {
  return py::cast(number);
}
py::object ObjectOf(const std::string& text) { return TextOf(text); }
py::object ObjectOf(const std::array<std::int32_t, 5>& key) { return py::tuple(py::cast(key)); }
py::object ObjectOf(const Time& time) {
  return time ? py::object(py::int_(time->time_since_epoch().count())) : py::none();
}
py::object ObjectOf(const std::vector<MediaName>& names) {
  py::list list;
  for (const MediaName& name : names) list.append(py::make_tuple(name.language, TextOf(name.text)));
  return py::tuple(list);
}

template <class Field>
void Take(const py::handle& value, Field& field) {
  field = value.cast<Field>();
}
void Take(const py::handle& value, Time& time) {
  const auto seconds = value.cast<std::optional<std::int64_t>>();
  time = seconds ? Time(std::chrono::seconds(*seconds)) : std::nullopt;
}
void Take(const py::handle& value, std::vector<MediaName>& names) {
  names.clear();
  for (const auto& [language, text] : value.cast<std::vector<NameTuple>>()) names.push_back({language, text});
}

py::dict InfoOf(const SharedProfile& self) {
  const ProfileInfo info = self.Read()->Info();
  py::dict fields;
  fields["file_name"] = py::reinterpret_steal<py::str>(
      PyUnicode_DecodeFSDefaultAndSize(info.fileName.data(), static_cast<py::ssize_t>(info.fileName.size())));
  VisitFields(info, [&](const char* name, const auto& field) { fields[name] = ObjectOf(field); });
  return fields;
}

// Changes the fields that the dictionary has.
void SetInfo(SharedProfile& self, const py::dict& fields) {
  ProfileInfo info = self.Read()->Info();
  VisitFields(info, [&](const char* name, auto& field) {
    if (!fields.contains(name)) return;
    try {
      Take(fields[name], field);
    } catch (const py::cast_error&) {
      throw py::type_error(std::string(name) + ": a value of another type, or out of range");
    }
  });
  self.Edit([&](Profile& changed) { changed.SetInfo(info); });
}

}  // namespace

void BindInfo(ProfileClass& profile) { profile.def("info", &InfoOf).def("set_info", &SetInfo); }

}  // namespace nvx::python
