// nvxprofile copy: a profile for another medium, out of one that was made for a similar one.
#include "command.h"
#include "files.h"
#include "loading.h"
#include "numbers.h"
#include "paths.h"
#include "profile_values.h"
#include "terminal.h"
#include "value_changes.h"

#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

struct CopyOptions {
  std::string file;
  std::string output;
  std::string media;
  std::vector<std::string> names;
  std::optional<std::uint32_t> number;
  std::vector<std::string> assignments;
};

// Primary language numbers by the codes of ISO 639.
const std::map<std::string, std::uint16_t> kLanguages{
    {"ar", 1},  {"bg", 2},  {"zh", 4},  {"cs", 5},  {"da", 6},  {"de", 7},  {"el", 8},  {"en", 9},  {"es", 10},
    {"fi", 11}, {"fr", 12}, {"hu", 14}, {"it", 16}, {"ja", 17}, {"ko", 18}, {"nl", 19}, {"no", 20}, {"pl", 21},
    {"pt", 22}, {"ro", 24}, {"ru", 25}, {"sv", 29}, {"th", 30}, {"tr", 31}, {"vi", 42}};

std::uint16_t LanguageOf(const std::string& text) {
  if (const auto found = kLanguages.find(text); found != kLanguages.end()) return found->second;
  if (const auto number = NumberOf<std::uint16_t>(text)) return *number;
  throw UsageError("--name", "no language is called \"" + text + "\"; its primary language number does, too");
}

// The names of --name by language.
std::map<std::uint16_t, std::string> NamesOf(const CopyOptions& options) {
  std::map<std::uint16_t, std::string> names;
  for (const std::string& item : options.names) {
    const std::size_t equals = item.find('=');
    if (equals == item.npos) throw UsageError("--name", "LANGUAGE=NAME is expected: " + item);
    names[LanguageOf(item.substr(0, equals))] = item.substr(equals + 1);
  }
  return names;
}

// Every language of the profile gets a name, and languages that it lacks are added.
void SetNames(ProfileValues& values, const std::string& media, std::map<std::uint16_t, std::string> names) {
  values.SetJson("/record/Binary/DefaultMediaName", media);
  Json list = values.Get("/record/Binary/MediaInfo");
  for (Json& item : list) {
    const auto own = names.extract(item["Language"].get<std::uint16_t>());
    item["Name"] = own ? own.mapped() : media;
  }
  for (const auto& [language, name] : names) list.push_back({{"Language", language}, {"Name", name}});
  values.SetJson("/record/Binary/MediaInfo", std::move(list));
}

// The model record of profiles that were converted tells the medium as well, in the ANSI code page.
void SetModelRecord(ProfileValues& values, const CopyOptions& options) {
  if (values.Access().GetProfileData()->GetProfileDataEntryFromList(CProfileDataEntry::kModel) == nullptr) return;
  const std::u16string wide = Utf8ToWide(options.media);
  if (AnsiToWide(WideToAnsi(wide)) == wide) {
    values.SetJson("model/mediaName", options.media);
  } else {
    PrintErrorOf(options.output, "the model record keeps the old name: the code page has no letters for the new one");
  }
}

int Run(const CopyOptions& options) {
  const std::map<std::uint16_t, std::string> names = NamesOf(options);
  return StatusOf(options.file, [&] {
    ProfileValues values(options.file);
    if (values.Access().GetProfileLoadFormat() != kPrinterProfile) {
      throw std::runtime_error("only profiles of the current generation can be copied for another medium");
    }
    SetNames(values, options.media, names);
    if (options.number) values.SetJson("/record/Binary/MediaNumber", *options.number);
    SetModelRecord(values, options);
    Assign(values, options.assignments);
    const bool hasName = options.output != kStandardStream && !IsDeviceName(options.output);
    const std::string name = FileNameOf(options.output);
    WriteOutput(options.output, values.Image(hasName ? PathToWide(name) : std::u16string()));
    return kSuccess;
  });
}

}  // namespace

void AddCopyCommand(CommandLine& line) {
  Command command = line.AddCommand("copy", "Make a profile for another medium name");
  const auto options = std::make_shared<CopyOptions>();
  command.Add("FILE", &options->file, "A profile of the current generation; it is only read").Required();
  command.Add("OUT", &options->output, "The new profile, whose name becomes its description").Required();
  command.Add("PATH=VALUE", &options->assignments, "Further values to change, as in set");
  command.Add("--media", &options->media, "Name of the medium, in every language of the profile")
      .Required()
      .Type("NAME");
  command
      .Add("--name", &options->names,
           "Its name in one language, such as ja or 17 before the equals sign; a new language is added")
      .Type("LANGUAGE=NAME")
      .Repeatable();
  command.Add("--number", &options->number, "Number of the medium").Type("N");
  command.Example("nvxprofile copy glossy.icc satin.icc --media Satin --name de=Satinpapier --number 77");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
