// The facts of an ICC profile's header and tag table, for people and for machines.
#pragma once

#include "payload.h"

#include <nvxprofile/icc_header.h>

#include <string>
#include <utility>
#include <vector>

namespace nvx::tool {

// The four characters of a signature, or its number in hexadecimal where they do not print.
std::string SignatureText(std::uint32_t signature);

// Name and value of each fact of the header.
std::vector<std::pair<std::string, std::string>> IccFacts(const IccHeader& header);

// Header and tag table; null for bytes that are no ICC profile.
Json IccToJson(const std::uint8_t* bytes, std::size_t size);

}  // namespace nvx::tool
