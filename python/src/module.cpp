// The module nvxprofile._core: the profile as Python sees it, without comfort. The package around it has that.
#include "arrays.h"
#include "payload.h"

#include <nvxprofile/version.h>

#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <exception>

namespace nvx::python {
namespace {

py::tuple TupleOf(const Finding& finding) {
  return py::make_tuple(finding.severity == Severity::kError ? "error" : "warning", TextOf(finding.place),
                        finding.offset, TextOf(finding.rule));
}

void Raise(std::string_view message, std::string_view place, std::string_view rule,
           const std::vector<Finding>& findings) {
  py::list list;
  for (const Finding& finding : findings) list.append(TupleOf(finding));
  const py::object type = py::module_::import("nvxprofile._errors").attr("ProfileError");
  const py::object error = type.attr("_made")(TextOf(message), TextOf(place), TextOf(rule), list);
  PyErr_SetObject(type.ptr(), error.ptr());
}

void Translate(std::exception_ptr thrown) {
  try {
    std::rethrow_exception(thrown);
  } catch (const ProfileError& error) {
    Raise(error.what(), error.Place(), error.Rule(), error.Findings());
  } catch (const tool::DocumentError& error) {
    const std::string place = error.Place().empty() ? "document" : error.Place();
    Raise(place + ": " + error.what(), error.Place(), error.what(), {});
  }
}

py::tuple NamesOfKinds() {
  py::list names;
  for (const EntryType& type : EntryTypes()) names.append(std::string(type.name));
  return py::tuple(names);
}

std::string FormatOf(const SharedProfile& profile) {
  return std::string(FindFormatType(profile.Read()->Format())->name);
}

py::tuple TupleOf(const Entry& entry, const SharedProfile::State& state) {
  py::list routes;
  for (const Route route : entry.routes) routes.append(static_cast<std::uint32_t>(route));
  return py::make_tuple(static_cast<std::uint32_t>(entry.kind), std::string(entry.name), py::tuple(routes),
                        ViewOf(entry.bytes, state), entry.complete, entry.optionInfo, TextOf(entry.label),
                        entry.isUnderstood);
}

void BindFiles(py::module_& module, ProfileClass& profile) {
  module.def("open", &Open, py::arg("path"));
  module.def("from_bytes", &FromBytes, py::arg("data"), py::arg("name"));
  module.def("create", &Create, py::arg("icc"));
  module.def("build", &Build, py::arg("document"), py::arg("folder"), py::arg("name"));
  profile.def("save", &SharedProfile::Save, py::arg("path"))
      .def("to_bytes", [](const SharedProfile& self, const std::string& name) { return BytesOf(self.ToBytes(name)); })
      .def("document", [](const SharedProfile& self) { return TextOf(self.Document()); })
      .def("clone", &SharedProfile::Clone)
      .def("close", &SharedProfile::Close)
      .def_property_readonly("closed", &SharedProfile::IsClosed)
      .def_property_readonly("format", &FormatOf)
      .def_property_readonly("is_whole", [](const SharedProfile& self) { return self.Read()->IsWhole(); })
      .def("has", [](const SharedProfile& self, const std::string& kind) { return self.Read()->Has(KindOf(kind)); })
      .def("accept_loss", [](SharedProfile& self) { self.Edit([](Profile& changed) { changed.AcceptLoss(); }); });
}

void BindEntries(ProfileClass& profile) {
  profile
      .def("entries",
           [](const SharedProfile& self) {
             const auto state = self.Read();
             py::list entries;
             for (const Entry& entry : state->Entries()) entries.append(TupleOf(entry, state));
             return entries;
           })
      .def("set_entry_bytes",
           [](SharedProfile& self, const std::string& kind, const py::array& bytes) {
             self.Edit([number = KindOf(kind), span = SpanOf<std::uint8_t>(bytes)](Profile& changed) {
               changed.SetEntryBytes(number, span);
             });
           })
      .def("remove_entry",
           [](SharedProfile& self, const std::string& kind) {
             return self.Edit([number = KindOf(kind)](Profile& changed) { return changed.RemoveEntry(number); });
           })
      .def("icc",
           [](const SharedProfile& self) {
             const auto state = self.Read();
             return ViewOf(state->IccProfile(), state);
           })
      .def("replacement_icc", [](const SharedProfile& self) {
        const auto state = self.Read();
        return ViewOf(state->ReplaceIccProfile(), state);
      });
}

}  // namespace

std::uint32_t NumberOfKind(std::string_view name) {
  const EntryType* const type = FindEntryType(name);
  if (type == nullptr || type->name != name) throw py::key_error(std::string(name));
  return type->usedType;
}

}  // namespace nvx::python

PYBIND11_MODULE(_core, module) {
  using namespace nvx::python;
  py::register_exception_translator(&Translate);
  module.attr("KINDS") = NamesOfKinds();
  module.attr("VERSION") = nvx::Version();
  ProfileClass profile(module, "Profile");
  BindFiles(module, profile);
  BindEntries(profile);
  BindInfo(profile);
  BindCurves(profile);
  BindTables(profile);
}
