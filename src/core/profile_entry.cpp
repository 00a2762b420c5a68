#include "core/payload.h"
#include "core/text.h"

#include <nvxprofile/profile_entry.h>

#include <cstring>
#include <utility>

CProfileDataEntry::CProfileDataEntry(UsedType usedType, FormatType formatType, bool display)
    : formatType_(formatType), usedType_(usedType), display_(display) {}

CProfileDataEntry::~CProfileDataEntry() = default;

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
  if (!buffer_.IsEmpty()) std::memcpy(target.GetBuffer(buffer_.Size()), buffer_.Data(), buffer_.Size());
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
      if (!buffer_.IsEmpty()) DataToBuffer();
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
  const bool isUnread = state_ == nvx::PayloadState::kUnread && !buffer_.IsEmpty();
  state_ = isUnread ? nvx::PayloadState::kPart : nvx::PayloadState::kEdited;
}

nvx::SharedBytes nvx::PayloadKeeper::FormOf(CProfileDataEntry& entry) {
  // Puts the buffer back, also where the heap is exhausted on the way.
  struct PutAside {
    explicit PutAside(CProfileDataEntry& owner) : entry(owner), buffer(std::move(owner.buffer_)), state(owner.state_) {}
    ~PutAside() {
      entry.buffer_ = std::move(buffer);
      entry.state_ = state;
    }
    CProfileDataEntry& entry;
    SharedBytes buffer;
    PayloadState state;
  };
  const PutAside aside(entry);
  if (!entry.DataToBuffer()) return {};
  return std::move(entry.buffer_);
}

void CProfileDataEntry::AttachBuffer(std::uint8_t* buffer, std::uint32_t size) {
  if (buffer != nullptr && buffer == buffer_.Data()) {
    buffer_.Shorten(size);
    state_ = nvx::PayloadState::kUnread;
  } else {
    nvx::PayloadKeeper::Give(*this, nvx::SharedBytes::Adopt(buffer, size));
  }
}

std::uint8_t* CProfileDataEntry::GetBuffer(std::uint32_t size) {
  DeleteBuffer();
  if (size != 0) nvx::PayloadKeeper::Give(*this, nvx::SharedBytes::Allocate(size));
  return buffer_.Writable();
}

void CProfileDataEntry::DeleteBuffer() {
  buffer_ = nvx::SharedBytes();
  // What somebody asked for is all that there is now.
  state_ = isOpen_ ? nvx::PayloadState::kEdited : nvx::PayloadState::kUnread;
}

void CProfileDataEntry::SetOptionInfo(std::uint32_t optionInfo) { optionInfo_ = optionInfo; }
std::uint32_t CProfileDataEntry::GetOptionInfo() { return optionInfo_; }
std::uint32_t CProfileDataEntry::GetSize() { return buffer_.Size(); }
void CProfileDataEntry::SetComplete(bool complete) { complete_ = complete; }
bool CProfileDataEntry::IsComplete() { return complete_; }
bool CProfileDataEntry::IsDisplayEnable() { return display_; }
std::uint8_t* CProfileDataEntry::GetRefBuffer() { return buffer_.Writable(); }
std::uint32_t CProfileDataEntry::GetFormatType() const { return formatType_; }
void CProfileDataEntry::SetFormatType(std::uint32_t formatType) { formatType_ = formatType; }
std::uint32_t CProfileDataEntry::GetUsedType() const { return usedType_; }
void CProfileDataEntry::SetUsedType(std::uint32_t usedType) { usedType_ = usedType; }
CProfileCurveEntry* CProfileDataEntry::AsCurveEntry() { return nullptr; }
CContainerEntry* CProfileDataEntry::AsContainer() { return nullptr; }

bool CProfileDataEntry::SetLabelString(const char* label) {
  nvx::CopyText(label_, nvx::TextOf(label));
  return true;
}
