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

  void Add(CProfileDataEntry* entry);
  // First entry of that type, null if none.
  CProfileDataEntry* GetEntry(std::uint32_t usedType);
  int GetEntryCount() const;

  // Cursor: GetHeadPos is false for an empty route; GetNext says in `more` whether another entry follows.
  bool GetHeadPos();
  CProfileDataEntry* GetNext(bool& more);

  // The very pointer is on the route.
  bool IsExistEntry(CProfileDataEntry* entry) const;
  // Removes every occurrence of the first entry of that type and returns it; null if none.
  CProfileDataEntry* RemoveEntry(std::uint32_t usedType);

  std::uint32_t GetRouteType() const { return routeType_; }
  void SetRouteType(std::uint32_t routeType) { routeType_ = routeType; }

  // Name of the route's container inside a text-headed file, empty for routes other than 1 and 2. Room for 17 bytes.
  void GetQctInnerName(char* name) const;

 private:
  std::uint32_t routeType_;
  nvx::CursorList<CProfileDataEntry> entries_;
};

// Owns entries and routes. At most one entry of each type exists, and the first to arrive wins. Lookups that find
// nothing give null and never create a route. For one thread at a time: even reading walks move a cursor.
class NVX_EXPORT CProfileData {
 public:
  CProfileData();
  CProfileData(const CProfileData&) = delete;
  CProfileData& operator=(const CProfileData&) = delete;
  virtual ~CProfileData();

  // Puts an entry on a route, which comes into being with its first entry. The profile owns the entry from then on. If
  // it holds another entry of that type already, the present one goes on the route and the new one is destroyed. Null
  // is ignored.
  virtual void SetProfileDataEntry(CProfileDataEntry* entry, std::uint32_t route);

  // Destroys all entries and routes, and the media names of the binary view. The rest of the record stays.
  void DeleteContents();

  CProfileDataEntry* GetProfileDataEntryFromList(std::uint32_t usedType);
  CProfileDataEntry* GetProfileDataEntry(std::uint32_t route, std::uint32_t usedType);
  CProfileRoute* GetProfileRoute(std::uint32_t route);
  // Entries on the route; -1 if there is no such route.
  int GetEntryCount(std::uint32_t route);

  // Takes an entry off a route; an emptied route goes. Null if there is no such route or entry. The caller owns the
  // result, unless it stands on another route and so stays in the profile.
  CProfileDataEntry* RemoveProfileDataEntry(std::uint32_t usedType, std::uint32_t route);

  // Cursors over all entries in order of arrival, and over all routes by ascending number.
  bool GetEntryStartPos();
  CProfileDataEntry* GetNextEntry(bool& more);
  bool GetRouteStartPos();
  CProfileRoute* GetNextRoute(bool& more);

  bool IsV3() { return IsSpecifiedRoute(nvx::kRouteMain); }
  bool IsICCRoot() { return IsSpecifiedRoute(nvx::kRouteIccRoot); }
  bool IsGrayBalance() { return IsSpecifiedRoute(nvx::kRouteGrayBalance); }
  bool IsSpecifiedRoute(std::uint32_t route);

  // Both stay the property of this object.
  _tagDeviceProfileInfo* GetProfileInfo();
  CProfileDataInfo* GetProfileInfoObject() { return &info_; }

  // Zeroed records for BinaryView::MediaInfo, null for a count below 1. Stored nowhere: the record that they are put
  // into owns them, and an array that is not put anywhere is released with delete[].
  tagMedia* CreateMediaInfoArray(int count);

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
  std::uint32_t targetType_ = 0;
  std::uint32_t deviceType_ = 0;
  std::uint32_t processDataType_ = 0;
};
