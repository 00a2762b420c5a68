#include "core/payload.h"
#include "core/text.h"

#include <nvxprofile/profile_entry.h>

#include <cstdlib>
#include <cstring>

CProfileDataEntry::CProfileDataEntry(UsedType usedType, FormatType formatType, bool display)
    : formatType_(formatType), usedType_(usedType), display_(display) {}

CProfileDataEntry::~CProfileDataEntry() { std::free(buffer_); }

CDataObject* CProfileDataEntry::GetFormatData() { return nullptr; }
bool CProfileDataEntry::DoImport(CProfileDataEntry*) { return false; }
void CProfileDataEntry::Delete() { delete this; }
bool CProfileDataEntry::BufferToData() { return false; }
bool CProfileDataEntry::DataToBuffer() { return false; }

void CProfileDataEntry::Copy(CProfileDataEntry& target) {
  if (&target == this) return;
  target.SetComplete(complete_);
  target.SetDisplay(display_);
  target.SetFormatType(formatType_);
  target.SetUsedType(usedType_);
  target.SetOptionInfo(optionInfo_);
  target.SetLabelString(label_);
  DataToBuffer();
  if (size_ == 0) return;
  std::memcpy(target.GetBuffer(size_), buffer_, size_);
}

void CProfileDataEntry::AttachBuffer(std::uint8_t* buffer, std::uint32_t size) {
  if (buffer != buffer_) DeleteBuffer();
  buffer_ = buffer;
  size_ = size;
}

std::uint8_t* CProfileDataEntry::GetBuffer(std::uint32_t size) {
  DeleteBuffer();
  if (size != 0) {
    buffer_ = nvx::AllocateBlock(size).release();
    size_ = size;
  }
  return buffer_;
}

void CProfileDataEntry::DeleteBuffer() {
  std::free(buffer_);
  buffer_ = nullptr;
  size_ = 0;
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
