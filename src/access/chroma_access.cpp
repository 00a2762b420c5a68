// The colour separation table of a profile.
#include "core/report.h"

#include <nvxprofile/lut.h>
#include <nvxprofile/profile_access.h>

#include <algorithm>
#include <limits>
#include <span>

namespace {

int FailWithoutTable(CError* error, int line = __builtin_LINE()) {
  nvx::Fail(error, nvx::kReasonNotFound, "ProfileAccess", u"Profile:Chroma entry - none", line);
  return -1;
}

// The table of an entry; null for one without.
const CLutData* TableOf(CProfileDataEntry& entry) {
  if (const auto* const chroma = dynamic_cast<const CSeparateChromaEntry*>(&entry)) return &chroma->Table();
  return dynamic_cast<const CLutData*>(entry.GetFormatData());
}

const CLutData* FindTable(const CProfileData* profile) {
  if (profile == nullptr) return nullptr;
  CProfileDataEntry* const entry = profile->GetProfileDataEntryFromList(CProfileDataEntry::kSeparateChroma);
  return entry != nullptr ? TableOf(*entry) : nullptr;
}

int GiveCodes(std::span<const CLutChannelInf> channels, std::uint32_t count, std::uint32_t* codes) {
  const std::size_t known = std::min<std::size_t>(channels.size(), count);
  for (std::size_t i = 0; codes != nullptr && i < known; ++i) codes[i] = channels[i].GetChannelCode();
  return static_cast<int>(count);
}

// Copies `width` samples of a node that holds `count`; what it lacks reads as 0.
void CopyNode(const std::uint8_t* samples, std::size_t count, std::size_t width, std::uint8_t* target) {
  const std::size_t held = std::min(count, width);
  std::copy_n(samples, held, target);
  std::fill_n(target + held, width - held, std::uint8_t{0});
}

// Copies `width` samples of each of `nodes` nodes. Nodes have other counts, and there are fewer of them, only where a
// caller changed the table; what is not there reads as 0.
void CopySamples(const CLutData& table, int nodes, std::size_t width, std::uint8_t* target) {
  const int present = std::min(nodes, table.CountNodes());
  nvx::SampleView run;
  for (int node = 0; node < present; node += run.nodes) {
    run = table.ViewRun(node);
    const std::size_t count = run.size / static_cast<std::size_t>(run.nodes);
    run.nodes = std::min(run.nodes, present - node);
    const auto runNodes = static_cast<std::size_t>(run.nodes);
    if (count == width) {
      std::copy_n(run.samples, runNodes * width, target);
    } else {
      for (std::size_t i = 0; i < runNodes; ++i) CopyNode(run.samples + i * count, count, width, target + i * width);
    }
    target += runNodes * width;
  }
  std::fill_n(target, static_cast<std::size_t>(nodes - present) * width, std::uint8_t{0});
}

}  // namespace

CLutData* CProfileAccess::GetChromaLutData(CError* error) {
  if (!profile_) return nullptr;
  CProfileDataEntry* const entry = profile_->GetProfileDataEntryFromList(CProfileDataEntry::kSeparateChroma);
  if (entry == nullptr) {
    FailWithoutTable(error);
    return nullptr;
  }
  return dynamic_cast<CLutData*>(entry->GetFormatData());
}

int CProfileAccess::GetChromaInputChannel(std::uint32_t* codes, CError* error) {
  const CLutData* const table = FindTable(profile_.get());
  if (table == nullptr) return FailWithoutTable(error);
  return GiveCodes(table->InputChannels(), table->GetInputChannelCount(), codes);
}

int CProfileAccess::GetChromaOutputChannel(std::uint32_t* codes, CError* error) {
  const CLutData* const table = FindTable(profile_.get());
  if (table == nullptr) return FailWithoutTable(error);
  return GiveCodes(table->OutputChannels(), table->GetOutputChannelCount(), codes);
}

int CProfileAccess::GetChromaData(std::uint8_t* buffer, std::uint32_t& gridCount, CError* error) {
  const CLutData* const table = FindTable(profile_.get());
  if (table == nullptr) return FailWithoutTable(error);
  gridCount = table->GetGridCount();
  const std::uint64_t width = table->GetOutputChannelCount();
  const std::uint64_t nodes = CLutData::CountNodes(table->GetInputChannelCount(), gridCount);
  if (width == 0 || nodes == 0) return 0;
  // No result could tell the size of such a table, which has no nodes either.
  constexpr std::uint64_t kMost = std::numeric_limits<int>::max();
  if (nodes > kMost || nodes * width > kMost) return FailWithoutTable(error);
  if (buffer != nullptr) CopySamples(*table, static_cast<int>(nodes), static_cast<std::size_t>(width), buffer);
  return static_cast<int>(nodes * width);
}
