#include "core/report.h"

#include "core/text.h"

#include <utility>

namespace nvx {

void Message::CopyToPlace() {
  const std::size_t place = rest_.find(u'%');
  text_ += rest_.substr(0, place);
  rest_.remove_prefix(place == rest_.npos ? rest_.size() : std::min(place + 2, rest_.size()));
}

Message& Message::Put(std::u16string_view text) {
  CopyToPlace();
  text_ += text;
  return *this;
}

Message& Message::Put(std::int32_t number) { return Put(Widen(std::to_string(number))); }

std::u16string Message::Take() {
  text_ += rest_;
  rest_ = {};
  return std::move(text_);
}

}  // namespace nvx
