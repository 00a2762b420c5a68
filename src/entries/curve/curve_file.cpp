// Loading and saving a curve set.
#include "core/replacing_file.h"
#include "entries/curve/curve_form.h"

#include <algorithm>
#include <bit>
#include <memory>

using nvx::CurveRecord;

namespace {

// Samples are native numbers in memory and little-endian in the form; bytes are bytes.
bool WriteSamples(CNvxFile& file, CCurveDataEntry& curve) {
  if constexpr (std::endian::native != std::endian::little) {
    if (dynamic_cast<CCurveDataEntry16*>(&curve) != nullptr) {
      std::vector<std::uint8_t> bytes(curve.GetSize());
      nvx::StoreLittleRun(bytes.data(), static_cast<const std::uint16_t*>(curve.GetRefBuffer()), curve.GetCount());
      return nvx::WriteExact(file, bytes.data(), curve.GetSize());
    }
  }
  return nvx::WriteExact(file, curve.GetRefBuffer(), curve.GetSize());
}

// The curve of a record, with the samples of the data block at which the stream stands; null for a broken rule.
std::unique_ptr<CCurveDataEntry> LoadCurve(CNvxFile& file, const CurveRecord& record) {
  const nvx::StreamBlock signature(file, nvx::kCurveBlockMagicSize);
  const char* fault = "curve data block: cut short";
  if (signature.IsWhole()) {
    fault = nvx::CurveFault(record, nvx::LoadLittle<std::uint32_t>(signature.Data()), nvx::Remaining(file));
  }
  if (fault == nullptr) {
    const nvx::StreamBlock samples(file, record.DataSize);
    std::unique_ptr<CCurveDataEntry> curve = nvx::MakeCurve(record);
    if (samples.IsWhole()) {
      nvx::ApplyRecord(record, *curve);
      nvx::LoadSamples(record, samples.Data(), curve->GetBuffer(record.DataSize));
      return curve;
    }
    fault = "curve data block: cut short";
  }
  nvx::Refuse(file, fault);
  return nullptr;
}

}  // namespace

CCurveFile* CCurveFile::CreateCurveFile(CNvxFile& file) {
  auto form = std::make_unique<CCurveFile>();
  return form->LoadHeader(file) ? form.release() : nullptr;
}

CCurveFile::~CCurveFile() = default;

void CCurveFile::DeleteEntryHeaderArray() { entryHeaders_.clear(); }

bool CCurveFile::LoadHeader(CNvxFile& file) {
  if (!nvx::ReadCurveSetHeader(file, header_)) return false;
  headerRead_ = true;
  return true;
}

bool CCurveFile::LoadEntryHeader(CNvxFile& file) {
  DeleteEntryHeaderArray();
  nvx::CurveTable table;
  if (!table.Read(file, header_.EntryCount)) return false;
  entryHeaders_ = table.All();
  return true;
}

bool CCurveFile::LoadFile(CNvxFile& file, CCurveData* data) {
  if (data == nullptr || (!headerRead_ && !LoadHeader(file))) return false;
  data->SetUsedType(header_.UsedType);
  if (!LoadEntryHeader(file)) return false;
  for (const CurveRecord& record : entryHeaders_) {
    std::unique_ptr<CCurveDataEntry> curve = LoadCurve(file, record);
    if (!curve) return false;
    data->AddTail(curve.release());
  }
  return true;
}

bool CCurveFile::SaveFile(CNvxFile& file, CCurveData* data) {
  if (data == nullptr) return false;
  const auto& curves = data->Curves();
  if (!std::all_of(curves.begin(), curves.end(), nvx::HasKnownType)) return false;
  tagCurveFileHeader header;
  header.UsedType = data->GetUsedType();
  header.EntryCount = static_cast<std::uint32_t>(curves.Count());
  const auto recordOf = [&](CCurveDataEntry& curve) {
    CurveRecord record;
    EntryToTag(&curve, &record);
    return record;
  };
  return nvx::WriteForm(file, header, curves, recordOf, [&](CCurveDataEntry& curve) {
    return nvx::WriteMagic(file, nvx::kCurveBlockMagic) && WriteSamples(file, curve);
  });
}

bool CCurveFile::LoadFile(const char16_t* path, CCurveData* data) {
  CNvxFile file;
  return file.Open(path, nvx::kGenericRead, nvx::kShareRead, nvx::kOpenExisting) && LoadFile(file, data);
}

bool CCurveFile::SaveFile(const char16_t* path, CCurveData* data) {
  return nvx::SaveByReplacing(path, [&](CNvxFile& file) { return SaveFile(file, data); });
}

std::int32_t CCurveFile::GetCurveDataSize() const {
  if (!headerRead_) return 0;
  std::uint32_t size = header_.HeaderSize;
  for (const CurveRecord& record : entryHeaders_)
    size += record.HeaderSize + record.DataSize + nvx::kCurveBlockMagicSize;
  return static_cast<std::int32_t>(size);
}

void CCurveFile::EntryToTag(CCurveDataEntry* entry, tagCurveEntryHeader* header) { nvx::FillRecord(*entry, *header); }

void CCurveFile::TagToEntry(const tagCurveEntryHeader* header, CCurveDataEntry* entry) {
  nvx::ApplyRecord(*header, *entry);
}
