// Opening and saving, and what all changes have in common.
#include "modern/profile_state.h"

#include "access/diagnose.h"
#include "core/payload.h"
#include "entries/mask/mask_download_records.h"
#include "formats/qpf_tags.h"
#include "formats/record_views.h"
#include "icc/icc_directory.h"

#include <nvxprofile/curve_entry.h>
#include <nvxprofile/icc_profile.h>
#include <nvxprofile/icm_entry.h>
#include <nvxprofile/mask_download.h>
#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/special_color.h>
#include <nvxprofile/text_conversion.h>

#include <algorithm>
#include <map>
#include <type_traits>

namespace nvx {
namespace {

namespace fs = std::filesystem;

// The paths of the standard library are bytes on a POSIX system and UTF-16 on Windows.
template <class Unit>
std::u16string WideOfPath(const std::basic_string<Unit>& path) {
  if constexpr (std::is_same_v<Unit, char>) {
    return PathToWide(path);
  } else {
    return std::u16string(path.begin(), path.end());
  }
}

bool HoldsZero(std::u16string_view path) { return path.find(u'\0') != path.npos; }

// The system would take what stands before a zero for all of it.
std::u16string WideName(std::string_view name) {
  std::u16string wide = PathToWide(name);
  if (HoldsZero(wide)) Fail("a name that holds a zero");
  return wide;
}

// A block of memory that is written and read as the file of a name.
class NamedMemory : public CNvxMemFile {
 public:
  explicit NamedMemory(std::string_view name) { Attach(-1, WideName(name)); }
  NamedMemory(std::span<const std::uint8_t> bytes, std::string_view name) : NamedMemory(name) {
    Buffer = const_cast<std::uint8_t*>(bytes.data());
    Length = static_cast<std::uint32_t>(bytes.size());
  }
};

// The fault that ended a load is the last that it recorded, and comes first here: those before it stop no load.
std::vector<Finding> DecisiveFirst(const Diagnosis& diagnosis) {
  std::vector<Finding> findings = diagnosis.Findings();
  const auto last = std::find_if(findings.rbegin(), findings.rend(),
                                 [](const Finding& finding) { return finding.severity == Severity::kError; });
  if (last != findings.rend()) std::rotate(findings.begin(), last.base() - 1, last.base());
  return findings;
}

std::string WithPlace(const std::string& message, const std::vector<Finding>& findings) {
  if (findings.empty()) return message;
  const Finding& first = findings.front();
  return message + ": " + (first.place.empty() ? "" : first.place + ": ") + first.rule;
}

// Loads what the stream has opened, or says why that does not work.
std::optional<ProfileError> Load(CNvxFile& file, ModelAccess& access) {
  CError error;
  if (access.Load(file, &error)) return std::nullopt;
  Diagnosis diagnosis;
  file.SeekToBegin();
  DiagnoseProfile(file, diagnosis);
  return ProfileError(WideToUtf8(error.GetErrorCommentW()), DecisiveFirst(diagnosis));
}

ProfileError NotOpened(const std::u16string& path) {
  CError error;
  Diagnosis diagnosis;
  CProfileAccess().Init(path.c_str(), &error);
  DiagnoseProfile(path.c_str(), diagnosis);
  return ProfileError(WideToUtf8(error.GetErrorCommentW()), DecisiveFirst(diagnosis));
}

// Throws for bytes that are no ICC profile.
IccDirectory DirectoryOf(std::span<const std::uint8_t> bytes) {
  Diagnosis diagnosis;
  IccDirectory directory;
  if (!ReadIccDirectory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), directory, &diagnosis)) {
    throw ProfileError("no ICC profile", diagnosis.Findings());
  }
  return directory;
}

// A load would take the profile around a file for more than that.
void RefusePrivateTags(const IccDirectory& directory) {
  for (const char* const tag : kPrivateTags) {
    if (directory.Find(CICCProfile::MakeTagSignature(tag)) != nullptr) {
      Fail(std::string("the ICC profile has the tag ") + tag + " of a printer profile");
    }
  }
}

std::unique_ptr<CProfileDataEntry> NewEntry(std::uint32_t usedType) {
  std::unique_ptr<CProfileDataEntry> entry(
      CProfileDataEntry::CreateDataEntry(static_cast<CProfileDataEntry::UsedType>(usedType)));
  if (!entry) Fail("no kind of entry has the number " + std::to_string(usedType));
  entry->SetComplete(true);
  return entry;
}

bool IsIcc(const CProfileDataEntry& entry) { return entry.GetFormatType() == CProfileDataEntry::kFormatIcc; }

bool IsUnderstood(const CProfileDataEntry& entry) {
  return IsIcc(entry) || entry.Bytes().empty() || entry.GetPayloadState() == PayloadState::kWhole ||
         entry.GetPayloadState() == PayloadState::kEdited;
}

// The option info of an ICC entry tells of its bytes, and stays.
void CopyHeader(CProfileDataEntry& from, CProfileDataEntry& to) {
  to.SetComplete(from.IsComplete());
  to.SetDisplay(from.IsDisplayEnable());
  if (!IsIcc(to)) to.SetOptionInfo(from.GetOptionInfo());
  to.SetLabelString(from.GetLabelString());
}

std::vector<std::uint32_t> RoutesOf(const CProfileData& model, CProfileDataEntry* entry) {
  std::vector<std::uint32_t> routes;
  for (const auto& [number, route] : model.Routes()) {
    if (route->IsExistEntry(entry)) routes.push_back(number);
  }
  return routes;
}

// Loads count all samples of a printer profile's own curves as 16 bits.
void CheckSampleWidth(const CProfileCurveEntry& entry) {
  for (const CCurveDataEntry* const curve : entry.GetCurveData()->Curves()) {
    if (curve->GetDataType() != CCurveDataEntry::kSamples16) {
      Fail(TitleOf(entry.GetUsedType()) + ": curves of a printer profile have samples of 16 bits");
    }
  }
}

// A load takes a tag of one such block for masks with their patterns.
void CheckLoadsAsBlocks(const CMaskDownLoadEntry& entry) {
  constexpr std::uint32_t kPatternBlock = 5;
  const auto blocks = entry.GetWeftBlocks();
  // Bytes that were read in part hold more, and are kept as they are.
  if (PayloadKeeper::SaysAll(entry) && blocks.size() == 1 && blocks.front().BlockType == kPatternBlock) {
    Fail(TitleOf(entry.GetUsedType()) + ": a printer profile does not keep a single block of type 5");
  }
}

// --- What a save of a printer profile needs ---

void CheckRoutes(const CProfileData& model) {
  for (const auto& [number, route] : model.Routes()) {
    const auto types = EntryTypes();
    if (std::none_of(types.begin(), types.end(), [n = number](const EntryType& type) { return type.route == n; })) {
      Fail("files of this format do not keep route " + std::to_string(number));
    }
    if (number != kRouteMain && route->GetEntryCount() > 1) {
      Fail("files of this format keep one entry on route " + std::to_string(number));
    }
  }
}

void CheckFrame(ProfileState& state) {
  CProfileDataEntry* const icc = state.Find(EntryKind::kIcc);
  const CProfileRoute* const route = state.Model().GetProfileRoute(kRouteMain);
  if (icc == nullptr || route == nullptr || !route->IsExistEntry(icc)) Fail("there is no ICC profile");
  DirectoryOf(icc->Bytes());
}

// Changes that were made through the published classes reach the buffers here. False if they cannot be written.
bool TryRenewBytes(CProfileDataEntry& entry) {
  const bool mayBeChanged = PayloadKeeper::IsStale(entry) && entry.GetPayloadState() != PayloadState::kUnread;
  return !mayBeChanged || entry.RenewBuffer();
}

void RenewBytes(CProfileDataEntry& entry) {
  if (!TryRenewBytes(entry)) Fail(TitleOf(entry.GetUsedType()) + ": what was changed cannot be written");
}

std::uint32_t OnlyRoute(const CProfileData& model) {
  if (model.Routes().size() != 1) Fail("a container holds the entries of exactly one route");
  return model.Routes().begin()->first;
}

// Everything that keeps the profile from being saved whole.
void Prepare(ProfileState& state) {
  if (!state.isWhole) Fail("the file held more than the profile does");
  for (CProfileDataEntry* const entry : state.Model().Entries()) RenewBytes(*entry);
  switch (state.access.GetProfileLoadFormat()) {
    case kPrinterProfile:
      CheckFrame(state);
      CheckRoutes(state.Model());
      if (const auto* const blocks = state.Payload<CMaskDownLoadEntry>(EntryKind::kMaskBlocks)) {
        CheckLoadsAsBlocks(*blocks);
      }
      state.RenewRecord();
      state.Record().SaveVersion5 |= state.Record().ProfileMinorVersion == 5;
      return;
    case kContainer:
      OnlyRoute(state.Model());
      return;
    case kPlainIcc:
      if (state.Find(EntryKind::kIcc) == nullptr) Fail("there is no ICC profile");
      return;
    default:
      Fail("text-headed profiles are not written here");
  }
}

// To a stream or a path.
template <class Target>
bool Write(ProfileState& state, Target& target) {
  CProfileData& model = state.Model();
  if (state.IsPrinterProfile()) {
    return CProfileFileQPFv3().SaveData(target, &model, kSaveReplaceProfile | kSaveCalibration);
  }
  return CProfileFileQCT().SaveData(target, &model, OnlyRoute(model));
}

}  // namespace

ProfileError::ProfileError(const std::string& message, std::vector<Finding> findings)
    : std::runtime_error(WithPlace(message, findings)),
      findings_(std::make_shared<const std::vector<Finding>>(std::move(findings))) {}
ProfileError::~ProfileError() = default;

void Fail(const std::string& message) { throw ProfileError(message); }

std::string TitleOf(std::uint32_t usedType) {
  const EntryType* const type = FindEntryType(usedType);
  return "entry " + (type != nullptr ? std::string(type->name) : std::to_string(usedType));
}

std::unique_ptr<CProfileDataEntry> EntryOf(EntryKind kind, SharedBytes bytes) {
  std::unique_ptr<CProfileDataEntry> entry = NewEntry(static_cast<std::uint32_t>(kind));
  PayloadKeeper::Give(*entry, std::move(bytes));
  if (IsIcc(*entry)) {
    entry->BufferToData();
    return entry;
  }
  Diagnosis diagnosis;
  const bool isParsed = ParseInto(&diagnosis, *entry);
  if (!isParsed || entry->GetPayloadState() == PayloadState::kPart) {
    throw ProfileError(TitleOf(kind) + ": no whole form of it", DecisiveFirst(diagnosis));
  }
  return entry;
}

CProfileAccess& ProfileState::Asked(EntryKind kind) {
  if (CProfileDataEntry* const entry = Find(kind)) RenewBytes(*entry);
  return access;
}

std::unique_ptr<CProfileDataEntry> ProfileState::EditableCopy(EntryKind kind) {
  CProfileDataEntry* const entry = Find(kind);
  if (entry == nullptr) return NewEntry(static_cast<std::uint32_t>(kind));
  RenewBytes(*entry);
  return entry->Bytes().empty() ? NewEntry(entry->GetUsedType()) : EntryOf(kind, SharedBytes(entry->Bytes()));
}

void ProfileState::Store(CProfileDataEntry& changed) {
  const auto kind = static_cast<EntryKind>(changed.GetUsedType());
  if (!changed.DataToBuffer()) Fail(TitleOf(kind) + ": its form cannot hold this");
  // What nobody holds is parsed once and answers from then on.
  Take(EntryOf(kind, std::move(PayloadKeeper::BufferOf(changed))));
}

void ProfileState::Take(std::unique_ptr<CProfileDataEntry> entry) {
  const EntryType& type = *FindEntryType(entry->GetUsedType());
  if (IsIcc(*entry)) {
    const IccDirectory directory = DirectoryOf(entry->Bytes());
    const bool isFrame = type.usedType == CProfileDataEntry::kIcm && access.GetProfileLoadFormat() != kContainer;
    if (isFrame) RefusePrivateTags(directory);
  }
  if (auto* const curves = dynamic_cast<CProfileCurveEntry*>(entry.get());
      curves != nullptr && IsPrinterProfile() && type.route == kRouteMain) {
    CheckSampleWidth(*curves);
  }
  const bool isBlocks = type.usedType == CProfileDataEntry::kMaskDownload && IsPrinterProfile();
  if (isBlocks) CheckLoadsAsBlocks(dynamic_cast<const CMaskDownLoadEntry&>(*entry));
  CheckRecordSource(static_cast<EntryKind>(type.usedType));
  CProfileData& model = Model();
  if (CProfileDataEntry* const former = Find(static_cast<EntryKind>(type.usedType))) {
    CopyHeader(*former, *entry);
    model.ReplaceProfileDataEntry(std::move(entry));
  } else if (IsPrinterProfile()) {
    if (type.route != kRouteMain && model.IsSpecifiedRoute(type.route)) {
      Fail(TitleOf(type.usedType) + ": another entry stands where files keep it");
    }
    model.SetProfileDataEntry(entry.release(), type.route);
  } else if (access.GetProfileLoadFormat() == kPlainIcc) {
    Fail(TitleOf(type.usedType) + ": a plain ICC profile has no place for it");
  } else {
    model.SetProfileDataEntry(entry.release(), model.Routes().empty() ? kRouteIccRoot : model.Routes().begin()->first);
  }
  RenewRecord();
  if (type.usedType == CProfileDataEntry::kSpecialColorInfo) TakeSeparateWay();
}

void ProfileState::CheckRecordSource(EntryKind changing) {
  if (changing != EntryKind::kMedia) Asked(EntryKind::kMedia);
}

void ProfileState::TakeSeparateWay() {
  const auto* const colors = Payload<CSpecialColorInfoEntry>(EntryKind::kSpecialColors);
  const bool decides = colors != nullptr && colors->GetSpecialColorInfoData()->GetProfileColorType() == 1;
  if (decides) Record().SeparateWayCode = 3;
}

void ProfileState::RenewRecord() {
  _tagDeviceProfileInfo& record = Record();
  record.WaveFormParam = 0;
  if (IsPrinterProfile()) {
    record.HasMaskDownload = Model().IsSpecifiedRoute(kRouteMaskDownload);
    record.HasLargeParameter = Model().IsSpecifiedRoute(kRouteLargeParameter);
    record.HasSpecialColor = Model().IsSpecifiedRoute(kRouteSpecialColor);
    const auto* const blocks = Payload<CMaskDownLoadEntry>(EntryKind::kMaskBlocks);
    record.HasOutputBlock = blocks != nullptr && !blocks->GetWeftBlocks().empty() &&
                            blocks->GetWeftBlocks().front().BlockType == WeftOutputRecord::kBlockType;
  }
  Asked(EntryKind::kMedia);
  access.SetupProfileInfoStructure();
}

namespace {

// What an entry says, changes that have not reached its buffer included, without a touch to it.
SharedBytes PresentBytes(CProfileDataEntry& entry) {
  if (!PayloadKeeper::IsStale(entry) || entry.GetPayloadState() == PayloadState::kUnread) {
    return SharedBytes(entry.Bytes());
  }
  SharedBytes form = entry.GetPayloadState() == PayloadState::kEdited ? PayloadKeeper::FormOf(entry) : SharedBytes();
  if (form.IsEmpty()) Fail(TitleOf(entry.GetUsedType()) + ": what was changed cannot be written");
  return form;
}

// Parsed as far as the original is, so that reading either writes to nothing.
std::unique_ptr<CProfileDataEntry> CopyOf(CProfileDataEntry& entry) {
  const EntryType* const type = FindEntryType(entry.GetUsedType());
  std::unique_ptr<CProfileDataEntry> copy(type != nullptr ? type->create() : new CProfileDataEntry);
  copy->SetUsedType(entry.GetUsedType());
  copy->SetFormatType(entry.GetFormatType());
  CopyHeader(entry, *copy);
  PayloadKeeper::Give(*copy, PresentBytes(entry));
  if (entry.GetPayloadState() != PayloadState::kUnread) copy->BufferToData();
  return copy;
}

std::unique_ptr<CProfileData> CopyOf(const CProfileData& model, bool isPrinterProfile) {
  // As a load does, what was read in part included.
  const bool countsAs16Bit = isPrinterProfile && model.IsSpecifiedRoute(kRouteMain);
  auto copy = std::make_unique<CProfileData>();
  std::map<const CProfileDataEntry*, CProfileDataEntry*> copies;
  // In the order of arrival first, then in that of each route.
  for (CProfileDataEntry* const entry : model.Entries()) {
    const std::vector<std::uint32_t> routes = RoutesOf(model, entry);
    if (routes.empty()) Fail(TitleOf(entry->GetUsedType()) + ": stands on no route");
    std::unique_ptr<CProfileDataEntry> twin = CopyOf(*entry);
    auto* const curves = dynamic_cast<CProfileCurveEntry*>(twin.get());
    if (curves != nullptr && countsAs16Bit && entry->GetPayloadState() != PayloadState::kUnread &&
        model.GetProfileRoute(kRouteMain)->IsExistEntry(entry)) {
      curves->TakeSamplesAs16Bit();
    }
    copies[entry] = twin.get();
    copy->SetProfileDataEntry(twin.release(), routes.front());
  }
  for (const auto& [number, route] : model.Routes()) {
    std::vector<CProfileDataEntry*> twins;
    for (const CProfileDataEntry* const entry : route->Entries()) twins.push_back(copies.at(entry));
    if (!twins.empty()) copy->SetProfileDataEntry(twins.front(), number);
    if (CProfileRoute* const place = copy->GetProfileRoute(number)) place->SetEntries(std::move(twins));
  }
  copy->CopyProfileInfo(model);
  copy->SetTargetType(model.GetTargetType());
  copy->SetDeviceType(model.GetDeviceType());
  copy->SetProcessDataType(model.GetProcessDataType());
  return copy;
}

}  // namespace

Profile Profile::Clone() const {
  auto state = std::make_unique<ProfileState>();
  state->access.Serve(CopyOf(state_->Model(), state_->IsPrinterProfile()), static_cast<int>(Format()));
  state->isWhole = state_->isWhole;
  return Profile(std::move(state));
}

Profile::Profile(std::unique_ptr<ProfileState> state) : state_(std::move(state)) {}
Profile::Profile(Profile&& other) noexcept = default;
Profile& Profile::operator=(Profile&& other) noexcept = default;
Profile::~Profile() = default;

namespace {

// The state of a loaded file, or why there is none.
std::variant<std::unique_ptr<ProfileState>, ProfileError> StateOf(CNvxFile& file) {
  auto state = std::make_unique<ProfileState>();
  if (std::optional<ProfileError> why = Load(file, state->access)) return *std::move(why);
  state->isWhole = !file.HasPassedOver();
  return state;
}

std::variant<std::unique_ptr<ProfileState>, ProfileError> StateOf(const fs::path& path) {
  const std::u16string wide = WideOfPath(path.native());
  if (HoldsZero(wide)) return ProfileError("a path that holds a zero");
  CNvxFile file;
  if (!file.Open(wide.c_str(), kGenericRead, kShareRead, kOpenExisting)) return NotOpened(wide);
  return StateOf(file);
}

}  // namespace

Profile Profile::Open(const fs::path& path) {
  auto state = StateOf(path);
  if (const auto* const why = std::get_if<ProfileError>(&state)) throw *why;
  return Profile(std::get<0>(std::move(state)));
}

std::optional<Profile> Profile::TryOpen(const fs::path& path, ProfileError* why) {
  auto state = StateOf(path);
  if (auto* const opened = std::get_if<0>(&state)) return Profile(std::move(*opened));
  if (why != nullptr) *why = std::get<ProfileError>(state);
  return std::nullopt;
}

Profile Profile::FromBytes(std::span<const std::uint8_t> bytes, std::string_view name) {
  if (bytes.size() > UINT32_MAX) Fail("4 GiB or longer");
  NamedMemory file(bytes, name);
  auto state = StateOf(file);
  if (const auto* const why = std::get_if<ProfileError>(&state)) throw *why;
  return Profile(std::get<0>(std::move(state)));
}

Profile Profile::Create(std::span<const std::uint8_t> iccProfile) {
  auto state = std::make_unique<ProfileState>();
  auto model = std::make_unique<CProfileData>();
  SelectBinaryView(*model->GetProfileInfo());
  model->GetProfileInfo()->ProfileMajorVersion = 3;
  WorkOut(*model->GetProfileInfo());
  state->access.Serve(std::move(model), kPrinterProfile);
  Profile profile(std::move(state));
  profile.SetIccProfile(iccProfile);
  return profile;
}

void Profile::Save(const fs::path& path) {
  const std::u16string wide = WideOfPath(path.native());
  if (HoldsZero(wide)) Fail("a path that holds a zero");
  Prepare(*state_);
  const char16_t* const target = wide.c_str();
  std::uint32_t ignored = 0;
  const bool isWritten = Format() == kPlainIcc
                             ? dynamic_cast<CICMEntry&>(*state_->Find(EntryKind::kIcc)).Save(target, ignored)
                             : Write(*state_, target);
  if (!isWritten) {
    Fail(WideToUtf8(wide) + ": cannot be written");
  }
}

bool Profile::TrySave(const fs::path& path, ProfileError* why) {
  try {
    Save(path);
    return true;
  } catch (const ProfileError& error) {
    if (why != nullptr) *why = error;
    return false;
  }
}

std::vector<std::uint8_t> Profile::ToBytes(std::string_view name) {
  Prepare(*state_);
  if (Format() == kPlainIcc) {
    const auto bytes = state_->Find(EntryKind::kIcc)->Bytes();
    return {bytes.begin(), bytes.end()};
  }
  NamedMemory file(name);
  CNvxFile& stream = file;
  const bool isWritten = Write(*state_, stream);
  const Block block(file.Buffer);
  const std::uint32_t size = file.Position;
  file.Buffer = nullptr;
  file.Length = 0;
  if (!isWritten) Fail("no memory for it, or 4 GiB or longer");
  return std::vector<std::uint8_t>(block.get(), block.get() + size);
}

bool Profile::IsWhole() const { return state_->isWhole; }
void Profile::AcceptLoss() { state_->isWhole = true; }

ProfileFormat Profile::Format() const { return static_cast<ProfileFormat>(state_->access.GetProfileLoadFormat()); }
bool Profile::HasRoute(Route route) const {
  return state_->Model().IsSpecifiedRoute(static_cast<std::uint32_t>(route));
}
bool Profile::Has(EntryKind kind) const { return state_->Find(kind) != nullptr; }
CProfileAccess& Profile::Access() { return state_->access; }

namespace {

Entry ViewOf(const CProfileData& model, CProfileDataEntry& entry) {
  Entry view;
  view.kind = static_cast<EntryKind>(entry.GetUsedType());
  if (const EntryType* const type = FindEntryType(entry.GetUsedType())) view.name = type->name;
  for (const std::uint32_t route : RoutesOf(model, &entry)) view.routes.push_back(static_cast<Route>(route));
  const bool isRenewed = TryRenewBytes(entry);
  view.bytes = entry.Bytes();
  view.complete = entry.IsComplete();
  view.optionInfo = entry.GetOptionInfo();
  view.label = Utf8OfAnsi(entry.GetLabelString());
  view.isUnderstood = isRenewed && IsUnderstood(entry);
  return view;
}

}  // namespace

std::vector<Entry> Profile::Entries() const {
  const CProfileData& model = state_->Model();
  std::vector<Entry> entries;
  for (CProfileDataEntry* const entry : model.Entries()) entries.push_back(ViewOf(model, *entry));
  return entries;
}

std::optional<Entry> Profile::FindEntry(EntryKind kind) const {
  CProfileDataEntry* const entry = state_->Find(kind);
  return entry != nullptr ? std::optional(ViewOf(state_->Model(), *entry)) : std::nullopt;
}

void Profile::SetEntryBytes(EntryKind kind, std::span<const std::uint8_t> bytes) {
  if (bytes.size() > UINT32_MAX) Fail(TitleOf(kind) + ": 4 GiB or longer");
  state_->Take(EntryOf(kind, SharedBytes(bytes)));
}

bool Profile::RemoveEntry(EntryKind kind) {
  CProfileDataEntry* const entry = state_->Find(kind);
  if (entry == nullptr) return false;
  state_->CheckRecordSource(kind);
  CProfileData& model = state_->Model();
  const std::vector<std::uint32_t> routes = RoutesOf(model, entry);
  for (const std::uint32_t route : routes) {
    CProfileDataEntry* const taken = model.RemoveProfileDataEntry(static_cast<std::uint32_t>(kind), route);
    if (route == routes.back()) delete taken;
  }
  state_->RenewRecord();
  return true;
}

std::optional<std::span<const std::uint8_t>> Profile::IccProfile() const {
  const CProfileDataEntry* const entry = state_->Find(EntryKind::kIcc);
  return entry != nullptr ? std::optional(entry->Bytes()) : std::nullopt;
}

std::optional<std::span<const std::uint8_t>> Profile::ReplaceIccProfile() const {
  const CProfileDataEntry* const entry = state_->Find(EntryKind::kReplaceIcc);
  return entry != nullptr ? std::optional(entry->Bytes()) : std::nullopt;
}

void Profile::SetIccProfile(std::span<const std::uint8_t> bytes) { SetEntryBytes(EntryKind::kIcc, bytes); }
void Profile::SetReplaceIccProfile(std::span<const std::uint8_t> bytes) {
  SetEntryBytes(EntryKind::kReplaceIcc, bytes);
}

const char* Version() {
  static const std::string kVersion = std::to_string(NVXPROFILE_VERSION_MAJOR) + "." +
                                      std::to_string(NVXPROFILE_VERSION_MINOR) + "." +
                                      std::to_string(NVXPROFILE_VERSION_PATCH);
  return kVersion.c_str();
}

}  // namespace nvx
