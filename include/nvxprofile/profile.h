// The library for C++20: one profile as a value. A thin layer over the published classes, without void pointers, sizes
// by reference and ownership in prose.
//
//   const nvx::Profile profile = nvx::Profile::Open("glossy.icc");
//   if (const auto curve = profile.Linearization(1)) Use(std::get<nvx::Samples16>(*curve));
//
// Text is UTF-8, times are those of the system clock. What is missing is an empty std::optional; what goes wrong is a
// ProfileError, and memory that runs out is std::bad_alloc as ever.
//
// Reading is const, and any number of threads may read one profile at once as long as none changes it. What reading
// hands out as spans lies inside the profile: valid until the profile is changed or ends, also if it is moved.
//
// Writing keeps an entry's bytes and its parsed form in step, puts a new entry where files of the format keep it, and
// either happens as a whole or throws with the profile as it was. An entry whose bytes could not be parsed whole is
// not changed in part, since what was not understood would be lost: replace it (SetEntryBytes) or remove it first.
#pragma once

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/entry_types.h>
#include <nvxprofile/export.h>
#include <nvxprofile/version.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

class CProfileAccess;

namespace nvx {

// Why a profile could not be opened, changed or saved. what() is the message, with place and rule where they are known.
class NVX_EXPORT ProfileError : public std::runtime_error {
 public:
  explicit ProfileError(const std::string& message = {}, std::vector<Finding> findings = {});
  ProfileError(const ProfileError&) = default;
  ProfileError& operator=(const ProfileError&) = default;
  ~ProfileError() override;

  // What the load found wrong, as `nvxprofile validate` tells it, the decisive fault first; empty for other failures.
  const std::vector<Finding>& Findings() const { return *findings_; }
  // Of the first finding; empty without one.
  std::string_view Place() const { return findings_->empty() ? std::string_view() : findings_->front().place; }
  std::string_view Rule() const { return findings_->empty() ? std::string_view() : findings_->front().rule; }

 private:
  std::shared_ptr<const std::vector<Finding>> findings_;  // so that copies do not throw
};

// The entries that a profile holds, one of each.
enum class EntryKind : std::uint32_t {
  kModel = CProfileDataEntry::kModel,
  kInkLimit = CProfileDataEntry::kInkLimit,
  kVariableInkLimit = CProfileDataEntry::kVariableInkLimit,
  kVariable = CProfileDataEntry::kVariable,
  kLightInk = CProfileDataEntry::kSeparateLight,
  kLinearization = CProfileDataEntry::kLinearization,
  kGrayBalance = CProfileDataEntry::kGrayBalance,
  kSeparationTable = CProfileDataEntry::kSeparateChroma,
  kUcr = CProfileDataEntry::kUcr,
  kIcc = CProfileDataEntry::kIcm,
  kInfo = CProfileDataEntry::kInfo,
  kMedia = CProfileDataEntry::kMediaProperty,
  kMultiInkLimit = CProfileDataEntry::kMultiInkLimit,
  kReplaceIcc = CProfileDataEntry::kReplaceProfile,
  kCalibrations = CProfileDataEntry::kCalibrationHistory,
  kCalibration = CProfileDataEntry::kCalibrationContainer,  // this and the next six stand inside of a history
  kCalibrationTarget = CProfileDataEntry::kCalibrationTarget,
  kCalibrationInfo = CProfileDataEntry::kCalibrationInfo,
  kCalibrationInkLimit = CProfileDataEntry::kCalibrationInklimit,
  kCalibrationLinearization = CProfileDataEntry::kCalibrationLinearization,
  kCalibrationGrayBalance = CProfileDataEntry::kCalibrationGrayBalance,
  kCalibrationTarget2 = CProfileDataEntry::kCalibrationTarget2,
  kMaskBlocks = CProfileDataEntry::kMaskDownload,
  kLamp = CProfileDataEntry::kLargeParameter,
  kMasks = CProfileDataEntry::kMaskDownloadIncludePattern,
  kSpecialColors = CProfileDataEntry::kSpecialColorInfo,
};

// The routes on which entries stand.
enum class Route : std::uint32_t {
  kIccRoot = 0x1,
  kGrayBalance = 0x2,
  kMain = 0x4,
  kMasks = 0x8,
  kReplaceIcc = 0x100,
  kCalibrations = 0x200,
  kLamp = 0x400,
  kSpecialColors = 0x800,
};

// The entries that are sets of curves.
enum class CurveKind : std::uint32_t {
  kInkLimit = CProfileDataEntry::kInkLimit,
  kVariableInkLimit = CProfileDataEntry::kVariableInkLimit,
  kVariable = CProfileDataEntry::kVariable,
  kLightInk = CProfileDataEntry::kSeparateLight,
  kLinearization = CProfileDataEntry::kLinearization,
  kGrayBalance = CProfileDataEntry::kGrayBalance,
  kUcr = CProfileDataEntry::kUcr,  // of ink 0: ExtendInfo 2 under colour removal, 1 black generation
  kMultiInkLimit = CProfileDataEntry::kMultiInkLimit,
};

// The curve sets of a calibration.
enum class CalibrationCurves : std::uint32_t {
  kInkLimit = CProfileDataEntry::kCalibrationInklimit,
  kLinearization = CProfileDataEntry::kCalibrationLinearization,
  kGrayBalance = CProfileDataEntry::kCalibrationGrayBalance
};

// The device settings of a medium, with the number of values that each has.
enum class MediaSetting : std::uint32_t {
  kCorrect = 1,         // 1
  kHeater = 2,          // 1 to 16
  kWave = 3,            // 1
  kFeedSpeed = 4,       // 1
  kWaveForm = 5,        // 1
  kDotSize = 6,         // 1 to 16
  kPassDensity = 7,     // 16
  kPassMask = 8,        // 8
  kUvMode = 9,          // 1 to 16
  kTopBlower = 10,      // 1
  kFeedDirection = 11,  // 1
};

// Samples of a curve that lie somewhere else, in each of the two widths.
using Samples8 = std::span<const std::uint8_t>;
using Samples16 = std::span<const std::uint16_t>;
// Samples in the width that they are stored in.
using Samples = std::variant<Samples8, Samples16>;
// The same as values of their own.
using OwnSamples = std::variant<std::vector<std::uint8_t>, std::vector<std::uint16_t>>;

// One curve. Read, its samples lie inside the profile; written, they are copied out of the caller's memory.
struct Curve {
  std::uint8_t ink = 0;          // ink colour code
  std::uint32_t extendInfo = 0;  // its second key
  std::uint32_t slot = 0;
  std::uint32_t displayRgb = 0;
  std::uint32_t min = 0;
  std::uint32_t max = 0;
  std::string name;  // at most 91 bytes in the ANSI code page; one that is as it was read keeps its bytes
  Samples samples;
};

// An input or output of a separation table.
struct TableChannel {
  std::uint8_t code = 0;
  std::uint32_t attribute = 0;
  std::string name;  // at most 127 bytes in the ANSI code page; one that is as it was read keeps its bytes
};

// The colour separation table: grid points to the power of the inputs are its nodes, in one flat order whose axes are
// the caller's matter, with one byte for each output at each node.
struct SeparationTable {
  std::vector<TableChannel> inputs;
  std::vector<TableChannel> outputs;
  std::uint32_t gridPoints = 0;
  Samples8 samples;
};

// The name of the medium in one language.
struct MediaName {
  std::uint16_t language = 0;  // primary language number: 9 English, 17 Japanese
  std::string text;            // at most 64 UTF-16 units
  friend bool operator==(const MediaName&, const MediaName&) = default;
};

// What a profile says about itself.
struct ProfileInfo {
  std::string fileName;                               // of the loaded file
  std::uint32_t majorVersion = 0, minorVersion = 0;   // worked out by a save
  std::optional<std::chrono::sys_seconds> created;    // kept by a save, which puts the present for none
  std::optional<std::chrono::sys_seconds> updated;    // the time of the last save
  std::string modelCode, modelSubCode, internalCode;  // 4, 2 and 2 digits; zeros in front may be left out
  std::string mediaCode;                              // 9 digits, likewise
  std::string mediaName;                              // in the language of the system
  std::string defaultMediaName;                       // where no name fits the language; at most 64 UTF-16 units
  std::vector<MediaName> mediaNames;
  std::string revision;                                  // at most 4 units; without any it is read as FFFF
  std::string createModule, maker;                       // at most 32 units each
  std::string printerComment;                            // of the conversion table
  std::uint32_t scanResolution = 0, feedResolution = 0;  // output, dots per inch across and along the medium
  std::uint32_t renderingScan = 0, renderingFeed = 0;    // a save makes them those of the output
  std::uint32_t expand = 0;
  std::int32_t colorsetCode = 0, inkTypeCode = 0, inkMakerCode = 0, inkVersion = 0;
  std::int32_t dotType = 0, halftoneCode = 0;
  std::int32_t separateWayCode = 0;  // a file with special colours of profile type 1 loads as 3, whatever was saved
  std::uint16_t outputThirdValue = 0;
  std::int32_t outputFourthValue = -1;  // of the output block of the masks, -1 without one
  std::array<std::int32_t, 5> databaseKey{-1, -1, -1, -1, -1};
};

// A printing condition in a table: a value, any value, or all values of a hundred (301 to 399, for example, and 300).
class Condition {
 public:
  // Passes for every value, and for this one.
  static constexpr Condition Any() { return Condition(-1); }
  static constexpr Condition Is(std::int32_t value) { return Condition(value); }
  // Where tables know hundreds: the fourth condition of lamp tables, the first of special colours. A multiple of 100
  // always stands for its hundred there, by Is too.
  static constexpr Condition Hundred(std::int32_t hundred) { return Condition(hundred * 100); }

  // As it is stored.
  constexpr std::int32_t Value() const { return value_; }
  constexpr bool IsAny() const { return value_ == -1; }
  friend constexpr bool operator==(Condition, Condition) = default;

 private:
  explicit constexpr Condition(std::int32_t value) : value_(value) {}
  std::int32_t value_;
};

// Settings of the UV lamp under one condition.
struct LampSettings {
  std::array<std::int32_t, 2> head{};
  std::vector<std::vector<std::int32_t>> splits;
  std::vector<std::int32_t> rest;  // what a table holds behind its splits; empty in a sound one, and never written
};

// Settings of the lamp and the conditions under which they hold.
struct LampPattern {
  std::array<Condition, 4> conditions{Condition::Any(), Condition::Any(), Condition::Any(), Condition::Any()};
  LampSettings settings;
};

// What is recommended for special colours that are printed together.
struct SpecialColorPattern {
  std::array<Condition, 2> conditions{Condition::Any(), Condition::Any()};
  // Ink codes, or any, which are read in ascending order with any last; a hundred does not stand for its values here.
  std::vector<Condition> colors;
  std::int32_t level = 0;  // counts from 0
  std::int32_t density = 0;
  std::optional<std::size_t> curveSet;  // index into the curve sets of the table
};

// All recommendations for special colours.
struct SpecialColorTable {
  std::uint32_t profileColorType = 0;
  std::vector<SpecialColorPattern> patterns;
  std::vector<std::vector<Curve>> curveSets;  // the samples of all curves of a set take equally many bytes
};

// What masks are chosen by.
struct MaskCondition {
  std::uint32_t pass = 0;
  std::uint32_t specialColorset = 0;
  std::uint32_t printMethod = 0;
  std::vector<std::uint32_t> layerColors;  // at most 10, read in ascending order; a lookup goes by their number
};

// What the printer gets under one condition: a block of its own, and patterns of the set by ID.
struct MaskRule {
  MaskCondition condition;
  std::vector<std::uint8_t> parameters;
  std::vector<std::uint32_t> patterns;  // IDs, at most 15
};

// Print masks with their patterns by ID. Of several rules with one condition the first wins.
struct MaskSet {
  std::vector<MaskRule> rules;
  std::map<std::uint32_t, std::vector<std::uint8_t>> patterns;
};

// A mask block of fixed shape (nvxprofile/mask_download.h lists the types).
struct MaskBlock {
  std::uint32_t type = 0;
  std::vector<std::uint32_t> values;
  std::vector<std::uint8_t> bytes;
};

// A calibration of the history.
struct Calibration {
  std::uint32_t code = 0;
  std::string name;
  std::int32_t value = 0;
  std::chrono::sys_seconds time{};
};

// A calibration to be added. Sets without curves are left out.
struct CalibrationData {
  std::string name;  // at most 20 UTF-16 units
  std::int32_t value = 0;
  std::chrono::sys_seconds time{};  // the newest calibration has the greatest, which must be above 0 to count
  std::vector<Curve> inkLimit;      // queries look for ExtendInfo 12
  std::vector<Curve> linearization;
  std::vector<Curve> grayBalance;
};

// An entry as it stands in the profile. Files of printer profiles keep flag, option info and label of those on the main
// route; the others come back complete, with those of a new entry.
struct Entry {
  EntryKind kind{};
  std::string_view name;  // such as "ink-limit"
  std::vector<Route> routes;
  std::span<const std::uint8_t> bytes;
  bool complete = false;
  std::uint32_t optionInfo = 0;
  std::string label;
  // The parsed form says all that the bytes say, but for reserved ones and those behind the form, which no reader looks
  // at, and can be written; true for kinds that have none.
  bool isUnderstood = false;
};

struct ProfileState;

// One profile, as a value that can be moved. What holds for all of its operations stands at the top of the header.
class NVX_EXPORT Profile {
 public:
  // Loads a file of any format. The file is read once and not kept open.
  static Profile Open(const std::filesystem::path& path);
  // The same for callers without exceptions: nothing, with the reason in `why` unless that is null.
  static std::optional<Profile> TryOpen(const std::filesystem::path& path, ProfileError* why = nullptr);
  // Loads a file that is in memory, under a name that decides as that of a file does: ".icc" is taken for an ICC
  // profile.
  static Profile FromBytes(std::span<const std::uint8_t> bytes, std::string_view name = "profile");
  // A new printer profile of the current generation around an ICC profile, of which a copy is kept.
  static Profile Create(std::span<const std::uint8_t> iccProfile);

  Profile(const Profile&) = delete;
  Profile& operator=(const Profile&) = delete;
  // What was moved from can only be destroyed or assigned to.
  Profile(Profile&& other) noexcept;
  Profile& operator=(Profile&& other) noexcept;
  ~Profile();

  // A profile of its own that says the same, for changes that leave this one and what it has handed out alone. Throws
  // for a change made through Access that the forms have no room for.
  Profile Clone() const;

  // Writes all of the profile in its format, beside the target and over it at the end: after an exception the old file
  // is as it was. Printer profiles keep their time of creation, get the present as that of their update, and their ICC
  // profile takes the file's name as description; plain ICC profiles stay as they are byte for byte.
  //
  // Throws for what a file cannot carry: text-headed profiles, which are for reading and converting; a container whose
  // entries stand on several routes; changes made through Access that the forms have no room for; and a profile whose
  // file held more than the profile does (IsWhole).
  void Save(const std::filesystem::path& path);
  bool TrySave(const std::filesystem::path& path, ProfileError* why = nullptr);
  // The same into memory, with the name that the file would have.
  std::vector<std::uint8_t> ToBytes(std::string_view name = "profile.icc");

  // False if the load left something of the file out, such as the second of two entries of one kind. Save refuses to
  // drop it for good, until it is told that the rest is all that is wanted.
  bool IsWhole() const;
  void AcceptLoss();

  // What the file was, and what the profile has.
  ProfileFormat Format() const;
  bool HasRoute(Route route) const;
  bool Has(EntryKind kind) const;

  // --- What a profile says about itself ---

  // A copy of the record.
  ProfileInfo Info() const;
  // Printer profiles alone. What their files do not store or a save works out is passed over: file name, versions,
  // update time, mediaName (which follows from the names), rendering resolutions, expand, printer comment and the
  // fourth output value. Throws for a text that its field does not hold whole, and for a new time of creation of 0.
  void SetInfo(const ProfileInfo& info);

  // --- Curves ---

  // The queries of a print job. Nothing where the entry or the curve is missing, has no samples or is of an unknown
  // type. Profiles of the older generations know some inks by other codes, which is taken care of.
  std::optional<Samples> InkLimit(std::uint32_t ink) const;
  std::optional<Samples> Linearization(std::uint32_t ink) const;
  std::optional<Samples> GrayBalance(std::uint32_t ink) const;
  std::optional<Samples> LightInk(std::uint32_t ink) const;
  // An extendInfo of 0 is the ink's first curve, in VariableInkLimit that of 5.
  std::optional<Samples> MultiInkLimit(std::uint32_t ink, std::uint32_t extendInfo = 0) const;
  std::optional<Samples> Variable(std::uint32_t ink, std::uint32_t extendInfo = 0) const;
  std::optional<Samples> VariableInkLimit(std::uint32_t ink, std::uint32_t extendInfo = 0) const;
  std::optional<Samples> UnderColorRemoval() const;
  std::optional<Samples> BlackGeneration() const;
  // The linearization looked up at each gray balance sample.
  std::optional<OwnSamples> MergedGrayBalance(std::uint32_t ink) const;

  // All curves of a set in their order; empty without the entry.
  std::vector<Curve> Curves(CurveKind kind) const;
  // Puts the curve in the place of the one with its ink and extendInfo, or behind all others, and makes the entry if
  // there is none. Printer profiles take samples of 16 bits alone: they count all samples as such when they load.
  void SetCurve(CurveKind kind, const Curve& curve);
  // Makes these the curves of the set, in this order. Two of one ink and extendInfo are refused.
  void SetCurves(CurveKind kind, std::span<const Curve> curves);
  // False if there is no such curve. The entry stays, also without curves.
  bool RemoveCurve(CurveKind kind, std::uint8_t ink, std::uint32_t extendInfo);

  // --- Separation table and ICC profiles ---

  // Nothing without the entry; SetTable makes it if there is none.
  std::optional<SeparationTable> Table() const;
  void SetTable(const SeparationTable& table);

  // The ordinary one; nothing without it.
  std::optional<std::span<const std::uint8_t>> IccProfile() const;
  // The replacement alone: it does not fall back on the ordinary one. Files keep it, as all that stands in a tag of its
  // own, with zeros up to a multiple of 4 bytes behind it.
  std::optional<std::span<const std::uint8_t>> ReplaceIccProfile() const;
  void SetIccProfile(std::span<const std::uint8_t> bytes);
  void SetReplaceIccProfile(std::span<const std::uint8_t> bytes);

  // --- Device settings ---

  // The values of a setting; nothing, and false, where the profile does not have it.
  std::optional<std::span<const std::int32_t>> Media(MediaSetting setting) const;
  void SetMedia(MediaSetting setting, std::span<const std::int32_t> values);
  bool RemoveMedia(MediaSetting setting);

  // --- Print masks ---

  // The first block of a type.
  std::optional<MaskBlock> FindMaskBlock(std::uint32_t type) const;
  std::vector<MaskBlock> MaskBlocks() const;
  // Each replaces all that its entry holds. A printer profile holds blocks or masks with patterns: whichever comes
  // second is refused. So is a single block of type 5, which would load as masks without any.
  void SetMaskBlocks(std::span<const MaskBlock> blocks);
  std::optional<MaskSet> Masks() const;
  void SetMasks(const MaskSet& masks);
  // Parameters and patterns of a condition as the printer takes them (docs/formats/packed_mask.md).
  std::optional<std::vector<std::uint8_t>> PackedMask(const MaskCondition& condition) const;
  // False for mask blocks of a version from 4.1 on, and without any.
  bool SupportsMaskVersion() const;

  // --- UV lamp and special colours, by printing condition ---

  // Those of the first pattern that fits; nothing without one.
  std::optional<LampSettings> Lamp(const std::array<std::int32_t, 4>& conditions) const;
  // Empty for a fixed table, which answers under all conditions.
  std::vector<LampPattern> LampPatterns() const;
  // Replaces all tables of the lamp by one of these patterns; the first that fits wins.
  void SetLampPatterns(std::span<const LampPattern> patterns);
  // Replaces them by the fixed table: two splits of 131 values.
  void SetFixedLamp(const LampSettings& settings);

  // Of the first pattern that fits; nothing without one.
  std::optional<std::int32_t> RecommendedDensity(const std::array<std::int32_t, 2>& conditions, std::int32_t ink) const;
  // Counts from 0.
  std::optional<std::int32_t> RecommendedLevel(const std::array<std::int32_t, 2>& conditions,
                                               std::span<const std::int32_t> colors) const;
  std::optional<Samples> VariableDotCurve(const std::array<std::int32_t, 2>& conditions, std::int32_t ink,
                                          std::int32_t extendInfo) const;
  std::optional<SpecialColorTable> SpecialColors() const;
  // Replaces all tables by this one.
  void SetSpecialColors(const SpecialColorTable& table);

  // --- Calibration history ---

  // From the oldest entry of the history to the newest.
  std::vector<Calibration> Calibrations() const;
  // The one with the greatest time above 0.
  std::optional<Calibration> NewestCalibration() const;
  // Nothing for codes from 2^31 on, which print jobs cannot ask for.
  std::optional<Samples> CalibrationCurve(std::uint32_t code, CalibrationCurves kind, std::uint32_t ink) const;
  std::vector<Curve> CurvesOfCalibration(std::uint32_t code, CalibrationCurves kind) const;
  // Gives the new code.
  std::uint32_t AddCalibration(const CalibrationData& calibration);
  bool RemoveCalibration(std::uint32_t code);

  // --- Entries as such ---

  // In the order of arrival.
  std::vector<Entry> Entries() const;
  std::optional<Entry> FindEntry(EntryKind kind) const;
  // The bytes must be a whole form of the kind, or an ICC profile whose tags lie inside. What stands behind the form
  // says nothing: it may go with the next change, save or load.
  void SetEntryBytes(EntryKind kind, std::span<const std::uint8_t> bytes);
  bool RemoveEntry(EntryKind kind);

  // The published classes, for what has no word here. Whoever changes the model through them ends all spans. What was
  // changed shows in all that this object is asked from then on, and Save keeps it, without DataToBuffer; only the
  // queries of CProfileAccess itself answer from the buffers. Asking then brings the buffers up to date: a profile of
  // which something was opened to changes is for one thread at a time, its Clone for many.
  CProfileAccess& Access();

 private:
  explicit Profile(std::unique_ptr<ProfileState> state);

  std::unique_ptr<ProfileState> state_;
};

}  // namespace nvx
