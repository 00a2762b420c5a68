#include "core/replacing_file.h"

#include "core/text.h"

namespace nvx {

bool ReplacingFile::Create(const char16_t* target) {
  const std::u16string_view path = TextOf(target);
  if (path.empty()) return false;
  const platform::FileHandle handle = replacement_.Create(path);
  if (handle == platform::kNoFile) return false;
  Attach(handle, path);
  return true;
}

bool ReplacingFile::Commit() {
  return Flush() && replacement_.Commit(reinterpret_cast<platform::FileHandle>(GetHandle()));
}

}  // namespace nvx
