// Forms and files as byte sequences, by way of streams in memory.
#pragma once

#include "support/files.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/file.h>

#include <cstdlib>
#include <optional>

namespace nvx::test {

template <class File, class Data>
bool LoadBytes(Bytes bytes, Data& data, Diagnosis* diagnosis = nullptr, bool headerOnly = false) {
  CNvxMemFile stream(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  stream.SetDiagnosis(diagnosis);
  if constexpr (requires { File().LoadFile(stream, &data); }) return File().LoadFile(stream, &data);
  if constexpr (requires { File().LoadData(stream, &data, headerOnly); }) {
    return File().LoadData(stream, &data, headerOnly);
  }
}

// What is saved; nothing if that fails. A profile is told a route or flags besides.
template <class File, class Data>
std::optional<Bytes> SaveBytes(Data& data, std::uint32_t selection = 0) {
  CNvxMemFile stream;
  const auto save = [&] {
    if constexpr (requires { File().SaveFile(stream, &data); }) return File().SaveFile(stream, &data);
    if constexpr (requires { File().SaveData(stream, &data, selection); }) {
      return File().SaveData(stream, &data, selection);
    }
  };
  const bool saved = save();
  const Bytes bytes(stream.Buffer, stream.Buffer + stream.Position);
  std::free(stream.Buffer);
  return saved ? std::optional(bytes) : std::nullopt;
}

}  // namespace nvx::test
