#include "core/stream.h"

namespace nvx {

bool SeekTo(CNvxFile& file, std::uint64_t offset) {
  if (offset > file.GetLength()) return false;
  const auto target = static_cast<std::uint32_t>(offset);
  return file.Seek(target, kFromBegin) == target;
}

bool RefuseAt(CNvxFile& file, std::uint64_t offset, std::string_view rule) {
  if (Diagnosis* const diagnosis = file.GetDiagnosis()) diagnosis->Report(Severity::kError, offset, rule);
  return false;
}

bool Refuse(CNvxFile& file, std::string_view rule) {
  return file.GetDiagnosis() != nullptr && RefuseAt(file, file.GetPosition(), rule);
}

void Warn(CNvxFile& file, std::uint64_t offset, std::string_view rule) {
  if (Diagnosis* const diagnosis = file.GetDiagnosis()) diagnosis->Report(Severity::kWarning, offset, rule);
}

void PassOverAt(CNvxFile& file, std::uint64_t offset, std::string_view rule) {
  file.NotePassedOver();
  Warn(file, offset, rule);
}

void PassOver(CNvxFile& file, std::string_view rule) { PassOverAt(file, file.GetPosition(), rule); }

StreamBlock::StreamBlock(CNvxFile& file, std::uint32_t count) {
  if (!Holds(file, count, 1)) return;
  if (auto* const memory = dynamic_cast<CNvxMemFile*>(&file)) {
    data_ = memory->Buffer + memory->Position;
    memory->Position += count;
    whole_ = true;
    return;
  }
  copy_ = std::make_unique_for_overwrite<std::uint8_t[]>(count);
  whole_ = ReadExact(file, copy_.get(), count);
  if (whole_) data_ = copy_.get();
}

bool TakeBytes(CNvxFile& file, std::uint32_t count, SharedBytes& bytes) {
  if (!Holds(file, count, 1)) return false;
  if (count == 0) {
    bytes = SharedBytes();
    return true;
  }
  if (auto* const shared = dynamic_cast<SharedStream*>(&file)) {
    const bool asView = shared->taking_ == SharedStream::Taking::kViews;
    bytes = asView ? shared->bytes_.View(shared->Position, count) : shared->bytes_.Part(shared->Position, count);
    shared->Position += count;
    return true;
  }
  bytes = SharedBytes::Allocate(count);
  return ReadExact(file, bytes.Writable(), count);
}

}  // namespace nvx
