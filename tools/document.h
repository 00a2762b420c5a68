// A whole profile as one JSON document, and back. docs/profile_document.md tells the form, and its schema stands in
// docs/profile_document.schema.json.
#pragma once

#include "payload.h"

#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_data.h>

#include <cstdint>
#include <string>
#include <vector>

namespace nvx::tool {

inline constexpr int kDocumentVersion = 1;

// Where a dump writes ICC profiles as files.
struct DumpedFiles {
  std::string folder;          // empty for nowhere: they stand in the document as base64
  std::string documentFolder;  // where the document goes, since it names files as seen from there; empty for here
};

// The document of a loaded profile. Throws std::runtime_error if a file cannot be written.
Json ProfileToDocument(CProfileAccess& access, const DumpedFiles& files);

// What there is about a loaded profile that no document tells, so that none builds it again; empty for nothing.
std::string WhyNotRebuilt(CProfileAccess& access);

// The routes of a profile as they stand in a document.
Json RoutesToDocument(CProfileData& data);

// An entry as it stands in a document, with its ICC profile in the document itself.
Json EntryToDocument(CProfileDataEntry& entry);

// True if the payload in a document rebuilds the entry's bytes. Up to three zeros that fill up a private tag of a file
// are not the entry's; `padding` is told how many there are.
bool RebuildsEntry(const Json& payload, CProfileDataEntry& entry, std::size_t& padding);

// The key of a format in documents, such as "printer-profile".
std::string FormatKeyOf(int format);

// The document in a text. Throws DocumentError with line and column for what is no JSON, and for a key that stands
// twice in one object.
Json ParseDocument(const std::string& text);

// Builds the profile that the document names, as a file of that name. Files that the document names are looked up from
// `folder`. Throws DocumentError for a document that is wrong or says what the profile would not keep,
// std::runtime_error where there is no room for the work.
std::vector<std::uint8_t> BuildProfile(const Json& document, const std::string& folder, const std::string& name);

}  // namespace nvx::tool
