// nvxprofile extract: what a profile carries, each part as a file of its own.
#include "command.h"
#include "files.h"
#include "loading.h"
#include "terminal.h"

#include <fmt/format.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace nvx::tool {
namespace {

struct ExtractOptions {
  std::string file;
  std::string icc;
  std::string replacement;
  std::pair<std::string, std::string> entry;  // type and target
};

// False with a message.
bool Write(const ExtractOptions& options, const std::string& path, const std::uint8_t* bytes, std::uint32_t size) {
  if (size == 0) {
    PrintErrorOf(options.file, "the entry is empty");
    return false;
  }
  try {
    WriteOutput(path, {bytes, size});
    return true;
  } catch (const std::runtime_error& error) {
    PrintError(error.what());
    return false;
  }
}

bool WriteEntry(const ExtractOptions& options, CProfileAccess& access, std::uint32_t usedType,
                const std::string& path) {
  CProfileDataEntry* const entry = access.GetProfileData()->GetProfileDataEntryFromList(usedType);
  if (entry != nullptr) return Write(options, path, entry->Bytes().data(), entry->GetSize());
  PrintErrorOf(options.file, fmt::format("there is no entry {} of type {}", EntryName(usedType), usedType));
  return false;
}

bool WriteIcc(const ExtractOptions& options, CProfileAccess& access) {
  CError error;
  int size = 0;
  const std::uint8_t* const bytes = access.GetIccProfile(size, &error);
  if (bytes != nullptr) return Write(options, options.icc, bytes, static_cast<std::uint32_t>(size));
  PrintErrorOf(options.file, MessageOf(error));
  return false;
}

int Run(const ExtractOptions& options) {
  const std::uint32_t usedType = options.entry.first.empty() ? 0 : UsedTypeByName(options.entry.first);
  if (!options.entry.first.empty() && usedType == 0) {
    PrintError(fmt::format("{}: no such entry type", options.entry.first));
    return kUsage;
  }
  CProfileAccess access;
  if (!LoadProfile(options.file, access)) return kFailure;
  bool good = true;
  if (!options.icc.empty()) good = WriteIcc(options, access) && good;
  if (!options.replacement.empty())
    good = WriteEntry(options, access, CProfileDataEntry::kReplaceProfile, options.replacement) && good;
  if (usedType != 0) good = WriteEntry(options, access, usedType, options.entry.second) && good;
  return good ? kSuccess : kFailure;
}

}  // namespace

void AddExtractCommand(CommandLine& line) {
  Command command = line.AddCommand("extract", "Write parts of a profile to files, or - for standard output");
  const auto options = std::make_shared<ExtractOptions>();
  command.Add("FILE", &options->file, "A profile of any format").Required();
  Command parts = command.AddGroup("Parts", 1, 3);
  parts.Add("--icc", &options->icc, "Write the embedded ICC profile").Type("OUT");
  parts.Add("--replacement", &options->replacement, "Write the replacement ICC profile").Type("OUT");
  parts.Add("--entry", &options->entry, "Write the bytes of an entry, by type number or name").Type("TYPE OUT");
  command.Example("nvxprofile extract glossy.icc --icc frame.icc");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
