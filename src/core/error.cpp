#include <nvxprofile/error.h>

#include <utility>

CError::~CError() = default;

void CError::Reset() { *this = CError(); }

void CError::SetErrorA(std::uint32_t systemCode, std::uint32_t reason, const char* fileName, int line,
                       const char* comment) {
  systemCode_ = systemCode;
  reason_ = reason;
  fileName_ = fileName != nullptr ? fileName : "";
  line_ = line;
  commentA_ = comment != nullptr ? comment : "";
}

void CError::SetErrorW(std::uint32_t systemCode, std::uint32_t reason, const char* fileName, int line,
                       const char16_t* comment) {
  systemCode_ = systemCode;
  reason_ = reason;
  fileName_ = fileName != nullptr ? fileName : "";
  line_ = line;
  // A comment that this record owns may be set on it again, as when one record is filled from another by its getters.
  if (ownedComment_ == nullptr || comment != ownedComment_->c_str()) ownedComment_.reset();
  commentW_ = comment != nullptr ? comment : u"";
}

void CError::SetFormattedErrorW(std::uint32_t systemCode, std::uint32_t reason, const char* fileName, int line,
                                std::u16string comment) {
  const auto owned = std::make_shared<const std::u16string>(std::move(comment));
  SetErrorW(systemCode, reason, fileName, line, owned->c_str());
  ownedComment_ = owned;
}
