// The conversion table of text-headed profiles: any bytes may stand in the INI file, and all ways to read a value
// agree.
#include "check.h"
#include "platform/settings.h"
#include "scratch_folder.h"

#include <nvxprofile/profile_file_text.h>

#include <cstring>
#include <optional>
#include <string>

namespace {

using nvx::fuzz::Check;

// The codes of a label, each terminated inside of its field.
void AskTable() {
  CQPFConvertTable table;
  char16_t model[5];
  char16_t subCode[3];
  char16_t internal[3];
  char16_t comment[65];
  if (table.GetModelCodes("PX", model, subCode, internal)) {
    Check(std::u16string(model).size() <= 4 && std::u16string(subCode).size() <= 2);
    Check(std::u16string(internal).size() <= 2);
  }
  if (table.GetPrinterComment("PX", comment)) Check(std::u16string(comment).size() <= 64);
  std::int32_t number = 0;
  table.GetInkMaker("SetA", number);
  table.GetInkType("SetA", number);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const nvx::fuzz::ScratchFolder folder;
  ::setenv("NVXPROFILE_CODEPAGE", size % 2 == 0 ? "932" : "1252", 1);
  folder.UseForConversionTable();
  folder.Write("QPFConvert.qpd", {bytes, size});
  const nvx::platform::IniFile file(folder.File("QPFConvert.qpd"));
  for (const char* const section : {"", "Printer.PX"}) {
    const auto values = file.Texts(section, {"ModelCode", "Comment"});
    Check(values[0] == file.Text(section, "modelcode"));
    Check(values[1] == file.Text(section, "COMMENT"));
    for (const std::optional<std::string>& value : values) {
      if (!value) continue;
      Check(value->size() < size && value->find('\n') == value->npos);
      nvx::platform::IniInteger(value, -1);
    }
  }
  AskTable();
  return 0;
}
