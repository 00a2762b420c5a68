// A profile as text: a document is refused or builds a profile that loads; and the document of that builds it again.
#include "check.h"
#include "document.h"
#include "scratch_folder.h"

#include <nvxprofile/profile_access.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

using nvx::fuzz::Check;
using nvx::fuzz::ScratchFolder;
using nvx::tool::Json;

std::vector<char> BytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::vector<char>(std::istreambuf_iterator<char>(file), {});
}

// Always the same file, since a profile may tell the name of its own.
bool Builds(const Json& document, const ScratchFolder& folder) {
  try {
    folder.Write("p", nvx::tool::BuildProfile(document, folder.File(""), "p"));
  } catch (const nvx::tool::DocumentError& error) {
    Check(error.what() != std::string());
    return false;
  } catch (const std::runtime_error&) {
    return false;
  }
  return true;
}

// Changes one value of a document, at any depth.
class DocumentMutator {
 public:
  explicit DocumentMutator(unsigned int seed) : random_(seed) {}

  void Change(Json& document) {
    std::vector<Json*> values;
    Collect(document, values);
    Json& value = *values[Below(values.size())];
    switch (value.type()) {
      case Json::value_t::object:
        if (!value.empty()) value.erase(std::next(value.begin(), static_cast<std::ptrdiff_t>(Below(value.size()))));
        break;
      case Json::value_t::array:
        ChangeArray(value);
        break;
      case Json::value_t::string:
        value = ChangeText(value.get<std::string>());
        break;
      case Json::value_t::boolean:
        value = !value.get<bool>();
        break;
      default:
        value = ChangeNumber(value.is_number_integer() ? value.get<std::int64_t>() : 0);
    }
  }
  std::size_t Below(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random_); }

 private:
  static void Collect(Json& value, std::vector<Json*>& values) {
    values.push_back(&value);
    if (!value.is_structured()) return;
    for (Json& child : value) Collect(child, values);
  }
  void ChangeArray(Json& array) {
    if (array.empty()) return array.push_back(0);
    const std::size_t index = Below(array.size());
    if (Below(2) == 0) return array.erase(index);
    const Json copy = array[index];
    array.push_back(copy);
  }
  std::string ChangeText(std::string text) {
    const std::size_t size = text.size();
    text.resize(size + 16);
    text.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(text.data()), size, text.size()));
    return text;
  }
  std::int64_t ChangeNumber(std::int64_t number) {
    constexpr std::int64_t kHostile[] = {-0x80000001LL, -0x80000000LL, -1,     0,          1,
                                         255,           256,           0xFFFF, 0x7FFFFFFF, 0xFFFFFFFFLL};
    const std::size_t choice = Below(std::size(kHostile) + 2);
    if (choice < std::size(kHostile)) return kHostile[choice];
    return choice == std::size(kHostile) ? number + 1 : number - 1;
  }

  std::minstd_rand random_;
};

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  DocumentMutator mutator(seed);
  auto document = Json::parse(data, data + size, nullptr, false);
  if (document.is_discarded() || mutator.Below(8) == 0) return LLVMFuzzerMutate(data, size, maxSize);
  mutator.Change(document);
  const std::string text = document.dump(-1, ' ', false, Json::error_handler_t::replace);
  if (text.size() > maxSize) return LLVMFuzzerMutate(data, size, maxSize);
  std::copy(text.begin(), text.end(), data);
  return text.size();
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  ::setenv("SOURCE_DATE_EPOCH", "1700000000", 1);
  ::setenv("LC_ALL", "en_US", 1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const ScratchFolder folder;
  folder.WriteConversionTable();
  const auto document = Json::parse(bytes, bytes + size, nullptr, false);
  if (document.is_discarded() || !Builds(document, folder)) return 0;
  CProfileAccess access;
  CError error;
  if (!access.Init(folder.WideFile("p").c_str(), &error)) return 0;
  std::vector<char> files[2];
  for (std::vector<char>& file : files) {
    Check(Builds(nvx::tool::ProfileToDocument(access, {}), folder));
    file = BytesOf(folder.File("p"));
    Check(access.Init(folder.WideFile("p").c_str(), &error));
  }
  Check(files[0] == files[1]);
  return 0;
}
