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
using testing::HasSubstr;

TEST(ToolStreams, LostOutputIsAnError) {
  const std::string frame = std::string(" ") + kFrameProfile;
  for (const std::string& command : {std::string("--help"), std::string("--version"), "info" + frame, "dump" + frame,
                                     "list" + frame, "validate" + frame, std::string("completion bash")}) {
    EXPECT_THAT(Shell(kTool + " " + command + " > /dev/full"), Fails("standard output: No space left on device"));
  }
  EXPECT_THAT(Shell(kTool + " diff" + frame + " /usr/share/color/icc/ghostscript/default_rgb.icc > /dev/full"), Fails())
      << "not 3: nobody has read what differs";
}

TEST(ToolStreams, PartsGoToPipesAndDevices) {
  const std::string extract = kTool + " extract " + kFrameProfile + " --icc ";
  EXPECT_EQ(Shell(extract + "/dev/stdout | head -c 40 | tail -c 4").out, "acsp");
  EXPECT_THAT(Shell(extract + "- | cmp - " + kFrameProfile), Succeeds());
  EXPECT_THAT(Shell(extract + "/dev/full"), Fails("/dev/full: No space left on device"));
  const TempFolder folder;
  EXPECT_THAT(Shell("{ echo first; " + extract + "/dev/stdout; } > " + folder.File("out")), Succeeds());
  EXPECT_EQ(ReadBytes(folder.File("out")).size(), std::filesystem::file_size(kFrameProfile) + 6)
      << "what stood in the file stays";
}

TEST(ToolStreams, StandardInputIsAFileLikeAnyOther) {
  const TempFolder folder;
  const std::string file = folder.File("p.icc");
  ASSERT_THAT(BuildExample("printer_profile.json", file), Succeeds());
  const std::string pipe = "cat " + file + " | " + kTool + " ";
  EXPECT_EQ(Shell(pipe + "get - media/heater/0").out, "45\n");
  EXPECT_THAT(Shell(pipe + "dump - | " + kTool + " build - -o " + folder.File("q.icc")), Succeeds());
  EXPECT_EQ(RunTool({"get", folder.File("q.icc"), "media/heater/0"}).out, "45\n");
  EXPECT_EQ(Shell(pipe + "set - media/heater/0=50 | " + kTool + " get - media/heater/0").out, "50\n");
  EXPECT_EQ(json::parse(Shell(pipe + "list --json -").out)["media"], "Glossy film");
  for (const char* const command : {"info -", "media -", "curves -", "extract - --icc -"}) {
    EXPECT_THAT(Shell(pipe + command), Succeeds()) << command;
  }
  const ScopedVariable table("NVXPROFILE_PROFILE_DIR", kExamples + "/legacy");
  const std::string convert =
      kTool + " convert - -o - --module-version 1 < " + ShellWord(kExamples + "/legacy/glossy.qpf") + " | ";
  EXPECT_THAT(Shell(convert + kTool + " info -").out, HasSubstr("ICC-based printer profile"));
}

TEST(ToolStreams, EveryCommandNamesTheFileAndTheCause) {
  const TempFolder folder;
  ASSERT_EQ(::mkfifo(folder.File("fifo").c_str(), 0600), 0);
  WriteText(folder.File("text"), "no profile");
  const ScopedVariable table("NVXPROFILE_PROFILE_DIR", nullptr);
  const ScopedVariable home("XDG_CONFIG_HOME", folder.Path().string());
  const std::string longName = folder.File(std::string(300, 'x'));
  const TextPairs cases{{folder.File("none"), "No such file or directory"},
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
      EXPECT_THAT(result, Fails(cause)) << command << file;
      EXPECT_THAT(result.err, testing::StartsWith("nvxprofile: " + file + ": "));
    }
    if (cause.find("ICC") == cause.npos && cause.find("table") == cause.npos) {
      EXPECT_THAT(RunTool({"adjust", file}), Fails(file + ": " + cause.substr(0, 4)));
    }
    EXPECT_THAT(RunTool({"get", file, "record/MediaName"}), Fails(cause));
    EXPECT_THAT(RunTool({"convert", file, "-o", folder.File("o"), "--module-version", "1"}), Fails(cause));
  }
  // What a profile lacks is told with its name as well.
  for (const char* const command : {"media", "lut", "masks", "lamp", "special", "history", "curves"}) {
    EXPECT_THAT(RunTool({command, kFrameProfile}), Fails(std::string("nvxprofile: ") + kFrameProfile + ": "))
        << command;
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
  ASSERT_THAT(RunTool({"build", document, "-o", profile}), Succeeds());
  EXPECT_EQ(RunTool({"get", profile, "media/heater/0"}).out, "45\n");
  EXPECT_THAT(RunTool({"set", profile, "media/heater/0=50"}), Succeeds());
  EXPECT_THAT(RunTool({"copy", profile, folder.File("satin\xE9.icc"), "--media", "Satin"}), Succeeds());
  EXPECT_EQ(RunTool({"get", folder.File("satin\xE9.icc"), "media/heater/0"}).out, "50\n");
  EXPECT_THAT(RunTool({"dump", profile, "--files", parts}), Succeeds());
  EXPECT_TRUE(std::filesystem::exists(parts + "/icc.icc"));
  EXPECT_THAT(RunTool({"list", folder.Path().string()}).out, HasSubstr("gl\xE4nzend.icc"));

  const ScopedVariable table("NVXPROFILE_PROFILE_DIR", kExamples + "/legacy");
  const std::string old = folder.File("alt\xE4.qpf");
  std::filesystem::copy_file(kExamples + "/legacy/glossy.qpf", old);
  EXPECT_THAT(RunTool({"convert", old, "-o", profile, "--module-version", "1"}), Succeeds());
  EXPECT_THAT(RunTool({"info", profile}).out, HasSubstr("ICC-based printer profile"));
  EXPECT_EQ(ReadBytes(other).size(), 10u) << "nobody writes over the name that only looks alike";
}

TEST(ToolStreams, AMisspeltCommandGetsASuggestion) {
  EXPECT_THAT(RunTool({}), IsWrongUsage());
  EXPECT_THAT(RunTool({"info"}), IsWrongUsage());
  const ToolResult result = RunTool({"infos", "x"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "nvxprofile: there is no command \"infos\"; did you mean \"info\"?\n");
  EXPECT_THAT(RunTool({"frobnicate"}).err, HasSubstr("--help lists them"));
}

TEST(ToolStreams, EveryCommandIsInTheManualAndInTheCompletions) {
  const std::string page = RunTool({"--man-page"}).out;
  const std::string examples = page.substr(page.find(".SH EXAMPLES"));
  EXPECT_THAT(page, HasSubstr(".SH FILES"));
  for (const char* const part : {"\\-\\-icc OUT", "\\-\\-replacement OUT", "\\-\\-entry TYPE OUT"}) {
    EXPECT_THAT(page, HasSubstr(part)) << part;
  }
  const json commands = {"list", "info",  "get",     "set",     "copy",   "media",   "masks",     "lamp",
                         "dump", "build", "extract", "convert", "adjust", "special", "completion"};
  for (const std::string shell : {"bash", "zsh", "fish"}) {
    const std::string script = RunTool({"completion", shell}).out;
    for (const std::string command : commands) EXPECT_THAT(script, HasSubstr(command)) << shell << command;
    for (const std::string option : {"replacement", "json-lines", "dry-run"}) {
      EXPECT_THAT(script, HasSubstr(option)) << shell << option;
    }
  }
  for (const std::string command : commands) {
    EXPECT_THAT(examples, HasSubstr("nvxprofile " + command)) << command;
  }
  EXPECT_THAT(RunTool({"completion", "tcsh"}), IsWrongUsage());
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
