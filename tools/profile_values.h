// The values of a profile by name: reading them, and changing them where the file stores them.
#pragma once

#include "command.h"
#include "loading.h"
#include "payload.h"

#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_edit.h>

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace nvx::tool {

using Tokens = std::vector<std::string>;

// A value that was changed.
struct Change {
  std::string place;  // its JSON pointer
  Json before;
  Json after;
};

// A profile whose values are asked for and changed by the JSON pointer that they have in the document of a dump, such
// as /record/ScanResolution, or by a short name:
//
//   record/DefaultMediaName          a field of the record, or of its view
//   linearization/optionInfo         what an entry has beside its payload, by the entry's name or type number
//   model/vdType                     a value of its payload
//   linearization/ink/1/samples/3    a curve by its ink, and by ExtendInfo behind "extend" where there are several
//   media/heater/0                   a setting of the medium
//   calibration/3/name               a calibration by its code: name, value, time or an entry of its payload
//
// The values are those that the file stores; a load widens curves of 8 bits, and a dump shows what was loaded.
class ProfileValues {
 public:
  // Loads the profile, from standard input for "-". Throws std::runtime_error with the reason.
  explicit ProfileValues(const std::string& file);
  explicit ProfileValues(const std::u16string& path);

  // Both throw DocumentError with the place.
  Json Get(const std::string& path);
  // The text is taken for a number, a truth value, a text or JSON as the present value is one.
  void Set(const std::string& path, const std::string& text);
  void SetJson(const std::string& path, Json value);

  // The values that Set changed, in order.
  const std::vector<Change>& Changes() const { return changes_; }

  // The loaded profile, without the changes.
  CProfileAccess& Access() { return access_; }

  // The file with the changed values in it, everything else byte for byte as it was. The description of its ICC profile
  // becomes that of a file name, unless that is empty. Throws DocumentError for a value that the file does not take.
  std::vector<std::uint8_t> Image(const std::u16string& describedAs = {});

 private:
  enum class Part { kRecord, kEntry, kRest };
  // Where a value is: in the record, in an entry or in the rest of the document, and the way to it from there.
  struct Target {
    Part part = Part::kRest;
    std::uint32_t usedType = 0;
    Tokens inside;
  };

  void Load(const std::u16string& path);
  Target Resolve(const std::string& path);
  Target ResolvePointer(Tokens tokens) const;
  Target ResolveShortName(const std::string& path, Tokens tokens);
  // The way to a value inside of an entry.
  Tokens ResolveInside(std::uint32_t usedType, Tokens tokens);
  std::string PlaceOf(const Target& target) const;
  Json& ValueAt(const Target& target);
  // The part of the document that holds the value, with the changes so far.
  Json& PartOf(const Target& target);
  Json EntryAsStored(std::uint32_t usedType);
  // The stored name that a load makes MediaName of.
  Target SourceOfMediaName(const Json& wanted);

  void StoreRecord();
  void StoreEntry(std::uint32_t usedType);
  void StorePayload(std::uint32_t usedType, const Json& payload);

  CProfileAccess access_;
  ProfileEdit edit_;
  std::vector<std::uint32_t> types_;       // of the entries, in the order of a dump
  std::map<std::uint32_t, Json> entries_;  // those that were looked at, by type
  Json record_;
  Json rest_;
  std::set<std::uint32_t> changedEntries_;
  std::set<Tokens> changedFields_;  // of the record; of a view its name and the field's
  std::vector<Change> changes_;
};

// The status of a command that works on the values of a profile: that of run(), or failure with a message that names
// the file, and the place in it where there is one.
template <class Run>
int StatusOf(const std::string& file, Run&& run) {
  try {
    return run();
  } catch (const DocumentError& error) {
    PrintErrorOf(file, error.Place() + ": " + error.what());
  } catch (const std::runtime_error& error) {
    PrintErrorOf(file, error.what());
  }
  return kFailure;
}

}  // namespace nvx::tool
