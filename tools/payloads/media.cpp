// The media property set (type 16) as JSON. A block lists the parameters in use.
#include "payload.h"

#include <nvxprofile/media_property.h>

#include <algorithm>
#include <memory>
#include <string>

namespace nvx::tool {
namespace {

Json BlockToJson(CMediaPropertyDataEntry& block) {
  const std::int32_t* const values = block.GetRefBuffer();
  return {{"usedType", block.GetUsedType()},
          {"parameterMax", block.GetParameterMax()},
          {"parameters", Json(std::vector<std::int32_t>(values, values + block.GetParameterMax()))}};
}

std::unique_ptr<CMediaPropertyDataEntry> BlockFromJson(const Node& node) {
  const std::vector<Node> parameters = node.At("parameters").Items();
  const Node parameterMax = node.At("parameterMax");
  std::unique_ptr<CMediaPropertyDataEntry> block(
      CMediaPropertyDataEntry::CreateMediaPropertyDataEntry(node.At("usedType").U32(), parameterMax.U32()));
  if (static_cast<std::uint32_t>(block->GetParameterMax()) != parameterMax.U32()) {
    parameterMax.Fail("a block of this type has " + std::to_string(block->GetParameterMax()) + " parameters");
  }
  if (parameters.size() > static_cast<std::size_t>(block->GetParameterMax())) {
    node.At("parameters").Fail("the block holds " + std::to_string(block->GetParameterMax()) + " numbers");
  }
  for (std::size_t i = 0; i < parameters.size(); ++i) block->GetRefBuffer()[i] = parameters[i].I32();
  return block;
}

}  // namespace

Json MediaToJson(CProfileDataEntry& entry, Detail) {
  auto* const data = dynamic_cast<CMediaPropertyData*>(entry.GetFormatData());
  if (data == nullptr || !entry.BufferToData()) return nullptr;
  Json blocks = Json::array();
  bool more = data->GetHeadPosition();
  while (more) blocks.push_back(BlockToJson(*data->GetNext(more)));
  return {{"mediaProperties", std::move(blocks)}};
}

void MediaFromJson(const Node& node, CProfileDataEntry& entry) {
  auto* const data = dynamic_cast<CMediaPropertyData*>(entry.GetFormatData());
  if (data == nullptr) node.Fail("the entry holds no media property set");
  data->DeleteMediaProperty();
  for (const Node& item : node.At("mediaProperties").Items()) data->AddTail(BlockFromJson(item).release());
  if (!entry.DataToBuffer()) node.Fail("the blocks do not fit their form");
}

}  // namespace nvx::tool
