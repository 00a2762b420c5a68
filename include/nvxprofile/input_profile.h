// Profiles of scanners, cameras and displays, as far as a list of them needs to know.
#pragma once

#include <nvxprofile/error.h>
#include <nvxprofile/export.h>
#include <nvxprofile/profile_info.h>
#include <nvxprofile/system_time.h>

#include <cstdint>
#include <memory>

// What is known of an input profile.
class NVX_EXPORT CInputProfileInfo final : public CProfileInfoObject {
 public:
  static constexpr std::uint32_t kColorCmyk = 1;
  static constexpr std::uint32_t kColorOther = 2;

  // By sort text, then by file name, compared by the value of their characters: true if this one is the greater, so
  // that a sorted list runs in descending order. False for an object of another class.
  bool IsOrderedBefore(const CProfileInfoObject& other) const override;

  char16_t FileName[514] = {};  // name and extension, without folders
  std::uint32_t ColorKind = 0;
  char16_t SortText[41] = {};  // left empty by the library, for callers to fill
  SYSTEMTIME FileTime{};       // when the file came into being, in UTC; zero if that is not known
};

// Looks at one input profile and keeps neither the file nor the profile open.
class NVX_EXPORT CInputProfileAccess {
 public:
  CInputProfileAccess();
  CInputProfileAccess(const CInputProfileAccess&) = delete;
  CInputProfileAccess& operator=(const CInputProfileAccess&) = delete;
  ~CInputProfileAccess();

  // False for what is no readable ICC profile and for a printer profile of this system, which has the tag "NVX1"; the
  // earlier information stays. `error` is not used and may be null.
  bool Init(const char16_t* path, CError* error);

  // Null before a successful Init. It stays this object's and ends with the next successful Init.
  CInputProfileInfo* GetInputProfileInfo() { return info_.get(); }

 private:
  std::unique_ptr<CInputProfileInfo> info_;
};
