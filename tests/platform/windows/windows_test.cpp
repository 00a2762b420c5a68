// What a user of Windows expects of paths, of files that others hold, and of where settings lie.
#include "core/replacing_file.h"
#include "platform/environment.h"
#include "platform/locale.h"
#include "platform/settings.h"
#include "support/environment.h"
#include "support/files.h"

#include <nvxprofile/profile_access.h>

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <string>

namespace nvx::test {
namespace {

namespace fs = std::filesystem;

const Bytes kOld(1000, 1);
const Bytes kNew(100'000, 2);

const wchar_t* Native(const std::u16string& text) { return reinterpret_cast<const wchar_t*>(text.c_str()); }

class WindowsFile : public testing::Test {
 protected:
  WindowsFile() { WriteBytes(folder_.File("Profile.icc"), kOld); }

  std::u16string Wide(const std::string& name) const { return folder_.WideFile(name); }
  static bool Save(const std::u16string& path) {
    return SaveByReplacing(path.c_str(), [](CNvxFile& file) { return file.Write(kNew.data(), 100'000) == 100'000; });
  }
  static bool Opens(const std::u16string& path, std::uint32_t access = kGenericRead, std::uint32_t share = kShareRead) {
    CNvxFile file;
    return file.Open(path.c_str(), access, share, kOpenExisting);
  }
  void ExpectAlone(const Bytes& content) const {
    EXPECT_EQ(ReadBytes(folder_.File("Profile.icc")), content);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.Path()), {}), 1);
  }

  TempFolder folder_;
};

TEST_F(WindowsFile, CaseAndSeparatorsDoNotCount) {
  std::u16string path = Wide("PROFILE.ICC");
  EXPECT_TRUE(Opens(path));
  std::replace(path.begin(), path.end(), u'\\', u'/');
  EXPECT_TRUE(Opens(path));
  EXPECT_TRUE(Opens(Wide("x\\..\\profile.icc"))) << "what is stepped over need not be there";
  EXPECT_TRUE(Opens(Wide("Profile.icc."))) << "a point at the end is dropped";
  EXPECT_TRUE(Opens(u"\\\\?\\" + Wide("Profile.icc")));
  EXPECT_TRUE(Save(path));
  ExpectAlone(kNew);
}

// What went under such a name would be lost, or be part of another file.
TEST_F(WindowsFile, ForbiddenNamesAreRefused) {
  for (const char* const name : {"a<b.icc", "a>b.icc", "a|b.icc", "a\"b.icc", "what?.icc", "*.icc", "Profile.icc:part",
                                 "new.icc:part", "a\tb.icc", "NUL", "con"}) {
    EXPECT_FALSE(Save(Wide(name))) << name;
    EXPECT_FALSE(Opens(Wide(name))) << name;
    CNvxFile file;
    EXPECT_FALSE(file.Open(Wide(name).c_str(), kGenericWrite, kNoShare, kCreateAlways)) << name;
  }
  EXPECT_FALSE(Save(u""));
  EXPECT_FALSE(Save(platform::Utf8ToWide(folder_.Path().string()))) << "a folder";
  ExpectAlone(kOld);
}

// Sharing goes by handle, so that one of this process stands for one of another.
TEST_F(WindowsFile, AFileThatIsHeldOpenStaysAsItIs) {
  const std::u16string path = Wide("Profile.icc");
  for (const DWORD share : {DWORD{0}, DWORD{FILE_SHARE_READ}, DWORD{FILE_SHARE_READ | FILE_SHARE_WRITE}}) {
    const HANDLE other = ::CreateFileW(Native(path), GENERIC_READ, share, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(other, INVALID_HANDLE_VALUE);
    EXPECT_FALSE(Save(path)) << share;
    EXPECT_EQ(Opens(path), share != 0);
    EXPECT_FALSE(Opens(path, kGenericRead, kNoShare));
    ::CloseHandle(other);
    ExpectAlone(kOld);
  }
  CNvxFile reader;
  ASSERT_TRUE(reader.Open(path.c_str(), kGenericRead, kShareRead, kOpenExisting));
  EXPECT_FALSE(Opens(path, kGenericWrite)) << "a reader shares with readers";
  EXPECT_TRUE(Opens(path));
  reader.Close();
  EXPECT_TRUE(Save(path));
  ExpectAlone(kNew);
}

// The target is taken by somebody else while the new content is being written.
TEST_F(WindowsFile, ATargetTakenDuringTheSaveStaysAsItIs) {
  const std::u16string path = Wide("Profile.icc");
  HANDLE other = INVALID_HANDLE_VALUE;
  EXPECT_FALSE(SaveByReplacing(path.c_str(), [&](CNvxFile& file) {
    other = ::CreateFileW(Native(path), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    return file.Write(kNew.data(), 100'000) == 100'000;
  }));
  ::CloseHandle(other);
  ExpectAlone(kOld);
}

TEST_F(WindowsFile, AReadOnlyFileIsNotReplaced) {
  const std::u16string path = Wide("Profile.icc");
  ASSERT_TRUE(::SetFileAttributesW(Native(path), FILE_ATTRIBUTE_READONLY));
  EXPECT_FALSE(Save(path));
  EXPECT_TRUE(Opens(path));
  ExpectAlone(kOld);
  EXPECT_TRUE(::GetFileAttributesW(Native(path)) & FILE_ATTRIBUTE_READONLY);
  ::SetFileAttributesW(Native(path), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(WindowsFile, TextOfAnyScriptNamesAFile) {
  const std::u16string path = Wide("x") + u"光沢紙 é.icc";
  ASSERT_TRUE(Save(path));
  EXPECT_NE(::GetFileAttributesW(Native(path)), INVALID_FILE_ATTRIBUTES);
  EXPECT_TRUE(Opens(path));
}

TEST_F(WindowsFile, ErrorsCarryTheNumberOfTheSystem) {
  EXPECT_FALSE(Opens(Wide("none.icc")));
  EXPECT_EQ(platform::LastError(), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_FALSE(Opens(Wide("a?b")));
  EXPECT_EQ(platform::LastError(), DWORD{ERROR_INVALID_NAME});
}

TEST(WindowsSettings, LieInTheFoldersOfTheUserAndOfTheMachine) {
  const TempFolder folder;
  fs::create_directories(folder.Path() / "user/nvxprofile");
  fs::create_directories(folder.Path() / "machine/nvxprofile");
  std::ofstream(folder.File("machine/nvxprofile/settings.ini")) << "ProfileDir=C:\\machine\n";
  const ScopedVariable own("NVXPROFILE_PROFILE_DIR", nullptr);
  const ScopedVariable user("APPDATA", folder.File("user"));
  const ScopedVariable machine("ProgramData", folder.File("machine"));
  EXPECT_EQ(platform::ProfileFolder(), "C:\\machine");
  std::ofstream(folder.File("user/nvxprofile/settings.ini")) << "ProfileDir=C:\\user\n";
  EXPECT_EQ(platform::ProfileFolder(), "C:\\user");
  ::SetEnvironmentVariableW(L"NVXPROFILE_PROFILE_DIR", L"C:\\光沢");
  EXPECT_EQ(platform::ProfileFolder(), "C:\\光沢");
  ::SetEnvironmentVariableW(L"NVXPROFILE_PROFILE_DIR", nullptr);
}

TEST(WindowsLocale, IsThatOfTheSystemUnlessAVariableNamesOne) {
  const ScopedVariable page("NVXPROFILE_CODEPAGE", nullptr);
  {
    const ScopedVariable language("NVXPROFILE_LANGUAGE", nullptr);
    EXPECT_EQ(platform::AnsiCodePage(), ::GetACP());
    EXPECT_EQ(platform::PrimaryLanguage(), PRIMARYLANGID(::GetSystemDefaultLangID()));
  }
  const ScopedVariable language("NVXPROFILE_LANGUAGE", "ja-JP");
  EXPECT_EQ(platform::AnsiCodePage(), 932u);
  EXPECT_EQ(platform::PrimaryLanguage(), 17);
}

}  // namespace
}  // namespace nvx::test
