// Settings of the medium, print masks, lamp tables and special colours.
#include "modern/profile_state.h"

#include "entries/large_parameter/large_parameter_records.h"

#include <nvxprofile/large_parameter.h>
#include <nvxprofile/mask_download.h>
#include <nvxprofile/media_property.h>
#include <nvxprofile/special_color.h>

#include <algorithm>
#include <cstring>

namespace nvx {

// --- Device settings ---

namespace {

using Words = std::span<const std::int32_t>;

CMediaPropertyDataEntry* FindBlock(const CMediaPropertyData& data, MediaSetting setting) {
  return data.Entries().First([type = static_cast<std::uint32_t>(setting)](const CMediaPropertyDataEntry& block) {
    return block.GetUsedType() == type;
  });
}

Words ValuesOf(CMediaPropertyDataEntry& block) {
  return {block.GetRefBuffer(), static_cast<std::size_t>(block.GetParameterMax())};
}

std::unique_ptr<CMediaPropertyDataEntry> NewBlock(std::uint32_t type, Words values) {
  std::unique_ptr<CMediaPropertyDataEntry> block(
      CMediaPropertyDataEntry::CreateMediaPropertyDataEntry(type, static_cast<std::uint32_t>(values.size())));
  if (values.empty() || static_cast<std::size_t>(block->GetParameterMax()) != values.size()) {
    Fail("media setting " + std::to_string(type) + ": not " + std::to_string(values.size()) + " values");
  }
  std::copy(values.begin(), values.end(), block->GetRefBuffer());
  return block;
}

// Of any type, as long as its count is one that the type can have.
std::unique_ptr<CMediaPropertyDataEntry> CopyOfBlock(CMediaPropertyDataEntry& block) {
  const auto count = static_cast<std::uint32_t>(block.GetParameterMax());
  std::unique_ptr<CMediaPropertyDataEntry> copy(
      CMediaPropertyDataEntry::CreateMediaPropertyDataEntry(block.GetUsedType(), count));
  if (copy->GetParameterMax() != block.GetParameterMax()) {
    Fail("media setting " + std::to_string(block.GetUsedType()) + ": a number of values that would be lost");
  }
  std::copy_n(block.GetRefBuffer(), CMediaPropertyDataEntry::kParameterRoom, copy->GetRefBuffer());
  return copy;
}

// The first block of the type becomes this one, or goes for null; all others stay.
bool ChangeBlock(CMediaPropertyData& data, MediaSetting setting, std::unique_ptr<CMediaPropertyDataEntry> changed) {
  const CMediaPropertyDataEntry* const former = FindBlock(data, setting);
  if (former == nullptr) return changed != nullptr && data.AddTail(changed.release());
  std::vector<std::unique_ptr<CMediaPropertyDataEntry>> blocks;
  for (CMediaPropertyDataEntry* const block : data.Entries()) {
    if (block == former) {
      if (changed) blocks.push_back(std::move(changed));
    } else {
      blocks.push_back(CopyOfBlock(*block));
    }
  }
  data.DeleteMediaProperty();
  for (std::unique_ptr<CMediaPropertyDataEntry>& block : blocks) data.AddTail(block.release());
  return true;
}

}  // namespace

std::optional<Words> Profile::Media(MediaSetting setting) const {
  const auto* const entry = state_->Payload<CMediaPropertyEntry>(EntryKind::kMedia);
  CMediaPropertyDataEntry* const block =
      entry != nullptr ? FindBlock(*entry->GetMediaPropertyData(), setting) : nullptr;
  return block != nullptr ? std::optional(ValuesOf(*block)) : std::nullopt;
}

void Profile::SetMedia(MediaSetting setting, Words values) {
  std::unique_ptr<CMediaPropertyDataEntry> block = NewBlock(static_cast<std::uint32_t>(setting), values);
  const auto entry = state_->EditableCopy<CMediaPropertyEntry>(EntryKind::kMedia);
  ChangeBlock(*entry->GetMediaPropertyData(), setting, std::move(block));
  state_->Store(*entry);
}

bool Profile::RemoveMedia(MediaSetting setting) {
  if (!Media(setting)) return false;
  const auto entry = state_->EditableCopy<CMediaPropertyEntry>(EntryKind::kMedia);
  ChangeBlock(*entry->GetMediaPropertyData(), setting, nullptr);
  state_->Store(*entry);
  return true;
}

// --- Print masks ---

namespace {

MaskBlock BlockOf(const tagWeftDatas& block) {
  return {
      block.BlockType, {block.Values, block.Values + block.ValueCount}, {block.Bytes, block.Bytes + block.ByteCount}};
}

std::vector<std::uint32_t> LayerColorsOf(const CMaskParameterDataEntry& entry) {
  std::vector<std::uint32_t> colors;
  for (std::uint32_t i = 0; i < entry.GetLayerColorCount(); ++i) {
    colors.push_back(entry.GetLeyerColor(static_cast<int>(i)));
  }
  return colors;
}

MaskRule RuleOf(const CMaskParameterDataEntry& entry) {
  MaskRule rule;
  rule.condition = {entry.GetPass(), entry.GetSpecialColorsetCode(), entry.GetPrintMethod(), LayerColorsOf(entry)};
  const std::uint8_t* const bytes = entry.GetParamDataBuffer();
  rule.parameters.assign(bytes, bytes + entry.GetParamDataSize());
  for (std::uint32_t i = 0; i < entry.GetUsePatternIDCount(); ++i) {
    rule.patterns.push_back(entry.GetUsePatternID(static_cast<int>(i)));
  }
  return rule;
}

std::unique_ptr<CMaskParameterDataEntry> NewRule(const MaskRule& rule, const MaskSet& masks) {
  auto entry = std::make_unique<CMaskParameterDataEntry>();
  entry->SetPass(rule.condition.pass);
  entry->SetSpecialColorsetCode(rule.condition.specialColorset);
  entry->SetPrintMethod(rule.condition.printMethod);
  for (const std::uint32_t color : rule.condition.layerColors) entry->AddLayerColor(color);
  for (const std::uint32_t id : rule.patterns) {
    if (!masks.patterns.contains(id)) Fail("masks: there is no pattern " + std::to_string(id));
    entry->AddUsePatternID(id);
  }
  entry->SetParamDataBuffer(rule.parameters.data(), static_cast<std::uint32_t>(rule.parameters.size()));
  return entry;
}

}  // namespace

std::vector<MaskBlock> Profile::MaskBlocks() const {
  std::vector<MaskBlock> blocks;
  const auto* const entry = state_->Payload<CMaskDownLoadEntry>(EntryKind::kMaskBlocks);
  if (entry == nullptr) return blocks;
  for (const tagWeftDatas& block : entry->GetWeftBlocks()) blocks.push_back(BlockOf(block));
  return blocks;
}

std::optional<MaskBlock> Profile::FindMaskBlock(std::uint32_t type) const {
  const auto* const entry = state_->Payload<CMaskDownLoadEntry>(EntryKind::kMaskBlocks);
  const tagWeftDatas* const block = entry != nullptr ? entry->GetWeftData(type) : nullptr;
  return block != nullptr ? std::optional(BlockOf(*block)) : std::nullopt;
}

void Profile::SetMaskBlocks(std::span<const MaskBlock> blocks) {
  constexpr std::uint32_t kGreatestType = 6;
  CMaskDownLoadEntry entry;
  entry.Initialize(static_cast<std::uint32_t>(blocks.size()));
  for (std::uint32_t i = 0; i < blocks.size(); ++i) {
    const MaskBlock& block = blocks[i];
    const std::string title = "mask block of type " + std::to_string(block.type);
    if (block.type == 0 || block.type > kGreatestType) Fail(title + ": no such type");
    entry.SetWeftDataParameter(i, block.type);
    tagWeftDatas& stored = entry.GetWeftBlocks()[i];
    if (block.values.size() != stored.ValueCount || block.bytes.size() != stored.ByteCount) {
      Fail(title + ": has " + std::to_string(stored.ValueCount) + " values and " + std::to_string(stored.ByteCount) +
           " bytes");
    }
    std::copy(block.values.begin(), block.values.end(), stored.Values);
    std::copy(block.bytes.begin(), block.bytes.end(), stored.Bytes);
  }
  state_->Store(entry);
}

std::optional<MaskSet> Profile::Masks() const {
  const auto* const entry = state_->Payload<CMaskDownloadIncludePatternEntry>(EntryKind::kMasks);
  if (entry == nullptr) return std::nullopt;
  MaskSet masks;
  for (const CMaskParameterDataEntry* const rule : entry->GetMaskParameterData()->Entries()) {
    masks.rules.push_back(RuleOf(*rule));
  }
  for (const CMaskPatternDataEntry* const pattern : entry->GetMaskPatternData()->Entries()) {
    const std::uint8_t* const bytes = pattern->GetMaskPatternBuffer();
    masks.patterns[pattern->GetMaskPatternID()].assign(bytes, bytes + pattern->GetMaskPatternSize());
  }
  return masks;
}

void Profile::SetMasks(const MaskSet& masks) {
  CMaskDownloadIncludePatternEntry entry;
  for (const MaskRule& rule : masks.rules) entry.GetMaskParameterData()->AddTail(NewRule(rule, masks).release());
  for (const auto& [id, bytes] : masks.patterns) {
    auto pattern = std::make_unique<CMaskPatternDataEntry>();
    pattern->SetMaskPatternID(id);
    pattern->SetMaskPatternBuffer(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    entry.GetMaskPatternData()->Add(pattern.release());
  }
  state_->Store(entry);
}

std::optional<std::vector<std::uint8_t>> Profile::PackedMask(const MaskCondition& condition) const {
  std::vector<std::uint32_t> colors = condition.layerColors;
  CError ignored;
  CProfileAccess& access = state_->Asked(EntryKind::kMasks);
  const auto pack = [&](std::uint8_t* buffer) {
    return access.GetMaskParameterAndPatternBuffer(buffer, condition.pass, condition.specialColorset,
                                                   condition.printMethod, static_cast<std::uint32_t>(colors.size()),
                                                   colors.data(), &ignored);
  };
  std::vector<std::uint8_t> packed(pack(nullptr));
  if (packed.empty() || pack(packed.data()) != packed.size()) return std::nullopt;
  return packed;
}

bool Profile::SupportsMaskVersion() const {
  CError ignored;
  return state_->Asked(EntryKind::kMaskBlocks).IsSupportWeftVersion(&ignored);
}

// --- Lamp ---

namespace {

constexpr std::size_t kLampHead = 2;     // head words of the pattern table, and of the block of a pattern
constexpr std::size_t kLampRecord = 12;  // words of a record before its splits
constexpr std::size_t kLampConditions = 2;
constexpr std::size_t kLampCount = 10;
constexpr std::size_t kLampSplits = 11;

std::int32_t CountOf(std::size_t count) { return static_cast<std::int32_t>(count); }

// Takes the words of a pattern apart. Splits that lead beyond them end where they do.
LampSettings SettingsOf(Words words, std::span<const std::int32_t> splitSizes) {
  LampSettings settings;
  const auto take = [&](std::size_t count) {
    const Words taken = words.first(std::min(count, words.size()));
    words = words.subspan(taken.size());
    return taken;
  };
  const Words head = take(settings.head.size());
  std::copy(head.begin(), head.end(), settings.head.begin());
  for (const std::int32_t size : splitSizes) {
    const Words split = take(static_cast<std::size_t>(std::max(size, 0)));
    settings.splits.emplace_back(split.begin(), split.end());
  }
  settings.rest.assign(words.begin(), words.end());
  return settings;
}

// The pattern table, its arrays taken apart by the rules of its form.
class LampTableView {
 public:
  explicit LampTableView(CLargeParameterDataEntry& table)
      : table_(table), records_(table.Arrays().Words(0)), blocks_(table.Arrays().Words(1)) {
    const std::size_t words = records_.size() - std::min(records_.size(), kLampHead);
    width_ = words / static_cast<std::size_t>(std::max(table.GetPatternCount(), 1));
  }

  // A count of records that the array has no room for says nothing.
  std::int32_t Count() const { return std::clamp(table_.GetPatternCount(), 0, CountOf(records_.size())); }

  // The blocks of the patterns before it take `offset` words.
  LampPattern At(std::int32_t pattern, std::size_t offset) const {
    LampPattern result;
    const std::size_t start = kLampHead + width_ * static_cast<std::size_t>(pattern) + kLampConditions;
    for (std::size_t i = 0; i < result.conditions.size(); ++i) {
      result.conditions[i] = Condition::Is(start + i < records_.size() ? records_[start + i] : 0);
    }
    std::vector<std::int32_t> splits;
    const std::int32_t most = CountOf(width_ - std::min(width_, kLampRecord));
    for (std::int32_t i = 0; i < std::min(table_.SeekPatternSplitCount(pattern), most); ++i) {
      splits.push_back(table_.SeekPatternSplitParamCount(pattern, i));
    }
    const Words rest = blocks_.subspan(std::min(offset, blocks_.size()));
    result.settings = SettingsOf(rest.first(std::min(rest.size(), Size(pattern))), splits);
    return result;
  }

  LampPattern Find(std::int32_t pattern) const {
    const std::int32_t* const first = table_.GetRefBufferByPatternIndex(pattern);
    return At(pattern, first != nullptr ? static_cast<std::size_t>(first - blocks_.data()) : blocks_.size());
  }

  // In one walk: a search for each block would take time by the square of their number.
  std::vector<LampPattern> All() const {
    std::vector<LampPattern> patterns;
    std::size_t offset = 0;
    for (std::int32_t i = 0; i < Count(); ++i) {
      patterns.push_back(At(i, offset));
      offset += Size(i);
    }
    return patterns;
  }

 private:
  std::size_t Size(std::int32_t pattern) const {
    return static_cast<std::size_t>(table_.SeekPatternParamCount(pattern));
  }

  CLargeParameterDataEntry& table_;
  Words records_;
  Words blocks_;
  std::size_t width_ = 0;
};

CLargeParameterDataEntry* LampTable(const CLargeParameterEntry* entry, std::uint32_t usedType) {
  if (entry == nullptr) return nullptr;
  return entry->GetLargeParameterData()->Entries().First(
      [=](const CLargeParameterDataEntry& table) { return table.GetUsedType() == usedType; });
}

LampSettings FixedSettings(CLargeParameterDataEntry& table) {
  const std::vector<std::int32_t> splits(CLargeParameterID001Entry::kSplitCount,
                                         CLargeParameterID001Entry::kSplitWords);
  return SettingsOf(table.Arrays().Words(0), splits);
}

void CheckLampPattern(const LampPattern& pattern) {
  for (std::size_t i = 0; i + 1 < pattern.conditions.size(); ++i) {
    // The first three know no hundreds, so that every number but -1 is itself.
    if (pattern.conditions[i].Value() < -1) Fail("lamp pattern: a condition below 0");
  }
}

std::vector<std::int32_t> BlockOf(const LampSettings& settings) {
  std::vector<std::int32_t> block(settings.head.begin(), settings.head.end());
  for (const std::vector<std::int32_t>& split : settings.splits) block.insert(block.end(), split.begin(), split.end());
  return block;
}

// Fills the two arrays of a table; `first` gets its byte length into word 0.
template <class Table>
void FillArrays(Table& table, std::vector<std::int32_t> first, const std::vector<std::int32_t>& second) {
  first[0] = CountOf(first.size() * sizeof(std::int32_t));
  const auto fill = [&](std::int64_t array, const std::vector<std::int32_t>& words) {
    std::copy(words.begin(), words.end(), table.Arrays().Words(array).begin());
  };
  fill(0, first);
  fill(1, second);
}

void CheckWordCount(std::size_t words, const char* what) {
  constexpr std::size_t kMostWords = INT32_MAX / sizeof(std::int32_t);
  if (words > kMostWords) Fail(std::string(what) + ": too large");
}

// Array 0 of the form of these patterns.
std::vector<std::int32_t> LampRecords(std::span<const LampPattern> patterns) {
  std::size_t splits = 0;
  for (const LampPattern& pattern : patterns) splits = std::max(splits, pattern.settings.splits.size());
  const std::size_t width = kLampRecord + splits;
  CheckWordCount(kLampHead + width * patterns.size(), "lamp table");
  std::vector<std::int32_t> words(kLampHead + width * patterns.size());
  std::int32_t* record = words.data() + kLampHead;
  for (const LampPattern& pattern : patterns) {
    CheckLampPattern(pattern);
    for (std::size_t i = 0; i < pattern.conditions.size(); ++i) {
      record[kLampConditions + i] = pattern.conditions[i].Value();
    }
    record[kLampCount] = CountOf(BlockOf(pattern.settings).size() - kLampHead);
    record[kLampSplits] = CountOf(pattern.settings.splits.size());
    for (std::size_t i = 0; i < pattern.settings.splits.size(); ++i) {
      record[kLampRecord + i] = CountOf(pattern.settings.splits[i].size());
    }
    record += width;
  }
  return words;
}

void StoreLamp(ProfileState& state, std::unique_ptr<CLargeParameterDataEntry> table) {
  CLargeParameterEntry entry;
  entry.GetLargeParameterData()->AddTail(table.release());
  state.Store(entry);
}

}  // namespace

std::vector<LampPattern> Profile::LampPatterns() const {
  const auto* const entry = state_->Payload<CLargeParameterEntry>(EntryKind::kLamp);
  CLargeParameterDataEntry* const table =
      LampTable(entry, kFixedTable) == nullptr ? LampTable(entry, kPatternTable) : nullptr;
  return table != nullptr ? LampTableView(*table).All() : std::vector<LampPattern>();
}

std::optional<LampSettings> Profile::Lamp(const std::array<std::int32_t, 4>& c) const {
  const auto* const entry = state_->Payload<CLargeParameterEntry>(EntryKind::kLamp);
  if (CLargeParameterDataEntry* const fixed = LampTable(entry, kFixedTable)) return FixedSettings(*fixed);
  CLargeParameterDataEntry* const table = LampTable(entry, kPatternTable);
  const std::int32_t pattern = table != nullptr ? table->SeekPatternIndexByCondition(c[0], c[1], c[2], c[3]) : -1;
  if (pattern == -1) return std::nullopt;
  return LampTableView(*table).Find(pattern).settings;
}

void Profile::SetLampPatterns(std::span<const LampPattern> patterns) {
  std::vector<std::int32_t> records = LampRecords(patterns);
  std::vector<std::int32_t> blocks;
  for (const LampPattern& pattern : patterns) {
    const std::vector<std::int32_t> block = BlockOf(pattern.settings);
    blocks.insert(blocks.end(), block.begin(), block.end());
    CheckWordCount(blocks.size(), "lamp table");
  }
  const std::uint32_t sizes[] = {static_cast<std::uint32_t>(records.size()), static_cast<std::uint32_t>(blocks.size())};
  std::unique_ptr<CLargeParameterDataEntry> table(
      CLargeParameterDataEntry::CreateLargeParameterDataEntry(kPatternTable, sizes));
  FillArrays(*table, std::move(records), blocks);
  table->SetPatternCount(CountOf(patterns.size()));
  StoreLamp(*state_, std::move(table));
}

void Profile::SetFixedLamp(const LampSettings& settings) {
  const std::vector<std::int32_t> block = BlockOf(settings);
  const auto isWhole = [](const std::vector<std::int32_t>& split) {
    return split.size() == static_cast<std::size_t>(CLargeParameterID001Entry::kSplitWords);
  };
  if (block.size() != CLargeParameterID001Entry::kWordCount ||
      !std::all_of(settings.splits.begin(), settings.splits.end(), isWhole)) {
    Fail("fixed lamp table: not two splits of 131 values");
  }
  std::unique_ptr<CLargeParameterDataEntry> table(
      CLargeParameterDataEntry::CreateLargeParameterDataEntry(kFixedTable, nullptr));
  std::copy(block.begin(), block.end(), table->Arrays().Words(0).begin());
  StoreLamp(*state_, std::move(table));
}

// --- Special colours ---

namespace {

constexpr std::size_t kColorHead = 4;  // head words of the patterns
constexpr std::size_t kColorSetCount = 2;
constexpr std::size_t kColorSetBytes = 3;
constexpr std::size_t kColorRecord = 5;   // words of a pattern before its slots
constexpr std::size_t kAdviceRecord = 5;  // words of a recommendation
constexpr std::uint32_t kColorTable = 1;

CSpecialColorInfoDataEntry* ColorTable(const CSpecialColorInfoEntry* entry) {
  if (entry == nullptr) return nullptr;
  return entry->GetSpecialColorInfoData()->Entries().First(
      [](const CSpecialColorInfoDataEntry& table) { return table.GetUsedType() == kColorTable; });
}

// A record of an array of `count` equal ones behind `head` words; empty where it has no room.
Words RecordAt(Words array, std::size_t head, std::int32_t count, std::int32_t index) {
  if (array.size() < head || count <= 0) return {};
  const std::size_t width = (array.size() - head) / static_cast<std::size_t>(count);
  return array.subspan(head + width * static_cast<std::size_t>(index), width);
}

std::int32_t WordAt(Words words, std::size_t index) { return index < words.size() ? words[index] : 0; }

// Stored levels count from 1, and a hostile one must not overflow.
std::int32_t LevelOf(std::int32_t stored) { return static_cast<std::int32_t>(static_cast<std::uint32_t>(stored) - 1); }

SpecialColorPattern PatternAt(CSpecialColorInfoDataEntry& table, std::int32_t count, std::int32_t index) {
  SpecialColorPattern pattern;
  const Words array = table.Arrays().Words(0);
  const Words record = RecordAt(array, kColorHead, count, index);
  for (std::size_t i = 0; i < pattern.conditions.size(); ++i) {
    pattern.conditions[i] = Condition::Is(WordAt(record, 2 + i));
  }
  // The number of slots of the first record holds for all.
  const std::int32_t slots = WordAt(RecordAt(array, kColorHead, count, 0), 4);
  for (std::size_t i = 0; i < static_cast<std::size_t>(std::max(slots, 0)) && kColorRecord + i < record.size(); ++i) {
    if (record[kColorRecord + i] != 0) pattern.colors.push_back(Condition::Is(record[kColorRecord + i]));
  }
  pattern.level = LevelOf(table.SeekPatternRecommendLevel(index));
  pattern.density = table.SeekPatternRecommendDensity(index);
  const std::int32_t set = table.SeekPatternVDCurveIndex(index);
  if (set >= 1) pattern.curveSet = static_cast<std::size_t>(set) - 1;
  return pattern;
}

// Codes ascending, then any.
std::vector<std::int32_t> SlotsOf(const SpecialColorPattern& pattern) {
  std::vector<std::int32_t> slots;
  for (const Condition color : pattern.colors) {
    if (color.Value() < -1 || color.Value() == 0) Fail("special colours: no ink has the code of a colour");
    slots.push_back(color.Value());
  }
  std::sort(slots.begin(), slots.end(), [](std::int32_t a, std::int32_t b) {
    return static_cast<std::uint32_t>(a) < static_cast<std::uint32_t>(b);
  });
  return slots;
}

// Array 0 of the form, without what it says of the curve sets.
std::vector<std::int32_t> PatternWords(const SpecialColorTable& table) {
  std::size_t slots = 0;
  for (const SpecialColorPattern& pattern : table.patterns) slots = std::max(slots, pattern.colors.size());
  const std::size_t width = kColorRecord + slots;
  CheckWordCount(kColorHead + width * table.patterns.size(), "special colours");
  std::vector<std::int32_t> words(kColorHead + width * table.patterns.size());
  std::int32_t* record = words.data() + kColorHead;
  for (const SpecialColorPattern& pattern : table.patterns) {
    record[2] = pattern.conditions[0].Value();
    record[3] = pattern.conditions[1].Value();
    record[4] = CountOf(slots);
    const std::vector<std::int32_t> colors = SlotsOf(pattern);
    std::copy(colors.begin(), colors.end(), record + kColorRecord);
    record += width;
  }
  return words;
}

// Array 1 of the form.
std::vector<std::int32_t> AdviceWords(const SpecialColorTable& table) {
  std::vector<std::int32_t> words(kAdviceRecord * table.patterns.size());
  std::int32_t* record = words.data();
  for (const SpecialColorPattern& pattern : table.patterns) {
    if (pattern.curveSet && *pattern.curveSet >= table.curveSets.size()) Fail("special colours: no such curve set");
    if (pattern.level == INT32_MAX) Fail("special colours: level too great");
    record[2] = pattern.level + 1;
    record[3] = pattern.density;
    record[4] = pattern.curveSet ? CountOf(*pattern.curveSet) + 1 : 0;
    record += kAdviceRecord;
  }
  return words;
}

std::unique_ptr<CCurveData> NewCurveSet(const std::vector<Curve>& curves) {
  const auto bytes = [](const Curve& curve) {
    return std::visit([](auto samples) { return samples.size_bytes(); }, curve.samples);
  };
  // A reader finds the end of a set by its first curve.
  for (const Curve& curve : curves) {
    if (bytes(curve) != bytes(curves.front())) Fail("special colours: curves of a set differ in their size");
  }
  auto set = std::make_unique<CCurveData>();
  FillCurves(*set, curves);
  return set;
}

}  // namespace

std::optional<std::int32_t> Profile::RecommendedDensity(const std::array<std::int32_t, 2>& conditions,
                                                        std::int32_t ink) const {
  CError ignored;
  std::int32_t density = 0;
  if (!state_->Asked(EntryKind::kSpecialColors)
           .GetSpecialColorRecommendDensity(density, conditions[0], conditions[1], ink, &ignored))
    return {};
  return density;
}

std::optional<std::int32_t> Profile::RecommendedLevel(const std::array<std::int32_t, 2>& conditions,
                                                      std::span<const std::int32_t> colors) const {
  std::vector<std::int32_t> wanted(colors.begin(), colors.end());
  CError ignored;
  std::int32_t level = 0;
  if (!state_->Asked(EntryKind::kSpecialColors)
           .GetSpecialColorRecommendLevel(level, conditions[0], conditions[1], CountOf(wanted.size()), wanted.data(),
                                          &ignored)) {
    return {};
  }
  return level;
}

std::optional<Samples> Profile::VariableDotCurve(const std::array<std::int32_t, 2>& conditions, std::int32_t ink,
                                                 std::int32_t extendInfo) const {
  std::int32_t size = 0;
  std::int32_t dataType = 0;
  CError ignored;
  const void* const samples =
      state_->Asked(EntryKind::kSpecialColors)
          .GetSpecialColorVDCurve(size, dataType, extendInfo, conditions[0], conditions[1], ink, &ignored);
  return SamplesAt(samples, size, dataType);
}

std::optional<SpecialColorTable> Profile::SpecialColors() const {
  const auto* const entry = state_->Payload<CSpecialColorInfoEntry>(EntryKind::kSpecialColors);
  CSpecialColorInfoDataEntry* const table = ColorTable(entry);
  if (table == nullptr) return std::nullopt;
  SpecialColorTable result;
  result.profileColorType = entry->GetSpecialColorInfoData()->GetProfileColorType();
  // A count of records that the array has no room for says nothing.
  const std::int32_t count = std::clamp(table->GetPatternCount(), 0, CountOf(table->Arrays().Words(0).size()));
  for (std::int32_t i = 0; i < count; ++i) result.patterns.push_back(PatternAt(*table, count, i));
  for (const CCurveData* const set : table->CurvesVD()) result.curveSets.push_back(CurvesOf(*set));
  return result;
}

void Profile::SetSpecialColors(const SpecialColorTable& table) {
  std::vector<std::unique_ptr<CCurveData>> curveSets;
  std::uint64_t curveBytes = 0;
  for (const std::vector<Curve>& curves : table.curveSets) {
    CCurveData& set = *curveSets.emplace_back(NewCurveSet(curves));
    curveBytes += SizeOf([&](CNvxFile& file) { return CCurveFile().SaveFile(file, &set); }).value_or(0);
  }
  CheckWordCount(curveBytes / sizeof(std::int32_t) + 1, "special colours");
  std::vector<std::int32_t> patterns = PatternWords(table);
  patterns[kColorSetCount] = CountOf(curveSets.size());
  patterns[kColorSetBytes] = CountOf(curveBytes);
  const std::vector<std::int32_t> advice = AdviceWords(table);

  const std::uint32_t sizes[] = {static_cast<std::uint32_t>(patterns.size()),
                                 static_cast<std::uint32_t>(advice.size())};
  auto stored = std::make_unique<CSpecialColorInfoDataEntry>();
  stored->SetUsedType(kColorTable, sizes);
  FillArrays(*stored, std::move(patterns), advice);
  stored->SetPatternCount(CountOf(table.patterns.size()));
  for (std::unique_ptr<CCurveData>& set : curveSets) stored->AddTailVD(set.release());
  CSpecialColorInfoEntry entry;
  entry.GetSpecialColorInfoData()->SetProfileColorType(table.profileColorType);
  entry.GetSpecialColorInfoData()->AddTail(stored.release());
  state_->Store(entry);
}

}  // namespace nvx
