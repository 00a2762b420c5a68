// nvxprofile extract: what a profile carries, each part as a file of its own.
#include "command.h"
#include "loading.h"
#include "terminal.h"

#include <nvxprofile/icm_entry.h>
#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>

#include <cstring>
#include <memory>
#include <string>
#include <utility>

namespace nvx::tool {
namespace {

struct Options {
  std::string file;
  std::string icc;
  std::string replacement;
  std::pair<std::string, std::string> entry;  // type and target
};

bool Complain(const std::string& message) {
  PrintError(message);
  return false;
}

// Writes beside the target and replaces it at the end, as the library saves everything.
bool Write(const std::string& path, const std::uint8_t* bytes, std::uint32_t size) {
  if (size == 0) return Complain(fmt::format("{}: the entry is empty", path));
  CICMEntry carrier;
  std::memcpy(carrier.GetBuffer(size), bytes, size);
  std::uint32_t error = 0;
  return carrier.Save(Utf8ToWide(path).c_str(), error) || Complain(fmt::format("{}: cannot be written", path));
}

bool WriteEntry(CProfileAccess& access, std::uint32_t usedType, const std::string& file, const std::string& path) {
  CProfileDataEntry* const entry = access.GetProfileData()->GetProfileDataEntryFromList(usedType);
  if (entry == nullptr) return Complain(fmt::format("{}: no entry of type {}", file, usedType));
  return Write(path, entry->GetRefBuffer(), entry->GetSize());
}

bool WriteIcc(CProfileAccess& access, const std::string& path) {
  CError error;
  int size = 0;
  const std::uint8_t* const bytes = access.GetIccProfile(size, &error);
  if (bytes == nullptr) return Complain(MessageOf(error));
  return Write(path, bytes, static_cast<std::uint32_t>(size));
}

int Run(const Options& options) {
  const std::uint32_t usedType = options.entry.first.empty() ? 0 : UsedTypeByName(options.entry.first);
  if (!options.entry.first.empty() && usedType == 0) {
    PrintError(fmt::format("{}: no such entry type", options.entry.first));
    return kUsage;
  }
  CProfileAccess access;
  if (!LoadProfile(options.file, access)) return kFailure;
  bool good = true;
  if (!options.icc.empty()) good = WriteIcc(access, options.icc) && good;
  if (!options.replacement.empty())
    good = WriteEntry(access, CProfileDataEntry::kReplaceProfile, options.file, options.replacement) && good;
  if (usedType != 0) good = WriteEntry(access, usedType, options.file, options.entry.second) && good;
  return good ? kSuccess : kFailure;
}

}  // namespace

void AddExtractCommand(CLI::App& app, int& status) {
  CLI::App* const command = app.add_subcommand("extract", "Write parts of a profile to files");
  const auto options = std::make_shared<Options>();
  command->add_option("FILE", options->file, "A profile of any format")->required();
  CLI::Option_group* const parts = command->add_option_group("Parts");
  parts->add_option("--icc", options->icc, "Write the embedded ICC profile")->type_name("OUT");
  parts->add_option("--replacement", options->replacement, "Write the replacement ICC profile")->type_name("OUT");
  parts->add_option("--entry", options->entry, "Write the bytes of an entry, by type number or name")
      ->type_name("TYPE OUT");
  parts->require_option(1, 3);
  command->callback([options, &status] { status = Run(*options); });
}

}  // namespace nvx::tool
