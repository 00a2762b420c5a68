// Profiles for the tests of the tool, built by the tool from documents.
#pragma once

#include "support/files.h"
#include "tools/run_tool.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <map>
#include <string>
#include <vector>

namespace nvx::test {

inline constexpr const char* kFrameProfile = "/usr/share/color/icc/ghostscript/default_cmyk.icc";

using Samples = std::vector<std::uint32_t>;

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

// Builds a profile of the current generation of these entries.
inline void BuildProfile(const TempFolder& folder, const std::string& name, std::vector<nlohmann::json> entries) {
  entries.insert(entries.begin(), nlohmann::json{{"type", "icc"}, {"file", kFrameProfile}});
  const std::string text =
      nlohmann::json{{"nvxprofile", 1}, {"format", "printer-profile"}, {"entries", entries}}.dump();
  WriteBytes(folder.File("document.json"), Bytes(text.begin(), text.end()));
  const ToolResult built = RunTool({"build", folder.File("document.json"), "-o", folder.File(name)});
  ASSERT_EQ(built.status, 0) << built.err;
}

inline void WriteText(const std::string& path, const std::string& text) {
  WriteBytes(path, Bytes(text.begin(), text.end()));
}

// The samples of each ink of an entry.
inline std::map<int, Samples> SamplesIn(const std::string& path, const std::string& entry) {
  std::map<int, Samples> samples;
  const nlohmann::json document = nlohmann::json::parse(RunTool({"curves", path, "--entry", entry, "--json"}).out);
  for (const nlohmann::json& curve : document["entries"][0]["curves"]) {
    samples[curve["inkID"]] = curve["samples"].get<Samples>();
  }
  return samples;
}

}  // namespace nvx::test
