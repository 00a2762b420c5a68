// The JSON Schema of documents says what the fields say. With NVXPROFILE_WRITE_PAGES set the test writes it.
#include "support/files.h"

#include "../../tools/document_schema.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using namespace nvx;

TEST(Schema, SaysWhatTheFieldsSay) {
  const std::string path = NVXPROFILE_SOURCE_FOLDER "/docs/profile_document.schema.json";
  const test::Bytes bytes = test::ReadBytes(path);
  const std::string text(bytes.begin(), bytes.end());
  const std::string expected = tool::SchemaText(tool::UpdatedSchema(tool::Json::parse(text)));
  if (std::getenv("NVXPROFILE_WRITE_PAGES") != nullptr) {
    test::WriteBytes(path, {expected.begin(), expected.end()});
  } else {
    EXPECT_EQ(text, expected);
  }
}

}  // namespace
