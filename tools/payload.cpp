#include "payload.h"

#include "loading.h"

#include <nvxprofile/text_conversion.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace nvx::tool {
namespace {

constexpr std::string_view kBase64 = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

bool Node::Has(const char* key) const { return value_->is_object() && value_->contains(key); }

Node Node::At(const char* key) const {
  if (!value_->is_object()) Fail("an object is expected");
  const auto found = value_->find(key);
  if (found == value_->end()) Fail("the key \"" + std::string(key) + "\" is missing");
  if (log_ != nullptr) log_->members.insert(&*found);
  return Node(*found, place_ + "/" + key, log_);
}

void Node::PassOver(const char* key) const {
  if (log_ != nullptr && Has(key)) log_->passedOver.insert(&value_->at(key));
}

void Node::RefuseUnread() const {
  if (value_->is_array()) {
    for (const Node& item : Items()) item.RefuseUnread();
  } else if (value_->is_object()) {
    for (const auto& item : value_->items()) {
      if (log_->passedOver.contains(&item.value())) continue;
      const Node member(item.value(), place_ + "/" + item.key(), log_);
      if (!log_->members.contains(&item.value())) member.Fail("nothing reads this key here");
      member.RefuseUnread();
    }
  }
}

std::vector<Node> Node::Items() const {
  if (!value_->is_array()) Fail("an array is expected");
  std::vector<Node> items;
  items.reserve(value_->size());
  for (const Json& item : *value_) items.emplace_back(item, place_ + "/" + std::to_string(items.size()), log_);
  return items;
}

Node Node::Item(std::size_t index) const { return Node(value_->at(index), place_ + "/" + std::to_string(index), log_); }

std::int64_t Node::Integer(std::int64_t least, std::int64_t greatest) const {
  if (!value_->is_number_integer()) Fail("a whole number is expected");
  const bool tooLarge =
      value_->is_number_unsigned() && value_->get<std::uint64_t>() > static_cast<std::uint64_t>(INT64_MAX);
  const std::int64_t number = tooLarge ? INT64_MAX : value_->get<std::int64_t>();
  if (tooLarge || number < least || number > greatest) {
    Fail("the number must lie between " + std::to_string(least) + " and " + std::to_string(greatest));
  }
  return number;
}

bool Node::Bool() const {
  if (!value_->is_boolean()) Fail("true or false is expected");
  return value_->get<bool>();
}

std::string Node::Text(std::size_t longest) const {
  if (!value_->is_string()) Fail("a text is expected");
  std::string text = value_->get<std::string>();
  if (text.size() > longest) Fail("the text is longer than " + std::to_string(longest) + " bytes");
  return text;
}

std::vector<std::uint8_t> Node::Base64() const {
  const std::string text = Text(SIZE_MAX);
  std::vector<std::uint8_t> bytes;
  bytes.reserve(text.size() / 4 * 3);
  std::uint32_t bits = 0;
  std::size_t digits = 0;
  std::size_t padding = 0;
  for (const char c : text) {
    const std::size_t value = kBase64.find(c);
    if (c == '=' && padding < 2) {
      ++padding;
    } else if (value == kBase64.npos || padding != 0) {
      Fail("base64 is expected");
    } else {
      bits = bits << 6 | static_cast<std::uint32_t>(value);
      if (++digits % 4 == 0) {
        for (const int shift : {16, 8, 0}) bytes.push_back(static_cast<std::uint8_t>(bits >> shift));
        bits = 0;
      }
    }
  }
  if ((digits + padding) % 4 != 0) Fail("base64 is expected");
  if (digits % 4 == 2) bytes.push_back(static_cast<std::uint8_t>(bits >> 4));
  if (digits % 4 == 3) {
    bytes.push_back(static_cast<std::uint8_t>(bits >> 10));
    bytes.push_back(static_cast<std::uint8_t>(bits >> 2));
  }
  return bytes;
}

void Node::Fail(const std::string& why) const { throw DocumentError(place_, why); }

std::string ToBase64(const std::uint8_t* bytes, std::size_t size) {
  std::string text;
  text.reserve((size + 2) / 3 * 4);
  for (std::size_t i = 0; i < size; i += 3) {
    const std::size_t count = std::min<std::size_t>(3, size - i);
    std::uint32_t bits = 0;
    for (std::size_t j = 0; j < 3; ++j) bits = bits << 8 | (j < count ? bytes[i + j] : 0u);
    for (std::size_t j = 0; j < 4; ++j) text += j <= count ? kBase64[bits >> (18 - 6 * j) & 0x3F] : '=';
  }
  return text;
}

EntryPointer MakeEntry(std::uint32_t usedType) {
  return EntryPointer(CProfileDataEntry::CreateDataEntry(static_cast<CProfileDataEntry::UsedType>(usedType)));
}

void SetBytes(CProfileDataEntry& entry, std::span<const std::uint8_t> bytes) {
  std::uint8_t* const buffer = entry.GetBuffer(static_cast<std::uint32_t>(bytes.size()));
  if (buffer != nullptr) std::memcpy(buffer, bytes.data(), bytes.size());
  entry.BufferToData();
}

std::uint32_t UsedTypeFromJson(const Node& node) {
  node.PassOver("class");
  if (!node.Has("type")) return node.At("usedType").U32();
  const Node type = node.At("type");
  const std::uint32_t named = UsedTypeByName(type.Text(64));
  if (named == 0) type.Fail("no entry has that name");
  if (node.Has("usedType") && node.At("usedType").U32() != named) {
    type.Fail("the name is that of the used type " + std::to_string(named));
  }
  return named;
}

Json NarrowToJson(const std::string& text) {
  const std::u16string wide = AnsiToWide(text);
  if (WideToAnsi(wide) == text && Utf8ToWide(WideToUtf8(wide)) == wide) return WideToUtf8(wide);
  return {{"base64", ToBase64(reinterpret_cast<const std::uint8_t*>(text.data()), text.size())}};
}

std::string NarrowFromJson(const Node& node, std::size_t longest) {
  std::string text;
  if (node.Has("base64")) {
    const std::vector<std::uint8_t> bytes = node.At("base64").Base64();
    text.assign(bytes.begin(), bytes.end());
  } else {
    text = WideToAnsi(Utf8ToWide(node.Text(SIZE_MAX)));
  }
  if (text.size() > longest) node.Fail("the text is longer than " + std::to_string(longest) + " bytes");
  return text;
}

Json WideToJson(const std::u16string& text) {
  std::string utf8 = WideToUtf8(text);
  if (Utf8ToWide(utf8) == text) return utf8;
  Json units = Json::array();
  for (const char16_t unit : text) units.push_back(static_cast<std::uint16_t>(unit));
  return {{"utf16", std::move(units)}};
}

std::u16string WideFromJson(const Node& node, std::size_t longest) {
  std::u16string text;
  if (node.Has("utf16")) {
    for (const Node& unit : node.At("utf16").Items()) text += static_cast<char16_t>(unit.Integer(0, 0xFFFF));
  } else {
    text = Utf8ToWide(node.Text(SIZE_MAX));
  }
  if (text.size() > longest) node.Fail("the text is longer than " + std::to_string(longest) + " characters");
  return text;
}

}  // namespace nvx::tool
