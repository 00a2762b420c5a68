// The colour separation table: from input channels to output inks over a regular grid. The form stands in
// docs/formats/lut.md.
#pragma once

#include <nvxprofile/data_object.h>
#include <nvxprofile/export.h>
#include <nvxprofile/file.h>
#include <nvxprofile/profile_entry.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

// One channel of a table.
class NVX_EXPORT CLutChannelInf {
 public:
  // Characters of a name, the terminator included.
  static constexpr std::size_t kNameLength = 128;

  CLutChannelInf() = default;
  CLutChannelInf(const CLutChannelInf&) = default;
  CLutChannelInf& operator=(const CLutChannelInf&) = default;
  virtual ~CLutChannelInf();

  // Ink or colour code: the low 8 bits of what was set.
  std::uint8_t GetChannelCode() const { return static_cast<std::uint8_t>(code_); }
  void SetChannelCode(std::uint32_t code) { code_ = code; }
  // Passed through.
  std::uint32_t GetChannelAttribute() const { return attribute_; }
  void SetChannelAttribute(std::uint32_t attribute) { attribute_ = attribute; }
  // Display name; valid as long as the channel.
  const char* GetChannelName() const { return name_; }
  // Copies the text, cut to 127 characters; null counts as empty.
  void SetChannelName(const char* name) {
    std::size_t length = 0;
    for (; name != nullptr && length < kNameLength - 1 && name[length] != 0; ++length) name_[length] = name[length];
    std::fill(name_ + length, name_ + kNameLength, '\0');
  }

 private:
  std::uint32_t code_ = 0;
  std::uint32_t attribute_ = 0;
  char name_[kNameLength] = {};
};

// One grid point: samples of 8 bits, one for each output channel. A node of a table is a view of the table's samples
// until its count changes; then it holds an array of its own, and its neighbours stay as they were. One that stands
// alone always holds its own.
class NVX_EXPORT CLutDataEntry : public CDataEntryObject {
 public:
  CLutDataEntry() = default;
  CLutDataEntry(const CLutDataEntry&) = delete;
  CLutDataEntry& operator=(const CLutDataEntry&) = delete;
  ~CLutDataEntry() override;

  // The samples, which may be written to; valid until the count changes or the node is gone.
  virtual std::uint8_t* GetRefBuffer();
  virtual int GetCount();
  // No bound test: the index is at least 0 and below GetCount.
  virtual std::uint8_t GetAt(int index);
  virtual void SetAt(int index, std::uint8_t value);
  // Appends a sample.
  virtual void Add(std::uint8_t value);
  // The count becomes 0.
  virtual void DeleteAllElement();
  // Destroys a node that stands alone. A node of a table stays there without samples until the table removes it.
  virtual void Delete();

 private:
  friend class CLutData;

  void ViewSamples(std::uint8_t* samples, std::uint32_t count);
  bool OwnsSamples() const { return own_ != nullptr; }
  std::vector<std::uint8_t>& Own();

  std::uint8_t* samples_ = nullptr;
  std::unique_ptr<std::vector<std::uint8_t>> own_;
  std::uint32_t count_ = 0;
  bool inTable_ = false;
};

namespace nvx {

// Samples of successive nodes that lie in one piece of memory.
struct SampleRun {
  std::uint8_t* samples = nullptr;
  std::uint32_t size = 0;  // bytes
  int nodes = 0;
};

// The same for reading alone.
struct SampleView {
  const std::uint8_t* samples = nullptr;
  std::uint32_t size = 0;  // bytes
  int nodes = 0;
};

}  // namespace nvx

// A table: the channels and grid count to the power of the input channel count nodes, in one flat order whose axes are
// the caller's matter. The samples lie in one block; an object for a node comes into being when GetAt asks for it, so
// that a table costs its samples and no more. Channels and nodes belong to the table; pointers to them are valid until
// the next Initialize or removal.
class NVX_EXPORT CLutData : public CDataObject {
 public:
  // A new empty table; the caller ends it with Delete.
  static CLutData* CreateLutData();

  CLutData() = default;
  CLutData(std::uint32_t inputChannels, std::uint32_t outputChannels, std::uint32_t gridCount);
  CLutData(const CLutData&) = delete;
  CLutData& operator=(const CLutData&) = delete;

  // Bytes of all samples: nodes times samples of the first node; 0 without nodes.
  virtual std::uint32_t GetLutDataSize();
  // Null for an index without a channel.
  virtual CLutChannelInf* GetAtOutputChannelInf(int index);
  virtual CLutChannelInf* GetAtInputChannelInf(int index);
  // Destroys this object; only for one that came from CreateLutData or new.
  virtual void Delete();
  // Number of nodes.
  virtual int GetSize();
  // Null for an index without a node.
  virtual CLutDataEntry* GetAt(int index);
  // Replaces everything: channels with code 0 and nodes of samples 0. A power of 0 is 1 node. A table of more than
  // 2^31 - 1 nodes or 2^32 - 1 bytes of samples gets its counts and channels, but no nodes.
  virtual void Initialize(std::uint32_t inputChannels, std::uint32_t outputChannels, std::uint32_t gridCount);
  virtual ~CLutData();

  // Removes nodes and channels; the counts stay.
  void DeleteAllElement();
  std::uint32_t GetGridCount() const { return gridCount_; }
  std::uint32_t GetInputChannelCount() const { return inputChannels_; }
  std::uint32_t GetOutputChannelCount() const { return outputChannels_; }

  // A copy of all samples in node order, valid until the next call; later changes of nodes do not touch it.
  std::uint8_t* GetRefBuffer();

  // The longest run of samples that starts with the given node; without nodes for an index that has none. A table
  // whose nodes have kept their counts is one run.
  nvx::SampleRun GetRun(int firstNode);
  nvx::SampleView ViewRun(int firstNode) const;
  // The channels, for reading alone.
  std::span<const CLutChannelInf> InputChannels() const { return inputChannelInfs_; }
  std::span<const CLutChannelInf> OutputChannels() const { return outputChannelInfs_; }
  // As GetSize.
  int CountNodes() const { return gridNodes_ + static_cast<int>(added_.size()); }

  // Nodes of a table with these counts; the greatest number when they are more than that.
  static std::uint64_t CountNodes(std::uint32_t inputChannels, std::uint32_t gridCount);

 protected:
  // Take out all channels; the counts stay.
  virtual void RemoveAllOutputChannelInf();
  virtual void RemoveAllInputChannelInf();
  // Appends a node, which the table takes over; null is ignored.
  virtual void Add(CLutDataEntry* node);
  virtual void RemoveAllLutDataEntry();
  virtual void SetGridCount(std::uint32_t gridCount);
  virtual void SetInputChannel(std::uint32_t inputChannels);
  virtual void SetOutputChannel(std::uint32_t outputChannels);

 private:
  using NodeChunk = std::unique_ptr<CLutDataEntry[]>;

  NodeChunk MakeChunk(int firstNode);
  int EndOfRun(int firstNode) const;

  std::uint32_t outputChannels_ = 0;
  std::uint32_t inputChannels_ = 0;
  std::uint32_t gridCount_ = 0;
  std::vector<CLutChannelInf> inputChannelInfs_;
  std::vector<CLutChannelInf> outputChannelInfs_;
  std::vector<std::uint8_t> samples_;  // of the grid nodes
  int gridNodes_ = 0;
  std::uint32_t nodeWidth_ = 0;                        // samples of a grid node
  std::vector<NodeChunk> chunks_;                      // objects of the grid nodes, as far as they were asked for
  std::vector<std::unique_ptr<CLutDataEntry>> added_;  // nodes behind the grid nodes
  std::vector<std::uint8_t> flatCopy_;                 // what GetRefBuffer gives
};

// A table of three input channels, as a separation starts with.
class NVX_EXPORT CLutData3D : public CLutData {
 public:
  using CLutData::Initialize;
  // As in the base, with three input channels.
  void Initialize(std::uint32_t outputChannels, std::uint32_t gridCount);
};

// Reads or writes a table; made for one load or one save. Loads start where the stream stands.
class NVX_EXPORT CLutFile : public CDataFile {
 public:
  virtual ~CLutFile();

  // Fills the table, after LoadHeader if that has not run yet. False for a null table. Counts that the stream cannot
  // hold are refused with the table as it was. After a wrong channel signature the table is initialised, with the
  // channels before it filled. A channel name is cut to 127 characters.
  virtual bool LoadFile(CNvxFile& file, CLutData* data);
  // False unless signature and version are right.
  virtual bool LoadHeader(CNvxFile& file);
  // Writes 280 bytes, 336 for each channel, and the samples. False with nothing written for a null table and for nodes
  // that do not fit its counts, which would not load; false if the stream refuses the bytes.
  virtual bool SaveFile(CNvxFile& file, CLutData* data);

 private:
  std::uint32_t inputChannels_ = 0;
  std::uint32_t outputChannels_ = 0;
  std::uint32_t gridCount_ = 0;
  bool headerRead_ = false;
};

// Entry type 8. The length of its buffer after DataToBuffer is a multiple of 1024 bytes.
class NVX_EXPORT CSeparateChromaEntry : public CProfileDataEntry {
 public:
  CSeparateChromaEntry();
  ~CSeparateChromaEntry() override;

  CDataObject* GetFormatData() override;
  // Takes nothing from the source, which is another entry of this class; its own table has 8-bit channel codes as ever.
  // False for a source of another class and for null.
  bool DoImport(CProfileDataEntry* source) override;
  bool BufferToData() override;
  bool DataToBuffer() override;

  // The table, which lives as long as the entry, open to changes and for reading alone.
  virtual CLutData3D* GetLutData();
  const CLutData& Table() const { return data_; }

 private:
  CLutData3D data_;
};
