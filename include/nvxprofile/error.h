// The record that an operation fills when it fails.
#pragma once

#include <nvxprofile/export.h>

#include <cstdint>
#include <memory>
#include <string>

namespace nvx {

// Reason codes. All of them carry bit 15, which says that the comment is wide.
enum Reason : std::uint32_t {
  kReasonNotFound = 0x08008001,     // a profile, entry, parameter or table is not there or cannot be loaded
  kReasonBadArgument = 0x08008002,  // the entry is there, but the arguments or its contents do not fit the request
  kReasonCannotOpen = 0x08008004,   // an adjust file cannot be opened; the system code says why
  kReasonNoFile = 0x08008005,       // an adjust file does not exist
  kReasonNoKey = 0x08008006,        // an adjust file lacks a key
};

}  // namespace nvx

// Callers pass a record as the last argument of an operation that can fail, and read it after a false, null, 0 or -1.
// The record keeps the pointers that SetErrorA and SetErrorW are given and copies no text, so these texts must outlive
// it. A comment that the library formats at run time belongs to the record: it stays readable until the record is
// reset, set again or destroyed, and every copy of the record keeps it readable as well. Getters never return null.
class NVX_EXPORT CError {
 public:
  CError() = default;
  CError(const CError&) = default;
  CError& operator=(const CError&) = default;
  virtual ~CError();

  // Back to the state after construction: all numbers 0, all texts empty.
  void Reset();

  // Stores the five values; the wide comment stays as it was. Null texts count as empty.
  void SetErrorA(std::uint32_t systemCode, std::uint32_t reason, const char* fileName, int line, const char* comment);

  // Stores the five values; the narrow comment stays as it was. Null texts count as empty.
  void SetErrorW(std::uint32_t systemCode, std::uint32_t reason, const char* fileName, int line,
                 const char16_t* comment);

  // As SetErrorW, with a text of which the record and its copies keep ownership.
  void SetFormattedErrorW(std::uint32_t systemCode, std::uint32_t reason, const char* fileName, int line,
                          std::u16string comment);

  std::uint32_t GetErrorReason() const { return reason_; }
  std::uint32_t GetSystemErrorCode() const { return systemCode_; }
  int GetErrorLine() const { return line_; }
  const char* GetErrorFileName() const { return fileName_; }
  const char* GetErrorCommentA() const { return commentA_; }
  const char16_t* GetErrorCommentW() const { return commentW_; }
  // Whether the wide comment holds.
  bool IsCommentUnicode() const { return (reason_ & 0x8000u) != 0; }

 private:
  const char* fileName_ = "";
  std::uint32_t reason_ = 0;
  std::int32_t line_ = 0;
  std::uint32_t systemCode_ = 0;
  const char* commentA_ = "";
  const char16_t* commentW_ = u"";
  std::shared_ptr<const std::u16string> ownedComment_;
};
