#include "adjust/adjust_syntax.h"
#include "adjust/initialize.h"
#include "core/report.h"
#include "core/text.h"
#include "platform/locale.h"

#include <nvxprofile/adjust_file.h>

#include <numeric>

namespace {

constexpr const char* kSource = "AdjustFileAnalyzer";

// Converts the items of a list into the elements of an array, as many as it has room for.
template <class T>
void StoreList(std::string_view text, T* values, std::size_t room) {
  std::size_t count = 0;
  nvx::adjust::ForEachItem(text, [&](std::string_view item) {
    if (count == room) return false;
    values[count++] = static_cast<T>(nvx::adjust::ParseNumber(item).value);
    return true;
  });
}

// Hands lines on until the table of lines is full.
template <class Take>
auto UpToLimit(Take take) {
  return [take, lines = std::size_t{0}](std::string_view line, std::size_t) mutable {
    take(line);
    return ++lines < nvx::adjust::kMaxLines;
  };
}

}  // namespace

CAdjustFileAnalyzer::~CAdjustFileAnalyzer() = default;

bool CAdjustFileAnalyzer::LoadFile(const char16_t* path, CError& error) {
  nvx::adjust::LineCutter cutter;
  const std::u16string_view name = nvx::TextOf(path);
  return nvx::adjust::CutFile(name, cutter, UpToLimit([this](std::string_view line) { TakeLine(line); })) ||
         nvx::adjust::FailToOpen(name, error);
}

void CAdjustFileAnalyzer::LoadText(std::string_view text) {
  nvx::adjust::LineCutter().Feed(text, UpToLimit([this](std::string_view line) { TakeLine(line); }));
}

void CAdjustFileAnalyzer::TakeLine(std::string_view line) {
  if (nvx::adjust::IsComment(line)) return;
  const auto [key, value] = nvx::adjust::Split(line);
  values_.insert_or_assign(std::string(key), std::string(value));
}

const std::string* CAdjustFileAnalyzer::Find(const char* key, CError& error) {
  const std::string& value = values_[key];
  if (!value.empty()) return &value;
  nvx::Fail(&error, nvx::kReasonNoKey, kSource,
            nvx::Message(u"Adjust file:Parameter none (key = %s)").Put(nvx::platform::AnsiToWide(key)));
  return nullptr;
}

bool CAdjustFileAnalyzer::GetIntValue(const char* key, int* value, CError& error) {
  const std::string* const text = Find(key, error);
  if (text == nullptr) return false;
  *value = nvx::adjust::ParseNumber(*text).value;
  return true;
}

bool CAdjustFileAnalyzer::GetBoolValue(const char* key, bool* value, CError& error) {
  const std::string* const text = Find(key, error);
  if (text == nullptr) return false;
  if (*text != "true" && *text != "false") {
    return nvx::Fail(&error, nvx::kReasonNoKey, kSource,
                     nvx::Message(u"Adjust file:Parameter none (key = %s)").Put(nvx::platform::AnsiToWide(key)));
  }
  *value = *text == "true";
  return true;
}

bool CAdjustFileAnalyzer::GetCurve8(const char* key, std::uint8_t* curve, CError& error) {
  const std::string* const text = Find(key, error);
  if (text != nullptr) StoreList(*text, curve, nvx::adjust::kCurveLength);
  return text != nullptr;
}

bool CAdjustFileAnalyzer::GetCurve16(const char* key, std::uint16_t* curve, CError& error) {
  const std::string* const text = Find(key, error);
  if (text != nullptr) StoreList(*text, curve, nvx::adjust::kCurveLength);
  return text != nullptr;
}

bool CAdjustFileAnalyzer::GetIntList(const char* key, int* values, int count, CError& error) {
  const std::string* const text = Find(key, error);
  if (text != nullptr) StoreList(*text, values, static_cast<std::size_t>(std::max(count, 0)));
  return text != nullptr;
}

bool CAdjustFileAnalyzer::GetCurves8(const char* keyPart, std::uint8_t* curves, int count, CError& error) {
  int read = 0;
  for (const auto& [key, value] : values_) {
    if (read >= count) return true;
    if (key.find(keyPart) == key.npos) continue;
    if (!GetCurve8(key.c_str(), curves, error)) return false;
    curves += nvx::adjust::kCurveLength;
    ++read;
  }
  for (; read < count; ++read, curves += nvx::adjust::kCurveLength) {
    std::iota(curves, curves + nvx::adjust::kCurveLength, std::uint8_t{0});
  }
  return true;
}
