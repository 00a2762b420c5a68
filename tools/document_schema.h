// The JSON Schema of documents, for whoever develops the tool: it is written into docs, not into the tool.
#pragma once

#include "payload.h"

#include <string>

namespace nvx::tool {

// The schema with what the library tells of the fields of payloads and of the record, and of the formats; the rest of
// it stays.
Json UpdatedSchema(Json schema);

// What fits into a line of 120 characters stands on one.
std::string SchemaText(const Json& schema);

}  // namespace nvx::tool
