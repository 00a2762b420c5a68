// The media property set (type 16) as JSON. A block lists the parameters in use, and behind them those beyond as far as
// they are not 0: a save writes them as well.
#include "payload.h"

#include <nvxprofile/media_property.h>

#include <algorithm>
#include <memory>
#include <string>

namespace nvx::tool {
namespace {

Json BlockToJson(CMediaPropertyDataEntry& block) {
  const std::int32_t* const values = block.GetRefBuffer();
  std::int32_t count = CMediaPropertyDataEntry::kParameterRoom;
  while (count > block.GetParameterMax() && values[count - 1] == 0) --count;
  return {{"usedType", block.GetUsedType()},
          {"parameterMax", block.GetParameterMax()},
          {"parameters", Json(std::vector<std::int32_t>(values, values + count))}};
}

std::unique_ptr<CMediaPropertyDataEntry> BlockFromJson(const Node& node) {
  const std::vector<Node> parameters = node.At("parameters").Items();
  if (parameters.size() > CMediaPropertyDataEntry::kParameterRoom) {
    node.At("parameters").Fail("at most 16 numbers are expected");
  }
  const Node parameterMax = node.At("parameterMax");
  std::unique_ptr<CMediaPropertyDataEntry> block(
      CMediaPropertyDataEntry::CreateMediaPropertyDataEntry(node.At("usedType").U32(), parameterMax.U32()));
  if (static_cast<std::uint32_t>(block->GetParameterMax()) != parameterMax.U32()) {
    parameterMax.Fail("a block of this type has " + std::to_string(block->GetParameterMax()) + " parameters");
  }
  for (std::size_t i = 0; i < parameters.size(); ++i) block->GetRefBuffer()[i] = parameters[i].I32();
  return block;
}

}  // namespace

Json MediaToJson(CProfileDataEntry& entry) {
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
