// How all readers of adjust files open one, and what they say when they cannot.
#pragma once

#include "core/report.h"
#include "core/text.h"
#include "platform/file_system.h"

#include <nvxprofile/adjust_file.h>

#include <memory>
#include <string_view>

namespace nvx::adjust {

// Right after the failed call, whose error number goes into the record.
inline bool FailToOpen(std::u16string_view path, CError& error) {
  error.SetFormattedErrorW(platform::LastError(), kReasonCannotOpen, "AdjustFileAnalyzer", __LINE__,
                           Message(u"Adjust file: Cannot open file (file name:%s)").Put(path).Take());
  return false;
}

// Puts the table of a file in the place of `analyzer`. Without a file at the path the old one stays, and the record
// holds `notFound` with the path filled in.
inline bool Initialize(std::unique_ptr<CAdjustFileAnalyzer>& analyzer, const char16_t* path, const char* source,
                       const char16_t* notFound, CError& error, int line = __builtin_LINE()) {
  if (!platform::FileExists(TextOf(path))) {
    return Fail(&error, kReasonNoFile, source, Message(notFound).Put(TextOf(path)), line);
  }
  analyzer = std::make_unique<CAdjustFileAnalyzer>();
  return analyzer->LoadFile(path, error);
}

}  // namespace nvx::adjust
