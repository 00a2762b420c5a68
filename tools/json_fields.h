// Fields as members of a document that is written as they are told.
#pragma once

#include "json_text.h"
#include "payload.h"

#include <nvxprofile/profile_entry.h>
#include <nvxprofile/profile_info.h>

namespace nvx::tool {

// Members of the object that the writer has open: the payload of an entry under that name, if it has one, and the
// fields of a record. What PayloadToJson and RecordToJson give, written as it is told.
void WritePayload(JsonWriter& out, const char* name, CProfileDataEntry& entry, Detail detail);
void WriteRecord(JsonWriter& out, const _tagDeviceProfileInfo& info);

}  // namespace nvx::tool
