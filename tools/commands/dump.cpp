// nvxprofile dump: a whole profile as text.
#include "command.h"
#include "document.h"
#include "loading.h"
#include "paths.h"
#include "saving.h"

#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

namespace nvx::tool {

void AddDumpCommand(CommandLine& line) {
  struct DumpOptions {
    std::string file;
    std::string folder;
    std::string output = kStandardStream;
  };
  Command command = line.AddCommand("dump", "Write a whole profile as one JSON document");
  const auto options = std::make_shared<DumpOptions>();
  command.Add("FILE", &options->file, "A profile of any format").Required();
  command.Add("--files", &options->folder, "Write ICC profiles as files into this folder").Type("DIR").ExistingFolder();
  command.Add("-o,--output", &options->output, "Write the document here; it names files as seen from where it stands")
      .Type("FILE");
  command.Example("nvxprofile dump glossy.icc --files parts -o glossy.json");
  command.Action([options] {
    CProfileAccess access;
    if (!LoadProfile(options->file, access)) return kFailure;
    const std::string documentFolder = TextOf(PathOf(options->output).parent_path());
    WriteText(options->output, TextOf(ProfileToDocument(access, {options->folder, documentFolder})));
    if (const std::string why = WhyNotRebuilt(access); !why.empty()) {
      PrintErrorOf(options->file, "warning: build cannot make it again: " + why);
    }
    return kSuccess;
  });
}

}  // namespace nvx::tool
