// Printer profiles made through nvx::Profile.
#pragma once

#include "support/qpf_builder.h"
#include "support/sample_profile.h"

#include <nvxprofile/profile.h>

#include <chrono>
#include <cstdint>
#include <span>
#include <vector>

namespace nvx::test {

inline std::vector<std::uint16_t> Ramp(std::uint16_t step) {
  std::vector<std::uint16_t> samples(256);
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<std::uint16_t>(i * step);
  return samples;
}

inline Curve CurveOfInk(std::uint8_t ink, std::uint32_t extendInfo, const std::vector<std::uint16_t>& samples) {
  Curve curve;
  curve.ink = ink;
  curve.extendInfo = extendInfo;
  curve.slot = ink + 1u;
  curve.displayRgb = 0x112233;
  curve.min = 17;
  curve.max = 65535;
  curve.name = "Ink";
  curve.samples = Samples16(samples);
  return curve;
}

// A printer profile written down by hand, of these entries and a placeholder of the ICC profile.
inline Bytes PrinterFile(std::vector<StoredEntry> entries) {
  entries.push_back(Placeholder());
  return IccFile({{"NVX1", EntryTag(entries)}, {"NVX2", MediaTag({})}});
}

inline std::chrono::sys_seconds At(int seconds) { return std::chrono::sys_seconds(std::chrono::seconds(seconds)); }

inline Bytes CopyOf(std::span<const std::uint8_t> bytes) { return {bytes.begin(), bytes.end()}; }

inline Bytes BytesOf(const Profile& profile, EntryKind kind) { return CopyOf(profile.FindEntry(kind)->bytes); }

// The profile out of its own bytes.
inline Profile Again(Profile& profile) { return Profile::FromBytes(profile.ToBytes()); }

inline Profile NewProfile() { return Profile::Create(SampleIccProfile(100)); }

inline std::vector<std::uint16_t> Words(const std::optional<Samples>& samples) {
  if (!samples || !std::holds_alternative<Samples16>(*samples)) return {};
  const Samples16 words = std::get<Samples16>(*samples);
  return {words.begin(), words.end()};
}

// The message of what `run` throws; empty if it throws nothing.
template <class Run>
std::string WhatFails(Run run) {
  try {
    run();
  } catch (const ProfileError& error) {
    return error.what();
  }
  return {};
}

}  // namespace nvx::test
