#include "report/page.h"

#include "report/embedded.h"

#include <charconv>
#include <utility>

namespace nvx::tool {
namespace {

// What the index line of a profile may take, with its elements around.
constexpr std::size_t kIndexLineBytes = 1200;

// JSON for the inside of a script element, where nothing of it may end the element: no "<" stands in it as itself.
std::string Embeddable(const Json& json) {
  const std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    if (c == '<') {
      escaped += "\\u003c";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

std::string DataElement(const std::string& id, const std::string& json) {
  return R"(<script type="application/json" id=")" + id + "\">" + json + "</script>\n";
}

// A file's hash as a Content-Security-Policy names it.
std::string HashSource(const Embedded& embedded) {
  std::vector<std::uint8_t> digest;
  for (std::size_t i = 0; i + 1 < embedded.sha256.size(); i += 2) {
    std::uint8_t byte = 0;
    std::from_chars(embedded.sha256.data() + i, embedded.sha256.data() + i + 2, byte, 16);
    digest.push_back(byte);
  }
  return "'sha256-" + ToBase64(digest.data(), digest.size()) + "'";
}

std::string Policy() {
  return "default-src 'none'; script-src " + HashSource(kChartLibrary) + " " + HashSource(kPageScript) +
         "; style-src " + HashSource(kPageStyle) +
         "; base-uri 'none'; form-action 'none'; require-trusted-types-for 'script'";
}

// The template with each {{name}} replaced.
std::string Fill(std::string_view text, const std::vector<std::pair<std::string_view, std::string_view>>& values) {
  std::string filled;
  while (!text.empty()) {
    const std::size_t open = text.find("{{");
    filled += text.substr(0, open);
    if (open == text.npos) break;
    const std::size_t close = text.find("}}", open);
    const std::string_view name = text.substr(open + 2, close - open - 2);
    for (const auto& [key, value] : values) {
      if (key == name) filled += value;
    }
    text.remove_prefix(close + 2);
  }
  return filled;
}

}  // namespace

bool CanMakePages() { return !kChartLibrary.text.empty(); }

std::size_t Page::ShareOfNext() const {
  const std::size_t frame = kPageTemplate.text.size() + kPageStyle.text.size() + kPageScript.text.size() +
                            kChartLibrary.text.size() + expected_ * kIndexLineBytes;
  if (kMostPageBytes <= frame + used_ || expected_ <= index_.size()) return 0;
  return (kMostPageBytes - frame - used_) / (expected_ - index_.size());
}

void Page::Add(Json indexLine, const std::vector<ProfilePart>& parts) {
  const std::size_t share = ShareOfNext();
  std::string text = "{";
  Json leftOut = Json::array();
  for (const ProfilePart& part : parts) {
    const std::string content = Embeddable(part.content);
    if (text.size() + content.size() > share) {
      leftOut.push_back({{"part", part.key}, {"bytes", content.size()}});
      continue;
    }
    text += "\"" + part.key + "\":" + content + ",\n";
  }
  text += "\"leftOut\":" + Embeddable(leftOut) + "}";
  used_ += text.size();
  index_.push_back(std::move(indexLine));
  profiles_.push_back(std::move(text));
}

void Page::AddFailure(const std::string& path, const std::string& message) {
  index_.push_back({{"path", path}, {"file", FileNameOf(path)}, {"failure", message}});
  profiles_.emplace_back();
}

std::string Page::Finish() const {
  std::string data = DataElement("index", Embeddable({{"compare", compare_}, {"profiles", index_}}));
  for (std::size_t i = 0; i < profiles_.size(); ++i) {
    if (!profiles_[i].empty()) data += DataElement("profile-" + std::to_string(i), profiles_[i]);
  }
  return Fill(kPageTemplate.text, {{"policy", Policy()},
                                   {"style", kPageStyle.text},
                                   {"data", data},
                                   {"charts", kChartLibrary.text},
                                   {"script", kPageScript.text}});
}

}  // namespace nvx::tool
