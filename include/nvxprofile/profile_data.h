// One profile in memory: typed entries, arranged on numbered routes.
#pragma once

#include <nvxprofile/cursor_list.h>
#include <nvxprofile/export.h>
#include <nvxprofile/profile_entry.h>
#include <nvxprofile/profile_info.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace nvx {

// Route numbers.
inline constexpr std::uint32_t kRouteIccRoot = 0x1;           // ICC colour path of the older generations
inline constexpr std::uint32_t kRouteGrayBalance = 0x2;       // gray-balance path of the older generations
inline constexpr std::uint32_t kRouteMain = 0x4;              // main route of the current generation
inline constexpr std::uint32_t kRouteMaskDownload = 0x8;      // print masks
inline constexpr std::uint32_t kRouteReplaceProfile = 0x100;  // replacement ICC profile
inline constexpr std::uint32_t kRouteCalibration = 0x200;     // calibration history
inline constexpr std::uint32_t kRouteLargeParameter = 0x400;  // large parameters
inline constexpr std::uint32_t kRouteSpecialColor = 0x800;    // special colour information

}  // namespace nvx

// A numbered group of entries, in order of addition. A route never owns its entries, and one entry may stand on several
// routes, or several times on one.
class NVX_EXPORT CProfileRoute {
 public:
  explicit CProfileRoute(std::uint32_t routeType = 0) : routeType_(routeType) {}
  CProfileRoute(const CProfileRoute&) = delete;
  CProfileRoute& operator=(const CProfileRoute&) = delete;

  // Refers to the entry, without any test.
  void Add(CProfileDataEntry* entry);
  // First entry of that type, null if none. The cursor stays.
  CProfileDataEntry* GetEntry(std::uint32_t usedType) const;
  int GetEntryCount() const;

  // Cursor: GetHeadPos is false for an empty route; GetNext says in `more` whether another entry follows.
  bool GetHeadPos() { return entries_.Head(); }
  CProfileDataEntry* GetNext(bool& more) { return entries_.Next(more); }
  // The same entries for walks that leave the cursor alone.
  const nvx::ReferenceList<CProfileDataEntry>& Entries() const { return entries_; }

  // The very pointer is on the route.
  bool IsExistEntry(CProfileDataEntry* entry) const;
  // Removes every occurrence of the first entry of that type and returns it; null if none.
  CProfileDataEntry* RemoveEntry(std::uint32_t usedType);
  // Refers to another entry wherever it refers to this one.
  void Exchange(const CProfileDataEntry* entry, CProfileDataEntry* other) { entries_.Exchange(entry, other); }
  // Refers to these entries in the place of its own.
  void SetEntries(std::vector<CProfileDataEntry*> entries) { entries_.Become(std::move(entries)); }

  std::uint32_t GetRouteType() const { return routeType_; }
  void SetRouteType(std::uint32_t routeType) { routeType_ = routeType; }

  // Name of the route's container inside a text-headed file, empty for routes other than 1 and 2. Room for 17 bytes.
  void GetQctInnerName(char* name) const;

 private:
  std::uint32_t routeType_;
  nvx::ReferenceList<CProfileDataEntry> entries_;
};

// Owns entries and routes. At most one entry of each type exists, and the first to arrive wins. Lookups that find
// nothing give null and never create a route. Looking up moves no cursor: what says const here may be asked from
// many threads at once, as long as none changes the profile.
class NVX_EXPORT CProfileData {
 public:
  CProfileData();
  CProfileData(const CProfileData&) = delete;
  CProfileData& operator=(const CProfileData&) = delete;
  virtual ~CProfileData();

  // Puts an entry on a route, which comes into being with its first entry. The profile takes the entry over in any
  // case. True if it stands in the profile from then on; false if it is gone: the profile holds another entry of that
  // type already, which then goes on the route in its place. Null is false and changes nothing.
  virtual bool SetProfileDataEntry(CProfileDataEntry* entry, std::uint32_t route);

  // Destroys all entries and routes, and the media names of the binary view. The rest of the record stays.
  void DeleteContents();

  // Lookups: the entry of that type on any route, the first one on that route, and the route itself.
  CProfileDataEntry* GetProfileDataEntryFromList(std::uint32_t usedType) const;
  CProfileDataEntry* GetProfileDataEntry(std::uint32_t route, std::uint32_t usedType) const;
  CProfileRoute* GetProfileRoute(std::uint32_t route) const;
  // Entries on the route; -1 if there is no such route.
  int GetEntryCount(std::uint32_t route) const;

  // Takes an entry off a route; an emptied route goes. Null if there is no such route or entry. The caller owns the
  // result, unless it stands on another route and so stays in the profile.
  CProfileDataEntry* RemoveProfileDataEntry(std::uint32_t usedType, std::uint32_t route);

  // Puts an entry in the place of the one of its type, wherever that stands, and destroys the former one. The entry
  // comes back if there is none of its type; null if the profile has taken it over.
  std::unique_ptr<CProfileDataEntry> ReplaceProfileDataEntry(std::unique_ptr<CProfileDataEntry> entry);

  // Cursors over all entries in order of arrival, and over all routes by ascending number. Nothing else moves them.
  bool GetEntryStartPos() { return entries_.Head(); }
  CProfileDataEntry* GetNextEntry(bool& more) { return entries_.Next(more); }
  bool GetRouteStartPos();
  CProfileRoute* GetNextRoute(bool& more);
  // The same for walks that leave the cursors alone.
  const nvx::CursorList<CProfileDataEntry>& Entries() const { return entries_; }
  const std::map<std::uint32_t, std::unique_ptr<CProfileRoute>>& Routes() const { return routes_; }

  // Whether there is a route: the main one, the ICC path, the gray-balance path, or any by its number.
  bool IsV3() const { return IsSpecifiedRoute(nvx::kRouteMain); }
  bool IsICCRoot() const { return IsSpecifiedRoute(nvx::kRouteIccRoot); }
  bool IsGrayBalance() const { return IsSpecifiedRoute(nvx::kRouteGrayBalance); }
  bool IsSpecifiedRoute(std::uint32_t route) const;

  // Both stay the property of this object.
  _tagDeviceProfileInfo* GetProfileInfo() { return &info_.Info; }
  const _tagDeviceProfileInfo* GetProfileInfo() const { return &info_.Info; }
  CProfileDataInfo* GetProfileInfoObject() { return &info_; }

  // Zeroed records for BinaryView::MediaInfo, null for a count below 1. They are put nowhere, and belong to this object
  // until DeleteContents or its end: callers release nothing.
  tagMedia* CreateMediaInfoArray(int count);

  // Makes the media names of the binary view, which must be the one that holds, copies of these.
  void SetMediaInfo(std::span<const tagMedia> names);

  // Takes over the record of another profile, with media names of its own.
  void CopyProfileInfo(const CProfileData& from);

  std::uint32_t GetTargetType() const { return targetType_; }
  void SetTargetType(std::uint32_t type) { targetType_ = type; }
  std::uint32_t GetDeviceType() const { return deviceType_; }
  void SetDeviceType(std::uint32_t type) { deviceType_ = type; }
  std::uint32_t GetProcessDataType() const { return processDataType_; }
  void SetProcessDataType(std::uint32_t type) { processDataType_ = type; }

 private:
  nvx::CursorList<CProfileDataEntry> entries_;
  std::map<std::uint32_t, std::unique_ptr<CProfileRoute>> routes_;
  std::map<std::uint32_t, std::unique_ptr<CProfileRoute>>::iterator routeCursor_ = routes_.end();
  CProfileDataInfo info_;
  std::vector<std::unique_ptr<tagMedia[]>> mediaNames_;  // what the record may point to
  std::uint32_t targetType_ = 0;
  std::uint32_t deviceType_ = 0;
  std::uint32_t processDataType_ = 0;
};
