#include <nvxprofile/lut.h>

#include <algorithm>
#include <limits>

namespace {

// Node objects are made this many at a time, so that looking at a few nodes of a big table stays cheap.
constexpr int kChunkNodes = 256;

constexpr std::uint64_t kMostNodes = std::numeric_limits<int>::max();
constexpr std::uint64_t kMostSamples = std::numeric_limits<std::uint32_t>::max();

CLutChannelInf* ChannelAt(std::vector<CLutChannelInf>& channels, int index) {
  const auto place = static_cast<std::size_t>(index);
  return index >= 0 && place < channels.size() ? &channels[place] : nullptr;
}

// An empty vector that keeps no memory.
template <class T>
void Release(std::vector<T>& items) {
  std::vector<T>().swap(items);
}

}  // namespace

CLutChannelInf::~CLutChannelInf() = default;

std::uint64_t CLutData::CountNodes(std::uint32_t inputChannels, std::uint32_t gridCount) {
  if (inputChannels == 0) return 1;
  if (gridCount <= 1) return gridCount;
  std::uint64_t nodes = 1;
  for (std::uint32_t i = 0; i < inputChannels; ++i) {
    if (nodes > std::numeric_limits<std::uint64_t>::max() / gridCount) return std::numeric_limits<std::uint64_t>::max();
    nodes *= gridCount;
  }
  return nodes;
}

CLutData* CLutData::CreateLutData() { return new CLutData; }

CLutData::CLutData(std::uint32_t inputChannels, std::uint32_t outputChannels, std::uint32_t gridCount) {
  CLutData::Initialize(inputChannels, outputChannels, gridCount);
}

CLutData::~CLutData() = default;

void CLutData::Delete() { delete this; }

void CLutData::Initialize(std::uint32_t inputChannels, std::uint32_t outputChannels, std::uint32_t gridCount) {
  RemoveAllLutDataEntry();
  RemoveAllInputChannelInf();
  RemoveAllOutputChannelInf();
  SetInputChannel(inputChannels);
  SetOutputChannel(outputChannels);
  SetGridCount(gridCount);
  inputChannelInfs_.resize(inputChannels);
  outputChannelInfs_.resize(outputChannels);
  const std::uint64_t nodes = CountNodes(inputChannels, gridCount);
  if (nodes > kMostNodes || nodes * outputChannels > kMostSamples) return;
  samples_.resize(static_cast<std::size_t>(nodes * outputChannels));
  gridNodes_ = static_cast<int>(nodes);
  nodeWidth_ = outputChannels;
}

void CLutData::DeleteAllElement() {
  RemoveAllLutDataEntry();
  RemoveAllInputChannelInf();
  RemoveAllOutputChannelInf();
}

void CLutData::RemoveAllOutputChannelInf() { Release(outputChannelInfs_); }
void CLutData::RemoveAllInputChannelInf() { Release(inputChannelInfs_); }

void CLutData::RemoveAllLutDataEntry() {
  Release(chunks_);
  Release(added_);
  Release(samples_);
  gridNodes_ = 0;
  nodeWidth_ = 0;
}

void CLutData::SetGridCount(std::uint32_t gridCount) { gridCount_ = gridCount; }
void CLutData::SetInputChannel(std::uint32_t inputChannels) { inputChannels_ = inputChannels; }
void CLutData::SetOutputChannel(std::uint32_t outputChannels) { outputChannels_ = outputChannels; }

CLutChannelInf* CLutData::GetAtInputChannelInf(int index) { return ChannelAt(inputChannelInfs_, index); }
CLutChannelInf* CLutData::GetAtOutputChannelInf(int index) { return ChannelAt(outputChannelInfs_, index); }

int CLutData::GetSize() { return CountNodes(); }

std::uint32_t CLutData::GetLutDataSize() {
  if (GetSize() == 0) return 0;
  const bool isView = gridNodes_ != 0 && (chunks_.empty() || !chunks_.front());
  const std::uint32_t width = isView ? nodeWidth_ : static_cast<std::uint32_t>(GetAt(0)->GetCount());
  return static_cast<std::uint32_t>(GetSize()) * width;
}

CLutDataEntry* CLutData::GetAt(int index) {
  if (index < 0 || index >= GetSize()) return nullptr;
  if (index >= gridNodes_) return added_[static_cast<std::size_t>(index - gridNodes_)].get();
  const auto chunk = static_cast<std::size_t>(index / kChunkNodes);
  if (chunk >= chunks_.size()) chunks_.resize(chunk + 1);
  if (!chunks_[chunk]) chunks_[chunk] = MakeChunk(index - index % kChunkNodes);
  return &chunks_[chunk][static_cast<std::size_t>(index % kChunkNodes)];
}

CLutData::NodeChunk CLutData::MakeChunk(int firstNode) {
  const auto count = static_cast<std::size_t>(std::min(kChunkNodes, gridNodes_ - firstNode));
  NodeChunk chunk(new CLutDataEntry[count]);
  std::uint8_t* samples = samples_.data() + static_cast<std::size_t>(firstNode) * nodeWidth_;
  for (std::size_t i = 0; i < count; ++i, samples += nodeWidth_) chunk[i].ViewSamples(samples, nodeWidth_);
  return chunk;
}

void CLutData::Add(CLutDataEntry* node) {
  if (node == nullptr) return;
  node->Own();
  node->inTable_ = true;
  added_.emplace_back(node);
}

// The first grid node from `firstNode` on that holds an array of its own, or the end of the grid nodes.
int CLutData::EndOfRun(int firstNode) const {
  int node = firstNode;
  for (auto chunk = static_cast<std::size_t>(node / kChunkNodes); chunk < chunks_.size(); ++chunk) {
    const int end =
        static_cast<int>(std::min<std::size_t>((chunk + 1) * kChunkNodes, static_cast<std::size_t>(gridNodes_)));
    for (; node < end && chunks_[chunk]; ++node) {
      if (chunks_[chunk][static_cast<std::size_t>(node % kChunkNodes)].OwnsSamples()) return node;
    }
    node = end;
  }
  return gridNodes_;
}

nvx::SampleView CLutData::ViewRun(int firstNode) const {
  if (firstNode < 0 || firstNode >= CountNodes()) return {};
  const int end = firstNode < gridNodes_ ? EndOfRun(firstNode) : firstNode;
  if (end == firstNode) {
    // A node that stands for itself has an object already.
    const CLutDataEntry& node = firstNode < gridNodes_ ? chunks_[static_cast<std::size_t>(firstNode / kChunkNodes)]
                                                                [static_cast<std::size_t>(firstNode % kChunkNodes)]
                                                       : *added_[static_cast<std::size_t>(firstNode - gridNodes_)];
    return {node.samples_, node.count_, 1};
  }
  const int nodes = end - firstNode;
  return {samples_.data() + static_cast<std::size_t>(firstNode) * nodeWidth_,
          static_cast<std::uint32_t>(nodes) * nodeWidth_, nodes};
}

nvx::SampleRun CLutData::GetRun(int firstNode) {
  const nvx::SampleView run = ViewRun(firstNode);
  return {const_cast<std::uint8_t*>(run.samples), run.size, run.nodes};
}

std::uint8_t* CLutData::GetRefBuffer() {
  flatCopy_.clear();
  nvx::SampleRun run;
  for (int node = 0; node < GetSize(); node += run.nodes) {
    run = GetRun(node);
    flatCopy_.insert(flatCopy_.end(), run.samples, run.samples + run.size);
  }
  return flatCopy_.data();
}

void CLutData3D::Initialize(std::uint32_t outputChannels, std::uint32_t gridCount) {
  CLutData::Initialize(3, outputChannels, gridCount);
}
