// Profiles for the tests of the tool, built by the tool from documents.
#pragma once

#include "support/files.h"
#include "tools/run_tool.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace nvx::test {

inline constexpr const char* kFrameProfile = "/usr/share/color/icc/ghostscript/default_cmyk.icc";
inline const std::string kExamples = NVXPROFILE_SOURCE_FOLDER "/examples";

using Samples = std::vector<std::uint32_t>;
using TextPairs = std::vector<std::pair<std::string, std::string>>;

// Samples of 16 bits of a function from 0..1 to 0..1.
template <class Function>
Samples Sampled(std::size_t count, Function function) {
  Samples samples;
  for (std::size_t i = 0; i < count; ++i) {
    samples.push_back(
        static_cast<std::uint32_t>(65535 * function(static_cast<double>(i) / static_cast<double>(count - 1)) + 0.5));
  }
  return samples;
}

inline nlohmann::json CurveDocument(int ink, const std::string& name, const Samples& samples, int extendInfo = 0) {
  return {{"inkID", ink}, {"inkName", name}, {"extendInfo", extendInfo}, {"samples", samples}};
}

inline nlohmann::json EntryDocument(const std::string& type, const std::vector<nlohmann::json>& curves) {
  return {{"type", type}, {"payload", {{"curves", curves}}}};
}

inline nlohmann::json CalibrationDocument(int code, int value, std::int64_t time, const std::string& name,
                                          const std::vector<nlohmann::json>& entries = {}) {
  return {{"type", "calibration"},
          {"optionInfo", code},
          {"containerData", {{"value", value}, {"time", time}, {"name", name}}},
          {"payload", {{"entries", entries}}}};
}

// A history, with a target that was made at 77.
inline nlohmann::json HistoryDocument(std::vector<nlohmann::json> calibrations, int nextId = 0) {
  calibrations.insert(calibrations.begin(), nlohmann::json{{"type", "calibration-target"},
                                                           {"payload", {{"createTime", 77}, {"rest", "AQI="}}}});
  return {{"type", "calibration-history"}, {"payload", {{"nextID", nextId}, {"entries", calibrations}}}};
}

// A profile of the current generation of these entries.
inline nlohmann::json ProfileDocument(std::vector<nlohmann::json> entries) {
  entries.insert(entries.begin(), nlohmann::json{{"type", "icc"}, {"file", kFrameProfile}});
  return {{"nvxprofile", 1}, {"format", "printer-profile"}, {"entries", entries}};
}

inline void WriteText(const std::string& path, const std::string& text) {
  WriteBytes(path, Bytes(text.begin(), text.end()));
}

// Builds a profile of the text of a document, which stands beside it for no longer than that.
inline ToolResult BuildText(const std::string& document, const std::string& path) {
  const std::string text = path + ".document";
  WriteText(text, document);
  const ToolResult result = RunTool({"build", text, "-o", path});
  std::filesystem::remove(text);
  return result;
}
inline ToolResult Build(const nlohmann::json& document, const std::string& path) {
  return BuildText(document.dump(), path);
}

// Builds the document of that name among the examples.
inline ToolResult BuildExample(const std::string& name, const std::string& path) {
  return RunTool({"build", kExamples + "/" + name, "-o", path});
}

// What the tool prints as JSON for these arguments.
inline nlohmann::json ToolJson(const std::vector<std::string>& arguments, const std::vector<std::string>& more = {}) {
  return nlohmann::json::parse(RunTool(arguments, more).out);
}

// The profile that comes out of the dump of another.
inline Bytes BuiltAgain(const std::string& path) {
  const TempFolder folder;
  const std::string copy = folder.File(std::filesystem::path(path).filename().string());
  EXPECT_THAT(BuildText(RunTool({"dump", path}).out, copy), Succeeds());
  return ReadBytes(copy);
}

// The samples of each ink of an entry.
inline std::map<int, Samples> SamplesIn(const std::string& path, const std::string& entry) {
  std::map<int, Samples> samples;
  const nlohmann::json document = ToolJson({"curves", path, "--entry", entry, "--json"});
  for (const nlohmann::json& curve : document["entries"][0]["curves"]) {
    samples[curve["inkID"]] = curve["samples"].get<Samples>();
  }
  return samples;
}

}  // namespace nvx::test
