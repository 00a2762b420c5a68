#include "adjust/adjust_keys.h"
#include "adjust/initialize.h"

CDeviceAdjustFile::CDeviceAdjustFile() = default;
CDeviceAdjustFile::~CDeviceAdjustFile() = default;

bool CDeviceAdjustFile::Initialize(const char16_t* path, CError& error) {
  return nvx::adjust::Initialize(analyzer_, path, "DeviceAdjustFile",
                                 u"Device adjust file: File not found.(file name:%s)", error);
}

bool CDeviceAdjustFile::GetDeviceAdjustParam(DEVICE_ADJUST_PARAM* param, CError& error) {
  if (param == nullptr || !analyzer_) return false;
  for (const nvx::adjust::DeviceField& field : nvx::adjust::kDeviceFields) {
    int& value = param->*field.field;
    if (analyzer_->GetIntValue(field.key, &value, error)) continue;
    if (field.required) return false;
    value = 0;
  }
  return true;
}
