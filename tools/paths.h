// Names of files in their three forms: the text of a command line or a document, the path of the standard library, and
// the path of the profile library. The text is UTF-8 on Windows; elsewhere it is whatever bytes the file system has.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace nvx::tool {

std::filesystem::path PathOf(std::string_view text);
std::string TextOf(const std::filesystem::path& path);
// With slashes between the folders on every system.
std::string GenericTextOf(const std::filesystem::path& path);

// What stands behind the last separator.
std::string FileNameOf(std::string_view text);

// The folder for temporary files.
std::string TemporaryFolder();

}  // namespace nvx::tool
