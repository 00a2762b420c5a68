// What stands behind nvx::Profile, and the steps that its operations share.
#pragma once

#include "core/payload.h"

#include <nvxprofile/curve.h>
#include <nvxprofile/profile.h>
#include <nvxprofile/profile_access.h>

#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace nvx {

// An access object that takes profiles from elsewhere.
class ModelAccess : public CProfileAccess {
 public:
  using CProfileAccess::Load;
  using CProfileAccess::Serve;
  using CProfileAccess::SetupProfileInfoStructure;
};

struct ProfileState {
  ModelAccess access;
  bool isWhole = true;

  CProfileData& Model() { return *access.GetProfileData(); }
  _tagDeviceProfileInfo& Record() { return *access.GetProfileInfo(); }
  bool IsPrinterProfile() const { return access.GetProfileLoadFormat() == kPrinterProfile; }

  // Null if there is none.
  CProfileDataEntry* Find(EntryKind kind) {
    return Model().GetProfileDataEntryFromList(static_cast<std::uint32_t>(kind));
  }

  // The entry with its payload, in which changes through the published classes stand; null if it is missing or of
  // another class.
  template <class Class>
  const Class* Payload(EntryKind kind) {
    CProfileDataEntry* const entry = Find(kind);
    const bool isUnread = entry != nullptr && entry->GetPayloadState() == PayloadState::kUnread;
    if (isUnread && !entry->Bytes().empty()) entry->BufferToData();
    return dynamic_cast<const Class*>(entry);
  }

  // For a query, which answers from the entry's bytes and would drop what was changed through the published classes:
  // the bytes say it from here on. Throws if their form cannot.
  CProfileAccess& Asked(EntryKind kind);

  // A copy of the entry that may be changed, or a new entry if there is none. Throws if its bytes are not understood.
  std::unique_ptr<CProfileDataEntry> EditableCopy(EntryKind kind);
  template <class Class>
  std::unique_ptr<Class> EditableCopy(EntryKind kind) {
    return std::unique_ptr<Class>(dynamic_cast<Class*>(EditableCopy(kind).release()));
  }

  // Writes the payload of a changed or new entry out and has the profile take the result over.
  void Store(CProfileDataEntry& changed);
  // Takes the entry over in the place of the one of its kind, or where files of the format keep it. It must say what
  // its bytes say.
  void Take(std::unique_ptr<CProfileDataEntry> entry);

  // Makes the record say of the entries what a load would.
  void RenewRecord();
  // The same of a table of special colours that has just come.
  void TakeSeparateWay();
  // Throws, before an entry is changed, if the one that RenewRecord asks then has changes that cannot be written.
  void CheckRecordSource(EntryKind changing);
};

// Makes what a load works out of a printer profile's record: codes as texts, and the time of creation in parts.
void WorkOut(_tagDeviceProfileInfo& record);

[[noreturn]] void Fail(const std::string& message);
// As "entry ink-limit".
std::string TitleOf(std::uint32_t usedType);
inline std::string TitleOf(EntryKind kind) { return TitleOf(static_cast<std::uint32_t>(kind)); }

// An entry of a kind with these bytes, parsed whole. Throws for bytes that are no whole form of it.
std::unique_ptr<CProfileDataEntry> EntryOf(EntryKind kind, SharedBytes bytes);

// Text of a field of at most `most` units that must hold it whole: wide, and in the ANSI code page. `what` is named
// when it does not fit.
std::u16string WideField(std::string_view text, std::size_t most, const char* what);
std::string AnsiField(std::string_view text, std::size_t most, const char* what);
std::string Utf8OfAnsi(std::string_view text);

// Samples that an access query has given; nothing for null and for an unknown type.
std::optional<Samples> SamplesAt(const void* samples, int size, int dataType);
Curve CurveOf(CCurveDataEntry& entry);
std::vector<Curve> CurvesOf(const CCurveData& set);
// Makes these the curves of a set. Throws for two of one ink and ExtendInfo.
void FillCurves(CCurveData& set, std::span<const Curve> curves);

}  // namespace nvx
