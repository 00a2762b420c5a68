// The model record and the info record: texts stay in their fields and are terminated.
#include "entry_round_trip.h"

#include <nvxprofile/model_info.h>

#include <algorithm>

using nvx::fuzz::Check;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  CModelEntry model;
  if (nvx::fuzz::RoundTrip(model, bytes, size)) {
    char name[CModelData::kNameLength];
    model.GetModelData()->GetModelName(name);
    Check(size >= 4 && std::strlen(name) <= 63);
    Check(std::memcmp(name, bytes + 16, size > 16 ? std::min(std::strlen(name), size - 16) : 0) == 0);
    model.GetModelData()->GetParametersetName(name);
    Check(std::strlen(name) <= 63);
  }
  CInfoEntry info;
  if (nvx::fuzz::RoundTrip(info, bytes, size)) {
    auto& data = dynamic_cast<CInfoData&>(*info.GetFormatData());
    Check(std::strlen(data.GetVersionStr()) <= 63 && std::strlen(data.GetUserNameW()) <= 63);
    if (size >= 400) Check(std::memcmp(data.GetReserveBuffer(nullptr), bytes + 208, 192) == 0);
  }
  return 0;
}
