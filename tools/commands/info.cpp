// nvxprofile info: what a profile is and what it holds.
#include "command.h"
#include "files.h"
#include "icc_facts.h"
#include "json_fields.h"
#include "json_text.h"
#include "loading.h"
#include "terminal.h"

#include <nvxprofile/file.h>
#include <nvxprofile/icc_header.h>
#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace nvx::tool {
namespace {

struct InfoOptions {
  std::vector<std::string> files;
  bool json = false;
  bool jsonLines = false;
};

void WritePayload(CProfileDataEntry& entry, JsonWriter& out) {
  if (entry.GetFormatType() != CProfileDataEntry::kFormatIcc)
    return WritePayload(out, "payload", entry, Detail::kSizes);
  const Json icc = IccToJson(entry.Bytes().data(), entry.GetSize());
  if (!icc.is_null()) out.Member("payload", icc);
}

void WriteEntry(CProfileDataEntry& entry, JsonWriter& out) {
  out.Object([&] {
    out.Member("usedType", entry.GetUsedType());
    out.Member("class", ClassName(entry.GetUsedType()));
    out.Member("formatType", entry.GetFormatType());
    out.Member("complete", entry.IsComplete());
    out.Member("display", entry.IsDisplayEnable());
    out.Member("optionInfo", entry.GetOptionInfo());
    out.Member("label", NarrowToJson(entry.GetLabelString()));
    out.Member("size", entry.GetSize());
    WritePayload(entry, out);
  });
}

void WriteRoute(CProfileRoute& route, JsonWriter& out) {
  out.Object([&] {
    out.Member("route", route.GetRouteType());
    out.Name("entries");
    out.Array([&] {
      for (CProfileDataEntry* const entry : EntriesOf(route)) WriteEntry(*entry, out);
    });
  });
}

// The private tags of a file of the current generation, from its tag table; none for files of other formats.
std::vector<IccTag> PrivateTags(const InputFile& input, CProfileAccess& access) {
  constexpr std::uint32_t kPrefix = 0x4E5658;  // "NVX"
  std::vector<IccTag> tags;
  IccDirectory directory;
  CNvxFile file;
  if (access.GetProfileLoadFormat() != kPrinterProfile ||
      !file.Open(input.Path().c_str(), kGenericRead, kShareRead, kOpenExisting) || !ReadIccDirectory(file, directory)) {
    return tags;
  }
  std::copy_if(directory.tags.begin(), directory.tags.end(), std::back_inserter(tags),
               [](const IccTag& tag) { return tag.signature >> 8 == kPrefix; });
  return tags;
}

std::string JsonTextOf(const std::string& path, CProfileAccess& access, const std::vector<IccTag>& privateTags,
                       JsonLayout layout) {
  Json tagSizes;
  for (const IccTag& tag : privateTags) tagSizes[SignatureText(tag.signature)] = tag.size;
  JsonWriter out(layout);
  out.Object([&] {
    out.Member("file", path);
    out.Member("format", access.GetProfileLoadFormat());
    out.Member("formatName", FormatName(access.GetProfileLoadFormat()));
    out.Name("info");
    WriteRecord(out, *access.GetProfileInfo());
    if (!privateTags.empty()) out.Member("privateTags", tagSizes);
    out.Name("routes");
    out.Array([&] {
      for (CProfileRoute* const route : RoutesOf(*access.GetProfileData())) WriteRoute(*route, out);
    });
  });
  return out.Take();
}

void PrintPair(std::string_view name, const std::string& value) {
  if (!value.empty()) PrintLine(fmt::format("  {:<18}{}", name, value));
}

std::string TimeText(const SYSTEMTIME& time) {
  if (time.wYear == 0) return {};
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", time.wYear, time.wMonth, time.wDay, time.wHour,
                     time.wMinute, time.wSecond);
}

// What the header of a text-headed profile says beside the record's own fields.
void PrintTextView(const _tagDeviceProfileInfo::TextView& view) {
  const auto ansi = [](const char* text) { return WideToUtf8(AnsiToWide(text)); };
  PrintPair("printer label", ansi(view.Printer_Label));
  PrintPair("ink set label", ansi(view.InkSet_Label));
  PrintPair("media label", ansi(view.Media_Label));
  PrintPair("media name 17", ansi(view.Media_Jpn));
  PrintPair("media name 9", ansi(view.Media_Eng));
  PrintPair("resolution code", ansi(view.Dpi_Code));
}

void PrintRecord(const _tagDeviceProfileInfo& info) {
  const auto wide = [](const char16_t* text) { return WideToUtf8(text); };
  if (info.ModelCode[0] != 0) {
    PrintPair("model",
              fmt::format("{} / {} / {}", wide(info.ModelCode), wide(info.ModelSubCode), wide(info.InternalCode)));
  }
  PrintPair("printer", wide(info.PrinterComment));
  if (info.MediaName[0] != 0) PrintPair("media", fmt::format("{} ({})", wide(info.MediaName), wide(info.MediaCode)));
  if (info.ScanResolution != 0) {
    PrintPair("resolution", fmt::format("{} x {} dpi, rendered at {} x {}", info.ScanResolution, info.FeedResolution,
                                        info.RenderingScan, info.RenderingFeed));
  }
  if (info.LayoutNumber != 0) {
    PrintPair("ink", fmt::format("maker {}, type {}, colour set {}, version {}", info.InkMakerCode, info.InkTypeCode,
                                 info.ColorsetCode, info.InkVersion));
    PrintPair("version", fmt::format("{}.{}", info.ProfileMajorVersion, info.ProfileMinorVersion));
  }
  PrintPair("created", TimeText(info.CreateTime));
  PrintPair("updated", TimeText(info.UpdateTime));
  if (info.LayoutNumber == kTextView) PrintTextView(info.Text);
  if (info.LayoutNumber == kBinaryView) {
    PrintPair("made by", wide(info.Binary.MakerText));
    PrintPair("made with", wide(info.Binary.CreateModule));
    for (std::uint32_t i = 0; info.Binary.MediaInfo != nullptr && i < info.Binary.MediaInfoCount; ++i) {
      const tagMedia& media = info.Binary.MediaInfo[i];
      PrintPair(fmt::format("media name {}", media.Language), wide(media.Name));
    }
  }
}

std::string FlagsOf(CProfileDataEntry& entry) {
  std::string flags = entry.IsComplete() ? "complete" : "";
  if (entry.IsDisplayEnable()) flags += flags.empty() ? "display" : ", display";
  return flags;
}

void PrintIcc(CProfileDataEntry& entry) {
  IccDirectory directory;
  if (!ReadIccDirectory(entry.Bytes().data(), entry.GetSize(), directory)) return;
  std::string facts;
  for (const auto& [name, value] : IccFacts(directory.header)) {
    if (name == "size" || value.empty()) continue;
    facts += fmt::format("{}{} {}", facts.empty() ? "" : ", ", name, value);
  }
  std::string tags;
  for (const IccTag& tag : directory.tags) tags += fmt::format(" {} {}", SignatureText(tag.signature), tag.size);
  PrintLine(Styled(Style::kDim, fmt::format("    {}: {}", EntryName(entry.GetUsedType()), facts)));
  PrintLine(Styled(Style::kDim, fmt::format("    {} tags:{}", directory.tags.size(), tags)));
}

void Print(const std::string& path, CProfileAccess& access, const std::vector<IccTag>& privateTags) {
  PrintLine(Styled(Style::kHeading, path) + ": " + std::string(FormatName(access.GetProfileLoadFormat())));
  PrintRecord(*access.GetProfileInfo());
  std::string tags;
  for (const IccTag& tag : privateTags)
    tags += fmt::format("{}{} {}", tags.empty() ? "" : ", ", SignatureText(tag.signature), tag.size);
  PrintPair("private tags", tags);
  for (CProfileRoute* const route : RoutesOf(*access.GetProfileData())) {
    PrintLine(fmt::format("  route {}", route->GetRouteType()));
    Table table({{"type", Table::Align::kRight},
                 {"entry"},
                 {"class"},
                 {"bytes", Table::Align::kRight},
                 {"option"},
                 {"flags"},
                 {"label"}});
    for (CProfileDataEntry* const entry : EntriesOf(*route)) {
      table.Add({std::to_string(entry->GetUsedType()), std::string(EntryName(entry->GetUsedType())),
                 std::string(ClassName(entry->GetUsedType())), std::to_string(entry->GetSize()),
                 fmt::format("{:#x}", entry->GetOptionInfo()), FlagsOf(*entry),
                 WideToUtf8(AnsiToWide(entry->GetLabelString()))});
    }
    table.Print(4);
    for (CProfileDataEntry* const entry : EntriesOf(*route)) {
      if (entry->GetFormatType() == CProfileDataEntry::kFormatIcc) PrintIcc(*entry);
    }
  }
}

int Run(const InfoOptions& options) {
  int status = kSuccess;
  JsonOfFiles documents(options.files.size());
  for (const std::string& file : options.files) {
    const InputFile input(file);
    CProfileAccess access;
    if (!LoadProfile(file, input, access)) {
      status = kFailure;
      continue;
    }
    const std::vector<IccTag> privateTags = PrivateTags(input, access);
    if (options.jsonLines) {
      PrintLine(JsonTextOf(file, access, privateTags, JsonLayout::kLine));
    } else if (options.json) {
      documents.PrintText(JsonTextOf(file, access, privateTags, JsonLayout::kIndented) + "\n");
    } else {
      Print(file, access, privateTags);
    }
  }
  if (options.json) documents.End();
  return status;
}

}  // namespace

void AddInfoCommand(CommandLine& line) {
  Command command = line.AddCommand("info", "Tell what profiles are and what they hold");
  const auto options = std::make_shared<InfoOptions>();
  command.AddFiles("FILE", options->files, "Profiles of any format").Required();
  const Option json = command.AddFlag("--json", options->json,
                                      "Write a JSON document; of several files, an array of them. Of curves, colour "
                                      "tables and masks it has the sizes, and a dump the samples and bytes");
  command.AddFlag("--json-lines", options->jsonLines, "Write one JSON object a line, each of one file").Excludes(json);
  command.Example("nvxprofile info glossy.icc");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
