// Profiles with random contents, made through the published interface.
#pragma once

#include <nvxprofile/profile_data.h>

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace nvx::test {

// Fills a model with entries of random types and contents: on route 4 and the routes of the optional tags for the
// current generation, on the given routes otherwise. The ICC entry is a small real profile.
void FillRandomProfile(CProfileData& data, std::mt19937& random);
void FillRandomRoute(CProfileData& data, std::uint32_t route, std::mt19937& random);

// A new entry of a type with random contents and flags; null for a type without a class. Its buffer says what its
// payload says.
std::unique_ptr<CProfileDataEntry> MakeRandomEntry(std::uint32_t usedType, std::mt19937& random);

// One entry as the tests compare it: types, flags and the bytes of its buffer.
struct EntryImage {
  std::uint32_t usedType = 0;
  std::uint32_t formatType = 0;
  bool complete = false;
  std::uint32_t optionInfo = 0;
  std::string label;
  std::vector<std::uint8_t> bytes;

  bool operator==(const EntryImage&) const = default;
};

EntryImage ImageOf(CProfileDataEntry& entry);
std::vector<EntryImage> ImagesOf(CProfileRoute& route);

}  // namespace nvx::test
