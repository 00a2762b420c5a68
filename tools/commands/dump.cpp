// nvxprofile dump: a whole profile as text.
#include "command.h"
#include "document.h"
#include "loading.h"
#include "terminal.h"

#include <memory>
#include <string>

namespace nvx::tool {

void AddDumpCommand(CommandLine& line) {
  struct DumpOptions {
    std::string file;
    std::string folder;
  };
  Command command = line.AddCommand("dump", "Write a whole profile as one JSON document");
  const auto options = std::make_shared<DumpOptions>();
  command.Add("FILE", &options->file, "A profile of any format").Required();
  command.Add("--files", &options->folder, "Write ICC profiles as files into this folder").Type("DIR").ExistingFolder();
  command.Example("nvxprofile dump glossy.icc --files parts > glossy.json");
  command.Action([options] {
    CProfileAccess access;
    if (!LoadProfile(options->file, access)) return kFailure;
    PrintJson(ProfileToDocument(access, options->folder));
    return kSuccess;
  });
}

}  // namespace nvx::tool
