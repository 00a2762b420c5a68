// A whole profile as one JSON document, and back. docs/profile_document.md tells the form, and its schema stands in
// docs/profile_document.schema.json.
#pragma once

#include "payload.h"

#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_data.h>

#include <string>

namespace nvx::tool {

inline constexpr int kDocumentVersion = 1;

// The document of a loaded profile. With a folder, ICC profiles are written there as files and the document names them;
// without one they stand in it as base64. Throws std::runtime_error if a file cannot be written.
Json ProfileToDocument(CProfileAccess& access, const std::string& filesFolder);

// An entry as it stands in a document, with its ICC profile in the document itself.
Json EntryToDocument(CProfileDataEntry& entry);

// True if the payload in a document rebuilds the entry's bytes. Up to three zeros that fill up a private tag of a file
// are not the entry's; `padding` is told how many there are.
bool RebuildsEntry(const Json& payload, CProfileDataEntry& entry, std::size_t& padding);

// The key of a format in documents, such as "printer-profile".
std::string FormatKeyOf(int format);

// Builds the profile that the document names and writes it to `path`. Files that the document names are looked up from
// `folder`. Throws DocumentError for a document that is wrong, std::runtime_error for a save that fails.
void BuildProfile(const Json& document, const std::string& folder, const std::string& path);

}  // namespace nvx::tool
