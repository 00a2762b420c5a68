#include "core/payload.h"
#include "core/text.h"

#include <nvxprofile/profile_entry.h>

#include <cstdlib>
#include <cstring>
#include <utility>

CProfileDataEntry::CProfileDataEntry(UsedType usedType, FormatType formatType, bool display)
    : formatType_(formatType), usedType_(usedType), display_(display) {}

CProfileDataEntry::~CProfileDataEntry() { std::free(buffer_); }

CDataObject* CProfileDataEntry::GetFormatData() { return nullptr; }
bool CProfileDataEntry::DoImport(CProfileDataEntry*) { return false; }
void CProfileDataEntry::Delete() { delete this; }
bool CProfileDataEntry::BufferToData() { return false; }
bool CProfileDataEntry::DataToBuffer() { return false; }

bool CProfileDataEntry::Copy(CProfileDataEntry& target) {
  if (&target == this) return true;
  if (!RenewBuffer()) return false;
  target.SetComplete(complete_);
  target.SetDisplay(display_);
  target.SetFormatType(formatType_);
  target.SetUsedType(usedType_);
  target.SetOptionInfo(optionInfo_);
  target.SetLabelString(label_);
  if (size_ != 0) std::memcpy(target.GetBuffer(size_), buffer_, size_);
  return true;
}

bool CProfileDataEntry::RenewBuffer() {
  switch (state_) {
    case nvx::PayloadState::kEdited:
      return DataToBuffer();
    case nvx::PayloadState::kPart:
      return !isOpen_;
    case nvx::PayloadState::kWhole:
      // What came without bytes stays without.
      if (size_ != 0) DataToBuffer();
      return true;
    case nvx::PayloadState::kUnread:
      // Makes the form of a new payload; unread bytes stay. A class without a form has nothing to lose.
      DataToBuffer();
      return true;
  }
  return false;
}

void CProfileDataEntry::OpenPayload() {
  isOpen_ = true;
  if (state_ == nvx::PayloadState::kPart) return;
  const bool isUnread = state_ == nvx::PayloadState::kUnread && size_ != 0;
  state_ = isUnread ? nvx::PayloadState::kPart : nvx::PayloadState::kEdited;
}

nvx::Block nvx::PayloadKeeper::FormOf(CProfileDataEntry& entry, std::uint32_t& size) {
  // Puts the buffer back, also where the heap is exhausted on the way.
  struct PutAside {
    explicit PutAside(CProfileDataEntry& owner)
        : entry(owner),
          buffer(std::exchange(owner.buffer_, nullptr)),
          size(std::exchange(owner.size_, 0)),
          state(owner.state_) {}
    ~PutAside() {
      std::free(entry.buffer_);
      entry.buffer_ = buffer.release();
      entry.size_ = size;
      entry.state_ = state;
    }
    CProfileDataEntry& entry;
    Block buffer;
    std::uint32_t size;
    PayloadState state;
  };
  const PutAside aside(entry);
  size = 0;
  if (!entry.DataToBuffer()) return nullptr;
  size = std::exchange(entry.size_, 0);
  return Block(std::exchange(entry.buffer_, nullptr));
}

void CProfileDataEntry::AttachBuffer(std::uint8_t* buffer, std::uint32_t size) {
  if (buffer != buffer_) DeleteBuffer();
  buffer_ = buffer;
  size_ = size;
  state_ = nvx::PayloadState::kUnread;
}

std::uint8_t* CProfileDataEntry::GetBuffer(std::uint32_t size) {
  DeleteBuffer();
  if (size != 0) {
    buffer_ = nvx::AllocateBlock(size).release();
    size_ = size;
    state_ = nvx::PayloadState::kUnread;
  }
  return buffer_;
}

void CProfileDataEntry::DeleteBuffer() {
  std::free(buffer_);
  buffer_ = nullptr;
  size_ = 0;
  // What somebody asked for is all that there is now.
  state_ = isOpen_ ? nvx::PayloadState::kEdited : nvx::PayloadState::kUnread;
}

void CProfileDataEntry::SetOptionInfo(std::uint32_t optionInfo) { optionInfo_ = optionInfo; }
std::uint32_t CProfileDataEntry::GetOptionInfo() { return optionInfo_; }
std::uint32_t CProfileDataEntry::GetSize() { return size_; }
void CProfileDataEntry::SetComplete(bool complete) { complete_ = complete; }
bool CProfileDataEntry::IsComplete() { return complete_; }
bool CProfileDataEntry::IsDisplayEnable() { return display_; }
std::uint8_t* CProfileDataEntry::GetRefBuffer() { return buffer_; }
std::uint32_t CProfileDataEntry::GetFormatType() const { return formatType_; }
void CProfileDataEntry::SetFormatType(std::uint32_t formatType) { formatType_ = formatType; }
std::uint32_t CProfileDataEntry::GetUsedType() const { return usedType_; }
void CProfileDataEntry::SetUsedType(std::uint32_t usedType) { usedType_ = usedType; }

bool CProfileDataEntry::SetLabelString(const char* label) {
  nvx::CopyText(label_, nvx::TextOf(label));
  return true;
}
