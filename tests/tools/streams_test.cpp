// Where the tool reads from and writes to, and what it says when that fails.
#include "support/environment.h"
#include "support/files.h"
#include "tools/profile_maker.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

using nlohmann::json;
using namespace nvx::test;

const std::string kTool = ShellWord(nvx::test::ToolPath());
const std::string kExamples = NVXPROFILE_SOURCE_FOLDER "/examples";

// A shell command, which is stopped if it does not end.
ToolResult Shell(const std::string& command) { return RunProgram({"timeout", "20", "bash", "-c", command}); }

TEST(ToolStreams, LostOutputIsAnError) {
  for (const char* const command : {"--help", "--version", "info", "dump", "list", "validate", "completion bash"}) {
    const bool takesFile = command[0] != '-' && std::string(command).find(' ') == std::string::npos;
    const ToolResult result =
        Shell(kTool + " " + command + (takesFile ? std::string(" ") + kFrameProfile : "") + " > /dev/full");
    EXPECT_EQ(result.status, 1) << command;
    EXPECT_NE(result.err.find("standard output: No space left on device"), std::string::npos) << result.err;
  }
  const ToolResult different =
      Shell(kTool + " diff " + kFrameProfile + " /usr/share/color/icc/ghostscript/default_rgb.icc > /dev/full");
  EXPECT_EQ(different.status, 1) << "not 3: nobody has read what differs";
}

TEST(ToolStreams, PartsGoToPipesAndDevices) {
  const std::string extract = kTool + " extract " + kFrameProfile + " --icc ";
  EXPECT_EQ(Shell(extract + "/dev/stdout | head -c 40 | tail -c 4").out, "acsp");
  EXPECT_EQ(Shell(extract + "- | cmp - " + kFrameProfile).status, 0);
  const ToolResult full = Shell(extract + "/dev/full");
  EXPECT_EQ(full.status, 1);
  EXPECT_NE(full.err.find("/dev/full: No space left on device"), std::string::npos) << full.err;
  const TempFolder folder;
  EXPECT_EQ(Shell("{ echo first; " + extract + "/dev/stdout; } > " + folder.File("out")).status, 0);
  EXPECT_EQ(ReadBytes(folder.File("out")).size(), std::filesystem::file_size(kFrameProfile) + 6)
      << "what stood in the file stays";
}

TEST(ToolStreams, StandardInputIsAFileLikeAnyOther) {
  const TempFolder folder;
  const std::string file = folder.File("p.icc");
  ASSERT_EQ(RunTool({"build", kExamples + "/printer_profile.json", "-o", file}).status, 0);
  const std::string pipe = "cat " + file + " | " + kTool + " ";
  EXPECT_EQ(Shell(pipe + "get - media/heater/0").out, "45\n");
  EXPECT_EQ(Shell(pipe + "dump - | " + kTool + " build - -o " + folder.File("q.icc")).status, 0);
  EXPECT_EQ(RunTool({"get", folder.File("q.icc"), "media/heater/0"}).out, "45\n");
  EXPECT_EQ(Shell(pipe + "set - media/heater/0=50 | " + kTool + " get - media/heater/0").out, "50\n");
  EXPECT_EQ(json::parse(Shell(pipe + "list --json -").out)["media"], "Glossy film");
  for (const char* const command : {"info -", "media -", "curves -", "extract - --icc -"}) {
    EXPECT_EQ(Shell(pipe + command).status, 0) << command;
  }
  const ScopedVariable table("NVXPROFILE_PROFILE_DIR", kExamples + "/legacy");
  const std::string convert =
      kTool + " convert - -o - --module-version 1 < " + ShellWord(kExamples + "/legacy/glossy.qpf") + " | ";
  EXPECT_NE(Shell(convert + kTool + " info -").out.find("ICC-based printer profile"), std::string::npos);
}

TEST(ToolStreams, SeveralFilesMakeOneDocument) {
  const json array = json::parse(RunTool({"info", "--json", kFrameProfile, kFrameProfile}).out);
  ASSERT_TRUE(array.is_array());
  EXPECT_EQ(array.size(), 2u);
  EXPECT_EQ(json::parse(RunTool({"info", "--json", kFrameProfile}).out), array[0]);
  const std::string lines = RunTool({"info", "--json-lines", kFrameProfile, kFrameProfile}).out;
  const std::size_t end = lines.find('\n');
  EXPECT_EQ(json::parse(lines.substr(0, end)), array[0]);
  EXPECT_EQ(json::parse(lines.substr(end)), array[1]);
}

TEST(ToolStreams, EveryCommandNamesTheFileAndTheCause) {
  const TempFolder folder;
  ASSERT_EQ(::mkfifo(folder.File("fifo").c_str(), 0600), 0);
  WriteText(folder.File("text"), "no profile");
  const ScopedVariable table("NVXPROFILE_PROFILE_DIR", nullptr);
  const ScopedVariable home("XDG_CONFIG_HOME", folder.Path().string());
  const std::string longName = folder.File(std::string(300, 'x'));
  struct Case {
    std::string file;
    std::string cause;
  };
  const std::vector<Case> cases{{folder.File("none"), "No such file or directory"},
                                {folder.Path().string(), "is a folder"},
                                {folder.File("fifo"), "is a pipe"},
                                {"/dev/null", "is a device"},
                                {longName, "File name too long"},
                                {folder.File("text"), "ICC profile: ends inside the header"},
                                {kExamples + "/legacy/glossy.qpf", "conversion table: no folder is set for it"}};
  for (const auto& [file, cause] : cases) {
    for (const char* const command :
         {"info", "media", "lut", "masks", "lamp", "special", "history", "curves", "dump"}) {
      const ToolResult result = RunTool({command, file});
      EXPECT_EQ(result.status, 1) << command << file;
      EXPECT_EQ(result.err.find("nvxprofile: " + file + ": "), 0u) << result.err;
      EXPECT_NE(result.err.find(cause), std::string::npos) << result.err;
    }
    if (cause.find("ICC") == cause.npos && cause.find("table") == cause.npos) {
      EXPECT_NE(RunTool({"adjust", file}).err.find(file + ": " + cause.substr(0, 4)), std::string::npos) << file;
    }
    EXPECT_NE(RunTool({"get", file, "record/MediaName"}).err.find(cause), std::string::npos);
    EXPECT_NE(RunTool({"convert", file, "-o", folder.File("o"), "--module-version", "1"}).err.find(cause),
              std::string::npos);
  }
  // What a profile lacks is told with its name as well.
  for (const char* const command : {"media", "lut", "masks", "lamp", "special", "history", "curves"}) {
    const ToolResult result = RunTool({command, kFrameProfile});
    EXPECT_EQ(result.status, 1) << command;
    EXPECT_EQ(result.err.find(std::string("nvxprofile: ") + kFrameProfile + ": "), 0u) << result.err;
  }
}

// A name is bytes: the file beside it, whose name shows the same in a text, is another one.
TEST(ToolStreams, NamesThatAreNoUtf8AreKept) {
  const TempFolder folder;
  const std::string parts = folder.File("Teile\xFC");
  std::filesystem::create_directory(parts);
  const std::string document = parts + "/gl\xE4nzend.json";
  const std::string profile = folder.File("gl\xE4nzend.icc");
  const std::string other = folder.File("gl\xEF\xBF\xBDnzend.icc");
  WriteText(other, "somebody's");
  std::filesystem::copy_file(kExamples + "/printer_profile.json", document);
  std::filesystem::copy(kExamples, parts, std::filesystem::copy_options::skip_existing);
  ASSERT_EQ(RunTool({"build", document, "-o", profile}).status, 0) << RunTool({"build", document, "-o", profile}).err;
  EXPECT_EQ(RunTool({"get", profile, "media/heater/0"}).out, "45\n");
  EXPECT_EQ(RunTool({"set", profile, "media/heater/0=50"}).status, 0);
  EXPECT_EQ(RunTool({"copy", profile, folder.File("satin\xE9.icc"), "--media", "Satin"}).status, 0);
  EXPECT_EQ(RunTool({"get", folder.File("satin\xE9.icc"), "media/heater/0"}).out, "50\n");
  EXPECT_EQ(RunTool({"dump", profile, "--files", parts}).status, 0);
  EXPECT_TRUE(std::filesystem::exists(parts + "/icc.icc"));
  EXPECT_NE(RunTool({"list", folder.Path().string()}).out.find("gl\xE4nzend.icc"), std::string::npos);

  const ScopedVariable table("NVXPROFILE_PROFILE_DIR", kExamples + "/legacy");
  const std::string old = folder.File("alt\xE4.qpf");
  std::filesystem::copy_file(kExamples + "/legacy/glossy.qpf", old);
  EXPECT_EQ(RunTool({"convert", old, "-o", profile, "--module-version", "1"}).status, 0);
  EXPECT_NE(RunTool({"info", profile}).out.find("ICC-based printer profile"), std::string::npos);
  EXPECT_EQ(ReadBytes(other).size(), 10u) << "nobody writes over the name that only looks alike";
}

TEST(ToolStreams, AMisspeltCommandGetsASuggestion) {
  const ToolResult result = RunTool({"infos", "x"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "nvxprofile: there is no command \"infos\"; did you mean \"info\"?\n");
  EXPECT_NE(RunTool({"frobnicate"}).err.find("--help lists them"), std::string::npos);
}

TEST(ToolStreams, EveryCommandIsInTheManualAndInTheCompletions) {
  const std::string page = RunTool({"--man-page"}).out;
  const std::string examples = page.substr(page.find(".SH EXAMPLES"));
  EXPECT_NE(page.find(".SH FILES"), std::string::npos);
  for (const char* const part : {"\\-\\-icc OUT", "\\-\\-replacement OUT", "\\-\\-entry TYPE OUT"}) {
    EXPECT_NE(page.find(part), std::string::npos) << part;
  }
  const json commands = {"list", "info",  "get",     "set",     "copy",   "media",   "masks",     "lamp",
                         "dump", "build", "extract", "convert", "adjust", "special", "completion"};
  for (const std::string shell : {"bash", "zsh", "fish"}) {
    const std::string script = RunTool({"completion", shell}).out;
    for (const std::string command : commands) EXPECT_NE(script.find(command), std::string::npos) << shell << command;
    for (const std::string option : {"replacement", "json-lines", "dry-run"}) {
      EXPECT_NE(script.find(option), std::string::npos) << shell << option;
    }
  }
  for (const std::string command : commands) {
    EXPECT_NE(examples.find("nvxprofile " + command), std::string::npos) << command;
  }
  EXPECT_EQ(RunTool({"completion", "tcsh"}).status, 2);
  // The script at work.
  const std::string complete =
      "source <(" + kTool +
      " completion bash); compopt() { :; }; complete_words() { "
      "COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _nvxprofile; echo \"${COMPREPLY[*]}\"; }; ";
  EXPECT_EQ(Shell(complete + "complete_words nvxprofile extr").out, "extract\n");
  EXPECT_EQ(Shell(complete + "complete_words nvxprofile extract --repl").out, "--replacement\n");
  EXPECT_EQ(Shell(complete + "complete_words nvxprofile adjust --kind col").out, "color color-v3\n");
  EXPECT_EQ(Shell(complete + "cd " + ShellWord(kExamples) + "; complete_words nvxprofile build con").out,
            "container.json\n");
}

}  // namespace
