#include <nvxprofile/data_object.h>

std::uint32_t CDataObject::GetUsedType() { return usedType_; }
void CDataObject::SetUsedType(std::uint32_t usedType) { usedType_ = usedType; }
bool CDataObject::IsAutoDelete() { return autoDelete_; }
void CDataObject::SetAutoDelete(bool autoDelete) { autoDelete_ = autoDelete; }
void CDataObject::DeleteContents() {}

CDataEntryObject::~CDataEntryObject() = default;
void CDataEntryObject::DeleteContents() {}
