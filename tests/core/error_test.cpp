#include "core/report.h"

#include <nvxprofile/error.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

using nvx::Message;

TEST(Error, KeepsWhatItIsGivenAndResets) {
  CError error;
  error.SetErrorA(5, 7, "Module", 12, "narrow");
  error.SetErrorW(6, nvx::kReasonNotFound, "Other", 13, u"wide");
  EXPECT_TRUE(error.IsCommentUnicode());
  EXPECT_STREQ(error.GetErrorCommentA(), "narrow");
  EXPECT_EQ(std::u16string(error.GetErrorCommentW()), u"wide");
  EXPECT_EQ(error.GetSystemErrorCode(), 6u);
  EXPECT_STREQ(error.GetErrorFileName(), "Other");
  EXPECT_EQ(error.GetErrorLine(), 13);
  error.Reset();
  EXPECT_FALSE(error.IsCommentUnicode());
  EXPECT_STREQ(error.GetErrorCommentA(), "");
  EXPECT_EQ(std::u16string(error.GetErrorCommentW()), u"");
  EXPECT_STREQ(error.GetErrorFileName(), "");
}

TEST(Error, CopiesKeepAFormattedComment) {
  auto error = std::make_unique<CError>();
  nvx::Fail(error.get(), nvx::kReasonNotFound, "Test", Message(u"a %d of %s!").Put(-3).Put(u"%s%d"));
  const CError copy = *error;
  CError assigned;
  assigned = *error;
  assigned.SetErrorW(0, assigned.GetErrorReason(), "", 0, assigned.GetErrorCommentW());
  error.reset();
  EXPECT_EQ(std::u16string(copy.GetErrorCommentW()), u"a -3 of %s%d!");
  EXPECT_EQ(std::u16string(assigned.GetErrorCommentW()), u"a -3 of %s%d!");
}

}  // namespace
