// Curves, the separation table and the calibration history.
#include "core/text.h"
#include "modern/profile_state.h"

#include <nvxprofile/calibration.h>
#include <nvxprofile/calibration_history.h>
#include <nvxprofile/curve_entry.h>
#include <nvxprofile/lut.h>
#include <nvxprofile/text_conversion.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>

namespace nvx {

namespace {

std::optional<Samples> SamplesOf(const void* samples, std::size_t bytes, int dataType) {
  if (dataType == CCurveDataEntry::kSamples8) return Samples8(static_cast<const std::uint8_t*>(samples), bytes);
  if (dataType == CCurveDataEntry::kSamples16) return Samples16(static_cast<const std::uint16_t*>(samples), bytes / 2);
  return std::nullopt;
}

}  // namespace

std::optional<Samples> SamplesAt(const void* samples, int size, int dataType) {
  if (samples == nullptr || size <= 0) return std::nullopt;
  return SamplesOf(samples, static_cast<std::size_t>(size), dataType);
}

Curve CurveOf(CCurveDataEntry& entry) {
  Curve curve;
  curve.ink = static_cast<std::uint8_t>(entry.GetInkID());
  curve.extendInfo = entry.GetExtendInfo();
  curve.slot = entry.GetSlotNo();
  curve.displayRgb = entry.GetDisplayRGB();
  curve.min = entry.GetMin();
  curve.max = entry.GetMax();
  curve.name = Utf8OfAnsi(entry.GetInkName());
  // One without samples has a width as well, without which it could not be written again.
  curve.samples =
      SamplesOf(entry.GetRefBuffer(), entry.GetSize(), static_cast<int>(entry.GetDataType())).value_or(Samples());
  return curve;
}

std::vector<Curve> CurvesOf(const CCurveData& set) {
  std::vector<Curve> curves;
  curves.reserve(set.Curves().Count());
  for (CCurveDataEntry* const curve : set.Curves()) curves.push_back(CurveOf(*curve));
  return curves;
}

namespace {

constexpr std::size_t kInkNameBytes = 91;

template <class Sample>
void CopySamples(std::span<const Sample> samples, CCurveDataEntry& curve) {
  void* const target = curve.GetBuffer(static_cast<std::uint32_t>(samples.size_bytes()));
  if (!samples.empty()) std::memcpy(target, samples.data(), samples.size_bytes());
}

using CurveKeys = std::pair<std::uint32_t, std::uint32_t>;

CurveKeys KeysOf(const CCurveDataEntry& entry) { return {entry.GetInkID(), entry.GetExtendInfo()}; }
CurveKeys KeysOf(const Curve& curve) { return {curve.ink, curve.extendInfo}; }

// A text of the ANSI code page for a field that has this one already. One that says the same keeps its bytes: text of
// another code page than that of the system would be lost, or be in the way of all other changes.
std::string KeptField(std::string_view text, std::size_t most, const char* what, const char* former) {
  if (former != nullptr && Utf8OfAnsi(former) == text) return former;
  return AnsiField(text, most, what);
}

// A curve of the published classes with copies of the samples, in the place of another one unless that is null.
std::unique_ptr<CCurveDataEntry> NewCurve(const Curve& curve, const CCurveDataEntry* former) {
  const bool is16Bit = std::holds_alternative<Samples16>(curve.samples);
  std::unique_ptr<CCurveDataEntry> entry(
      CCurveDataEntry::CreateCurveDataEntry(is16Bit ? CCurveDataEntry::kSamples16 : CCurveDataEntry::kSamples8));
  entry->SetInkID(curve.ink);
  entry->SetExtendInfo(curve.extendInfo);
  entry->SetSlotNo(curve.slot);
  entry->SetDisplayRGB(curve.displayRgb);
  entry->SetMin(curve.min);
  entry->SetMax(curve.max);
  const char* const formerName = former != nullptr ? former->GetInkName() : nullptr;
  entry->SetInkName(KeptField(curve.name, kInkNameBytes, "ink name", formerName).c_str());
  std::visit([&](auto samples) { CopySamples(samples, *entry); }, curve.samples);
  return entry;
}

// The same curves with one replaced, added or, without `changed`, left out.
bool ChangeCurve(CCurveData& set, const CurveKeys& keys, const Curve* changed) {
  std::vector<CCurveDataEntry*> curves(set.Curves().begin(), set.Curves().end());
  const auto place =
      std::find_if(curves.begin(), curves.end(), [&](const CCurveDataEntry* entry) { return KeysOf(*entry) == keys; });
  const bool isThere = place != curves.end();
  if (!isThere) return changed != nullptr && set.AddTail(NewCurve(*changed, nullptr).release());
  std::unique_ptr<CCurveDataEntry> next = changed != nullptr ? NewCurve(*changed, *place) : nullptr;
  const std::unique_ptr<CCurveDataEntry> former(*place);
  next ? void(*place = next.release()) : void(curves.erase(place));
  set.SetAutoDelete(false);
  set.DeleteContents();
  set.SetAutoDelete(true);
  for (CCurveDataEntry* const curve : curves) set.AddTail(curve);
  return true;
}

EntryKind KindOf(CurveKind kind) { return static_cast<EntryKind>(kind); }

using Getter = void* (CProfileAccess::*)(std::uint32_t, int&, int&, CError*);
using ExtendedGetter = void* (CProfileAccess::*)(std::uint32_t, std::uint32_t, int&, int&, CError*);

template <class Method, class... Keys>
std::optional<Samples> Ask(CProfileAccess& access, Method method, Keys... keys) {
  int size = 0;
  int dataType = 0;
  CError ignored;
  const void* const samples = (access.*method)(keys..., size, dataType, &ignored);
  return SamplesAt(samples, size, dataType);
}

}  // namespace

void FillCurves(CCurveData& set, std::span<const Curve> curves) {
  std::map<CurveKeys, const CCurveDataEntry*> formers;
  for (const CCurveDataEntry* const curve : set.Curves()) formers.emplace(KeysOf(*curve), curve);
  std::set<CurveKeys> keys;
  std::vector<std::unique_ptr<CCurveDataEntry>> entries;
  for (const Curve& curve : curves) {
    if (!keys.insert(KeysOf(curve)).second) {
      Fail("two curves of ink " + std::to_string(curve.ink) + " and ExtendInfo " + std::to_string(curve.extendInfo));
    }
    const auto former = formers.find(KeysOf(curve));
    entries.push_back(NewCurve(curve, former != formers.end() ? former->second : nullptr));
  }
  set.DeleteContents();
  for (std::unique_ptr<CCurveDataEntry>& entry : entries) set.AddTail(entry.release());
}

std::optional<Samples> Profile::InkLimit(std::uint32_t ink) const {
  return Ask(state_->Asked(EntryKind::kInkLimit), Getter(&CProfileAccess::GetInkLimit), ink);
}
std::optional<Samples> Profile::Linearization(std::uint32_t ink) const {
  return Ask(state_->Asked(EntryKind::kLinearization), Getter(&CProfileAccess::GetLinearization), ink);
}
std::optional<Samples> Profile::GrayBalance(std::uint32_t ink) const {
  return Ask(state_->Asked(EntryKind::kGrayBalance), Getter(&CProfileAccess::GetGrayBalance), ink);
}
std::optional<Samples> Profile::LightInk(std::uint32_t ink) const {
  return Ask(state_->Asked(EntryKind::kLightInk), Getter(&CProfileAccess::GetLightInk), ink);
}
std::optional<Samples> Profile::MultiInkLimit(std::uint32_t ink, std::uint32_t extendInfo) const {
  return Ask(state_->Asked(EntryKind::kMultiInkLimit), ExtendedGetter(&CProfileAccess::GetMultiInkLimit), ink,
             extendInfo);
}
std::optional<Samples> Profile::Variable(std::uint32_t ink, std::uint32_t extendInfo) const {
  return Ask(state_->Asked(EntryKind::kVariable), ExtendedGetter(&CProfileAccess::GetVariable), ink, extendInfo);
}
std::optional<Samples> Profile::VariableInkLimit(std::uint32_t ink, std::uint32_t extendInfo) const {
  return Ask(state_->Asked(EntryKind::kVariableInkLimit), ExtendedGetter(&CProfileAccess::GetVariableInkLimit), ink,
             extendInfo);
}
std::optional<Samples> Profile::UnderColorRemoval() const {
  return Ask(state_->Asked(EntryKind::kUcr), &CProfileAccess::GetUCR);
}
std::optional<Samples> Profile::BlackGeneration() const {
  return Ask(state_->Asked(EntryKind::kUcr), &CProfileAccess::GetBG);
}

std::optional<OwnSamples> Profile::MergedGrayBalance(std::uint32_t ink) const {
  int size = 0;
  int dataType = 0;
  CError ignored;
  state_->Asked(EntryKind::kGrayBalance);
  CProfileAccess& access = state_->Asked(EntryKind::kLinearization);
  if (!access.GetMergeGrayBalance(ink, nullptr, size, dataType, &ignored) || size <= 0) return std::nullopt;
  const auto merge = [&](auto samples) -> std::optional<OwnSamples> {
    samples.resize(static_cast<std::size_t>(size) / sizeof samples.front());
    auto* const bytes = reinterpret_cast<std::uint8_t*>(samples.data());
    if (!access.GetMergeGrayBalance(ink, bytes, size, dataType, &ignored)) return std::nullopt;
    return samples;
  };
  if (dataType == CCurveDataEntry::kSamples8) return merge(std::vector<std::uint8_t>());
  return dataType == CCurveDataEntry::kSamples16 ? merge(std::vector<std::uint16_t>()) : std::nullopt;
}

std::vector<Curve> Profile::Curves(CurveKind kind) const {
  const auto* const entry = state_->Payload<CProfileCurveEntry>(KindOf(kind));
  return entry != nullptr ? CurvesOf(*entry->GetCurveData()) : std::vector<Curve>();
}

void Profile::SetCurve(CurveKind kind, const Curve& curve) {
  const auto entry = state_->EditableCopy<CProfileCurveEntry>(KindOf(kind));
  ChangeCurve(*entry->GetCurveData(), KeysOf(curve), &curve);
  state_->Store(*entry);
}

void Profile::SetCurves(CurveKind kind, std::span<const Curve> curves) {
  const auto entry = state_->EditableCopy<CProfileCurveEntry>(KindOf(kind));
  FillCurves(*entry->GetCurveData(), curves);
  state_->Store(*entry);
}

bool Profile::RemoveCurve(CurveKind kind, std::uint8_t ink, std::uint32_t extendInfo) {
  if (!Has(KindOf(kind))) return false;
  const auto entry = state_->EditableCopy<CProfileCurveEntry>(KindOf(kind));
  if (!ChangeCurve(*entry->GetCurveData(), {ink, extendInfo}, nullptr)) return false;
  state_->Store(*entry);
  return true;
}

// --- Separation table ---

namespace {

constexpr std::size_t kChannelNameBytes = CLutChannelInf::kNameLength - 1;

std::vector<TableChannel> ChannelsOf(std::span<const CLutChannelInf> channels) {
  std::vector<TableChannel> list;
  for (const CLutChannelInf& channel : channels) {
    list.push_back({channel.GetChannelCode(), channel.GetChannelAttribute(), Utf8OfAnsi(channel.GetChannelName())});
  }
  return list;
}

// The channel of a table in the place of the one that the former table has there.
void SetChannel(CLutChannelInf& channel, const TableChannel& wanted, const std::vector<CLutChannelInf>& formers,
                std::size_t place) {
  const char* const formerName = place < formers.size() ? formers[place].GetChannelName() : nullptr;
  channel.SetChannelCode(wanted.code);
  channel.SetChannelAttribute(wanted.attribute);
  channel.SetChannelName(KeptField(wanted.name, kChannelNameBytes, "channel name", formerName).c_str());
}

std::vector<CLutChannelInf> CopiesOf(std::span<const CLutChannelInf> channels) {
  return {channels.begin(), channels.end()};
}

}  // namespace

std::optional<SeparationTable> Profile::Table() const {
  const auto* const entry = state_->Payload<CSeparateChromaEntry>(EntryKind::kSeparationTable);
  if (entry == nullptr) return std::nullopt;
  const CLutData& data = entry->Table();
  const SampleView run = data.ViewRun(0);
  if (run.nodes != data.CountNodes()) Fail("separation table: its nodes were given different widths");
  return SeparationTable{ChannelsOf(data.InputChannels()), ChannelsOf(data.OutputChannels()), data.GetGridCount(),
                         Samples8(run.samples, run.size)};
}

void Profile::SetTable(const SeparationTable& table) {
  const auto inputs = static_cast<std::uint32_t>(table.inputs.size());
  const auto outputs = static_cast<std::uint32_t>(table.outputs.size());
  const std::uint64_t nodes = CLutData::CountNodes(inputs, table.gridPoints);
  if (inputs == 0 || outputs == 0 || table.gridPoints == 0 || nodes > UINT32_MAX ||
      table.samples.size() != nodes * outputs) {
    Fail("separation table: " + std::to_string(table.samples.size()) +
         " samples are not one for each output at each node");
  }
  const auto entry = state_->EditableCopy<CSeparateChromaEntry>(EntryKind::kSeparationTable);
  CLutData& data = *entry->GetLutData();
  const std::vector<CLutChannelInf> formerInputs = CopiesOf(std::as_const(data).InputChannels());
  const std::vector<CLutChannelInf> formerOutputs = CopiesOf(std::as_const(data).OutputChannels());
  // Its samples may be those of this profile.
  data.Initialize(inputs, outputs, table.gridPoints);
  const SampleRun run = data.GetRun(0);
  if (run.size != table.samples.size()) Fail("separation table: too large");
  std::memcpy(run.samples, table.samples.data(), run.size);
  for (std::uint32_t i = 0; i < inputs; ++i) {
    SetChannel(*data.GetAtInputChannelInf(static_cast<int>(i)), table.inputs[i], formerInputs, i);
  }
  for (std::uint32_t i = 0; i < outputs; ++i) {
    SetChannel(*data.GetAtOutputChannelInf(static_cast<int>(i)), table.outputs[i], formerOutputs, i);
  }
  state_->Store(*entry);
}

// --- Calibrations ---

namespace {

constexpr std::size_t kCalibrationNameUnits = 20;

Calibration CalibrationOf(CProfileDataEntry& child) {
  const tag_ContainerData& description = *dynamic_cast<const CContainerEntry&>(child).GetChildData().GetContainerData();
  return {child.GetOptionInfo(), WideToUtf8(FieldText(description.Name)), description.Value,
          std::chrono::sys_seconds(std::chrono::seconds(description.Time))};
}

bool IsCalibration(const CProfileDataEntry& child) {
  return child.GetUsedType() == CProfileDataEntry::kCalibrationContainer;
}

// The curve set of a kind in a calibration; null if there is none.
const CCurveData* CurvesIn(const CCalibrationHistoryEntry* history, std::uint32_t code, CalibrationCurves kind) {
  if (history == nullptr) return nullptr;
  const auto* const calibration = dynamic_cast<const CContainerEntry*>(
      history->GetChildData().Find(CProfileDataEntry::kCalibrationContainer, code));
  if (calibration == nullptr) return nullptr;
  const auto* const curves =
      dynamic_cast<const CProfileCurveEntry*>(calibration->GetChildData().Find(static_cast<std::uint32_t>(kind), 0));
  return curves != nullptr ? curves->GetCurveData() : nullptr;
}

template <class Class>
std::unique_ptr<Class> NewCurveSet(const std::vector<Curve>& curves) {
  if (curves.empty()) return nullptr;
  auto entry = std::make_unique<Class>();
  FillCurves(*entry->GetCurveData(), curves);
  return entry;
}

}  // namespace

std::vector<Calibration> Profile::Calibrations() const {
  std::vector<Calibration> calibrations;
  const auto* const history = state_->Payload<CCalibrationHistoryEntry>(EntryKind::kCalibrations);
  if (history == nullptr) return calibrations;
  for (CProfileDataEntry* const child : history->GetChildData().Children()) {
    if (IsCalibration(*child)) calibrations.push_back(CalibrationOf(*child));
  }
  return calibrations;
}

std::optional<Calibration> Profile::NewestCalibration() const {
  std::optional<Calibration> newest;
  for (Calibration& calibration : Calibrations()) {
    const std::chrono::sys_seconds least = newest ? newest->time : std::chrono::sys_seconds();
    if (calibration.time > least) newest = std::move(calibration);
  }
  return newest;
}

std::optional<Samples> Profile::CalibrationCurve(std::uint32_t code, CalibrationCurves kind, std::uint32_t ink) const {
  constexpr std::uint32_t kGreatestCode = 0x7FFFFFFF;
  if (code > kGreatestCode) return std::nullopt;
  using CodeGetter = void* (CProfileAccess::*)(std::uint32_t, int, int&, int&, CError*);
  const CodeGetter getter = kind == CalibrationCurves::kInkLimit        ? &CProfileAccess::GetCalibrationInkLimit
                            : kind == CalibrationCurves::kLinearization ? &CProfileAccess::GetCalibrationLinearization
                                                                        : &CProfileAccess::GetCalibrationGrayBalance;
  return Ask(state_->Asked(EntryKind::kCalibrations), getter, ink, static_cast<int>(code));
}

std::vector<Curve> Profile::CurvesOfCalibration(std::uint32_t code, CalibrationCurves kind) const {
  const CCurveData* const curves =
      CurvesIn(state_->Payload<CCalibrationHistoryEntry>(EntryKind::kCalibrations), code, kind);
  return curves != nullptr ? CurvesOf(*curves) : std::vector<Curve>();
}

std::uint32_t Profile::AddCalibration(const CalibrationData& calibration) {
  const std::u16string name = WideField(calibration.name, kCalibrationNameUnits, "calibration name");
  NewCalibration added;
  added.name = name;
  added.value = calibration.value;
  added.time = calibration.time.time_since_epoch().count();
  added.inkLimit = NewCurveSet<CCalibrationInklimitEntry>(calibration.inkLimit);
  added.linearization = NewCurveSet<CCalibrationLinearizationEntry>(calibration.linearization);
  added.grayBalance = NewCurveSet<CCalibrationGrayBalanceEntry>(calibration.grayBalance);
  const auto history = state_->EditableCopy<CCalibrationHistoryEntry>(EntryKind::kCalibrations);
  CCalibrationContainerEntry* const entry = nvx::AddCalibration(*history, std::move(added));
  if (entry == nullptr) Fail("calibration: its form cannot hold this");
  const std::uint32_t code = entry->GetOptionInfo();
  state_->Store(*history);
  return code;
}

bool Profile::RemoveCalibration(std::uint32_t code) {
  if (!Has(EntryKind::kCalibrations)) return false;
  const auto history = state_->EditableCopy<CCalibrationHistoryEntry>(EntryKind::kCalibrations);
  const std::unique_ptr<CProfileDataEntry> removed(
      history->RemoveProfileDataEntry(CProfileDataEntry::kCalibrationContainer, code));
  if (!removed) return false;
  state_->Store(*history);
  return true;
}

}  // namespace nvx
