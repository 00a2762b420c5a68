#include "platform/settings.h"

#include "support/environment.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

using nvx::platform::IniFile;
using nvx::platform::IniInteger;
using namespace nvx::test;
using testing::ElementsAre;

class Ini : public ::testing::Test {
 protected:
  void Write(const std::string& text) { std::ofstream(path_, std::ios::binary) << text; }
  std::string Text(std::string_view section, std::string_view key) {
    return IniFile(path_).Text(section, key).value_or("<none>");
  }
  std::int32_t Integer(std::string_view key) { return IniInteger(IniFile(path_).Text("numbers", key), -1); }

  TempFolder folder_;
  std::string path_ = folder_.File("a.ini");
};

TEST_F(Ini, FindsKeysBySectionWithoutRegardToCase) {
  Write(
      "\xEF\xBB\xBF[One]\r\nKey = first\r\n;Key=comment\r\nkey=second\r\n  [ tWo ] ; rest\r\n\tKEY\t=\t spaced text "
      "\t\r\n"
      "noequals\r\nempty=\r\n=nameless\r\n[three]\r\n[one]\r\nlate=7");
  EXPECT_EQ(Text("ONE", "kEY"), "first");
  EXPECT_EQ(Text("two", "key"), "spaced text");
  EXPECT_EQ(Text("two", "empty"), "");
  EXPECT_EQ(Text("two", "noequals"), "<none>");
  EXPECT_EQ(Text("one", "late"), "7");
  EXPECT_EQ(Text("three", "key"), "<none>");
  EXPECT_EQ(Text("on", "key"), "<none>");
  EXPECT_EQ(Text("", "late"), "7");
  EXPECT_EQ(IniFile(folder_.File("none")).Text("one", "key"), std::nullopt);
  EXPECT_EQ(IniFile(folder_.Path().string()).Text("one", "key"), std::nullopt);
}

TEST_F(Ini, DropsOnePairOfQuotes) {
  Write("[q]\na=\" blank \"\nb='x'\nc=\"\"\"\nd=\"open\ne='\"both\"'\nf=\"\n");
  EXPECT_THAT(IniFile(path_).Texts("q", {"a", "b", "c", "d", "e", "f"}),
              ElementsAre(" blank ", "x", "\"", "\"open", "\"both\"", "\""));
}

TEST_F(Ini, ReadsNumbersOfText) {
  Write(
      "[numbers]\na=42\nb= -7x\nc=\"+3\"\nd=abc\ne=\nf=4294967295\ng=4294967296\nh=-2147483648\ni=-2147483649\nj=- "
      "1\n");
  std::vector<std::int32_t> numbers;
  for (const char* const key : {"a", "b", "c", "d", "f", "h", "j"}) numbers.push_back(Integer(key));
  EXPECT_THAT(numbers, ElementsAre(42, -7, 3, 0, -1, std::numeric_limits<std::int32_t>::min(), 0));
  EXPECT_EQ(IniInteger(IniFile(path_).Text("numbers", "e"), 5), 5);
  for (const char* const beyond : {"g", "i", "none"})
    EXPECT_EQ(IniInteger(IniFile(path_).Text("numbers", beyond), 9), 9);
}

// In code page 932 the second byte of a character can be a bracket or a letter.
TEST_F(Ini, ReadsNamesOfDoubleByteText) {
  const ScopedLanguage japanese("ja_JP.UTF-8");
  const std::string za = "\x83\x5D\x81\x5B";  // second bytes ']' and '['
  Write("[P." + za + "]\nk=za\n[P.\x83\x61]\nk=chi\n[P.\x83\x41]\nk=a\n");
  EXPECT_EQ(Text("p." + za, "K"), "za");
  EXPECT_EQ(Text("p.\x83\x41", "k"), "a");
  EXPECT_EQ(Text("P.\x83\x61", "k"), "chi");
  const ScopedVariable western("NVXPROFILE_CODEPAGE", "1252");
  EXPECT_EQ(Text("P.\x83", "k"), "za");
}

TEST_F(Ini, ReadsLongFiles) {
  std::string text = "[first]\nk=1\n" + std::string(200'000, 'x') + "=long\n";
  for (int i = 0; i < 20'000; ++i) text += "[section " + std::to_string(i) + "]\nk=" + std::to_string(i) + "\n";
  Write(text);
  EXPECT_EQ(Text("section 19999", "k"), "19999");
  EXPECT_EQ(Text("first", std::string(200'000, 'X')), "long");
  Write(std::string(70'000, '[') + "]\nk=0\n x [first]\n \t[first]\nk=1");
  EXPECT_EQ(Text("first", "k"), "1") << "a bracket inside a line starts no section";
  Write("[first]\nk=2\n");
  EXPECT_EQ(Text("first", "k"), "2");
  const auto values = IniFile(path_).Texts("first", {"none", "k"});
  EXPECT_FALSE(values[0]);
  EXPECT_EQ(values[1], "2");
}

TEST(Settings, FolderOfTheConversionTable) {
  const TempFolder folder;
  std::filesystem::create_directories(folder.Path() / ".config/nvxprofile");
  std::filesystem::create_directories(folder.Path() / "xdg/nvxprofile");
  std::ofstream(folder.File(".config/nvxprofile/settings.ini")) << "[any]\nprofiledir = /home/table\n";
  std::ofstream(folder.File("xdg/nvxprofile/settings.ini")) << "ProfileDir=\"/xdg/table\"\n";
  const ScopedVariable home("HOME", folder.Path().string());
  const ScopedVariable variable("NVXPROFILE_PROFILE_DIR", nullptr);
  const ScopedVariable xdg("XDG_CONFIG_HOME", nullptr);
  EXPECT_EQ(nvx::platform::ProfileFolder(), "/home/table");
  const ScopedVariable ownXdg("XDG_CONFIG_HOME", folder.File("xdg"));
  EXPECT_EQ(nvx::platform::ProfileFolder(), "/xdg/table");
  const ScopedVariable own("NVXPROFILE_PROFILE_DIR", "/own");
  EXPECT_EQ(nvx::platform::ProfileFolder(), "/own");
}

}  // namespace
