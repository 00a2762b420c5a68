// Large parameters as JSON: the arrays of each table, word by word.
#include "payload.h"
#include "payloads/word_arrays.h"

#include <nvxprofile/large_parameter.h>

#include <memory>

namespace nvx::tool {
namespace {

constexpr std::uint32_t kFixed = 1;
constexpr std::uint32_t kPatterns = 2;

Json TableToJson(CLargeParameterDataEntry& table) {
  Json json = {{"usedType", table.GetUsedType()}};
  if (table.GetUsedType() == kPatterns) json["patternCount"] = table.GetPatternCount();
  json["parameters"] = WordArraysToJson(table.Arrays());
  return json;
}

std::unique_ptr<CLargeParameterDataEntry> TableFromJson(const Node& node) {
  const auto usedType = static_cast<std::uint32_t>(node.At("usedType").Integer(kFixed, kPatterns));
  const auto arrays = WordArraysFromJson(node.At("parameters"), usedType == kFixed ? 1 : 2);
  std::uint32_t sizes[2] = {};
  for (std::size_t i = 0; i < arrays.size(); ++i) sizes[i] = static_cast<std::uint32_t>(arrays[i].size());
  if (usedType == kFixed && sizes[0] != CLargeParameterID001Entry::kWordCount) {
    node.At("parameters").Fail("an array of 264 words is expected");
  }
  std::unique_ptr<CLargeParameterDataEntry> table(
      CLargeParameterDataEntry::CreateLargeParameterDataEntry(usedType, sizes));
  if (usedType == kPatterns) table->SetPatternCount(node.At("patternCount").I32());
  SetWords(*table, arrays);
  return table;
}

}  // namespace

Json LargeParameterToJson(CProfileDataEntry& entry, Detail) {
  auto* const parameters = dynamic_cast<CLargeParameterEntry*>(&entry);
  if (parameters == nullptr || !parameters->BufferToData()) return nullptr;
  Json tables = Json::array();
  for (CLargeParameterDataEntry* const table : parameters->GetLargeParameterData()->Entries()) {
    tables.push_back(TableToJson(*table));
  }
  return {{"entries", std::move(tables)}};
}

void LargeParameterFromJson(const Node& node, CProfileDataEntry& entry) {
  auto* const parameters = dynamic_cast<CLargeParameterEntry*>(&entry);
  if (parameters == nullptr) node.Fail("the entry holds no large parameters");
  CLargeParameterData& data = *parameters->GetLargeParameterData();
  data.DeleteLargeParameter();
  for (const Node& item : node.At("entries").Items()) data.AddTail(TableFromJson(item).release());
  if (!entry.DataToBuffer()) node.Fail("word 0 of each pattern table must be the byte length of its array");
}

}  // namespace nvx::tool
