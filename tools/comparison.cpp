#include "comparison.h"

#include "curve_difference.h"
#include "icc_facts.h"
#include "loading.h"
#include "lut_nodes.h"

#include <nvxprofile/calibration.h>
#include <nvxprofile/curve.h>
#include <nvxprofile/icc_header.h>
#include <nvxprofile/lut.h>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <utility>

namespace nvx::tool {
namespace {

constexpr const char* kDiffers = "differs";
constexpr const char* kOnlyInA = "only in A";
constexpr const char* kOnlyInB = "only in B";

class Comparison {
 public:
  std::vector<Difference> Take() { return std::move(differences_); }

  void Profiles(CProfileAccess& a, CProfileAccess& b) {
    Values("format", a.GetProfileLoadFormat(), b.GetProfileLoadFormat());
    Records(*a.GetProfileInfo(), *b.GetProfileInfo());
    Routes(*a.GetProfileData(), *b.GetProfileData());
    Keyed("", EntriesByType(*a.GetProfileData()), EntriesByType(*b.GetProfileData()),
          [this](const std::string& place, CProfileDataEntry* x, CProfileDataEntry* y) { Entries(place, *x, *y); });
  }

 private:
  void Add(const std::string& place, const char* what, Json a = nullptr, Json b = nullptr) {
    differences_.push_back({place, what, std::move(a), std::move(b), nullptr, nullptr, {}});
  }

  void AddSamples(const std::string& place, Json greatest, double percent, std::string at) {
    differences_.push_back({place, kDiffers, nullptr, nullptr, std::move(greatest), percent, std::move(at)});
  }

  void Values(const std::string& place, const Json& a, const Json& b) {
    if (a != b) Add(place, kDiffers, a, b);
  }

  // Two maps of the same things by name: what stands in one alone, and compare(place, a, b) for what stands in both.
  template <class Map, class Both>
  void Keyed(const std::string& prefix, const Map& a, const Map& b, Both compare) {
    for (const auto& [name, item] : a) {
      const auto other = b.find(name);
      if (other == b.end()) {
        Add(prefix + name, kOnlyInA);
      } else {
        compare(prefix + name, item, other->second);
      }
    }
    for (const auto& item : b) {
      if (a.find(item.first) == a.end()) Add(prefix + item.first, kOnlyInB);
    }
  }

  void Documents(const std::string& place, const Json& a, const Json& b) {
    const auto flat = [](const Json& json) {
      std::map<std::string, Json> values;
      const Json flattened = json.flatten();
      for (const auto& [key, value] : flattened.items()) values[key] = value;
      return values;
    };
    Keyed(place, flat(a), flat(b), [this](const std::string& at, const Json& x, const Json& y) { Values(at, x, y); });
  }

  void Records(const _tagDeviceProfileInfo& a, const _tagDeviceProfileInfo& b) {
    Json left = RecordToJson(a);
    Json right = RecordToJson(b);
    // Where a file lies says nothing of the profile in it.
    for (Json* const record : {&left, &right}) {
      record->erase("FileName");
      record->erase("FullPath");
    }
    Documents("record", left, right);
  }

  static std::map<std::string, CProfileDataEntry*> EntriesByType(CProfileData& data) {
    std::map<std::string, CProfileDataEntry*> entries;
    bool more = data.GetEntryStartPos();
    while (more) {
      CProfileDataEntry* const entry = data.GetNextEntry(more);
      entries[fmt::format("entry {} {}", entry->GetUsedType(), EntryName(entry->GetUsedType()))] = entry;
    }
    return entries;
  }

  void Routes(CProfileData& a, CProfileData& b) {
    const auto routes = [](CProfileData& data) {
      std::map<std::string, Json> types;
      for (CProfileRoute* const route : RoutesOf(data)) {
        Json& list = types[fmt::format("route {}", route->GetRouteType())] = Json::array();
        for (CProfileDataEntry* const entry : EntriesOf(*route)) list.push_back(entry->GetUsedType());
      }
      return types;
    };
    Keyed("", routes(a), routes(b), [this](const std::string& at, const Json& x, const Json& y) { Values(at, x, y); });
  }

  void Entries(const std::string& place, CProfileDataEntry& a, CProfileDataEntry& b) {
    Values(place + "/complete", a.IsComplete(), b.IsComplete());
    Values(place + "/optionInfo", a.GetOptionInfo(), b.GetOptionInfo());
    Values(place + "/label", NarrowToJson(a.GetLabelString()), NarrowToJson(b.GetLabelString()));
    const std::size_t before = differences_.size();
    if (SameBytes(a, b)) return;
    Payloads(place, a, b);
    if (differences_.size() == before && !SamePayload(a, b)) {
      Add(place + "/bytes", kDiffers, a.GetSize(), b.GetSize());
    }
  }

  static bool SameBytes(CProfileDataEntry& a, CProfileDataEntry& b) {
    return a.GetSize() == b.GetSize() &&
           (a.GetSize() == 0 || std::memcmp(a.Bytes().data(), b.Bytes().data(), a.GetSize()) == 0);
  }

  // Bytes behind a form, such as padding, are no difference.
  static bool SamePayload(CProfileDataEntry& a, CProfileDataEntry& b) {
    const Json left = PayloadToJson(a);
    return !left.is_null() && left == PayloadToJson(b);
  }

  void Payloads(const std::string& place, CProfileDataEntry& a, CProfileDataEntry& b) {
    if (a.GetFormatType() == CProfileDataEntry::kFormatIcc) return Icc(place, a, b);
    auto* const history = dynamic_cast<CContainerEntry*>(&a);
    auto* const otherHistory = dynamic_cast<CContainerEntry*>(&b);
    if (history != nullptr && otherHistory != nullptr) return Containers(place, *history, *otherHistory);
    auto* const curves = dynamic_cast<CCurveData*>(a.GetFormatData());
    auto* const otherCurves = dynamic_cast<CCurveData*>(b.GetFormatData());
    if (curves != nullptr && otherCurves != nullptr) return Curves(place, *curves, *otherCurves);
    auto* const lut = dynamic_cast<CLutData*>(a.GetFormatData());
    auto* const otherLut = dynamic_cast<CLutData*>(b.GetFormatData());
    if (lut != nullptr && otherLut != nullptr) return Luts(place, *lut, *otherLut);
    Documents(place, PayloadToJson(a), PayloadToJson(b));
  }

  void Icc(const std::string& place, CProfileDataEntry& a, CProfileDataEntry& b) {
    const auto tags = [](CProfileDataEntry& entry) {
      std::map<std::string, std::pair<const std::uint8_t*, std::uint32_t>> bytes;
      IccDirectory directory;
      if (!ReadIccDirectory(entry.Bytes().data(), entry.GetSize(), directory)) return bytes;
      for (const IccTag& tag : directory.tags) {
        bytes["tag " + SignatureText(tag.signature)] = {entry.Bytes().data() + tag.offset, tag.size};
      }
      return bytes;
    };
    Keyed(place + "/", tags(a), tags(b), [this](const std::string& at, const auto& x, const auto& y) {
      const bool same = x.second == y.second && std::equal(x.first, x.first + x.second, y.first);
      if (!same) Add(at, kDiffers, x.second, y.second);
    });
    const Json left = IccToJson(a.Bytes().data(), a.GetSize());
    const Json right = IccToJson(b.Bytes().data(), b.GetSize());
    if (left.is_object() && right.is_object()) Documents(place + "/header", left["header"], right["header"]);
  }

  void Curves(const std::string& place, CCurveData& a, CCurveData& b) {
    const auto byInk = [](CCurveData& set) {
      std::map<std::string, CCurveDataEntry*> curves;
      bool more = set.GetHeadPosition();
      while (more) {
        CCurveDataEntry* const curve = set.GetNext(more);
        curves.emplace(fmt::format("/ink {} extend {}", curve->GetInkID(), curve->GetExtendInfo()), curve);
      }
      return curves;
    };
    Keyed(place, byInk(a), byInk(b), [this](const std::string& at, CCurveDataEntry* x, CCurveDataEntry* y) {
      Values(at + "/inkName", NarrowToJson(x->GetInkName()), NarrowToJson(y->GetInkName()));
      Values(at + "/slotNo", x->GetSlotNo(), y->GetSlotNo());
      Values(at + "/displayRGB", x->GetDisplayRGB(), y->GetDisplayRGB());
      Values(at + "/max", x->GetMax(), y->GetMax());
      Values(at + "/min", x->GetMin(), y->GetMin());
      Values(at + "/dataType", x->GetDataType(), y->GetDataType());
      Values(at + "/count", x->GetCount(), y->GetCount());
      Samples(at + "/samples", *x, *y);
    });
  }

  void Samples(const std::string& place, CCurveDataEntry& a, CCurveDataEntry& b) {
    const CurveDifference difference = GreatestDifference(a, b);
    if (difference.percent == 0) return;
    Json greatest = nullptr;
    if (a.GetCount() == b.GetCount() && a.GetMaxBitValue() == b.GetMaxBitValue()) {
      greatest = std::lround(std::abs(difference.percent) / 100 * a.GetMaxBitValue());
    }
    AddSamples(place, std::move(greatest), difference.percent, fmt::format("{:.0f} %", difference.input));
  }

  void Luts(const std::string& place, CLutData& a, CLutData& b) {
    Values(place + "/gridCount", a.GetGridCount(), b.GetGridCount());
    Values(place + "/inputChannelCount", a.GetInputChannelCount(), b.GetInputChannelCount());
    Values(place + "/outputChannelCount", a.GetOutputChannelCount(), b.GetOutputChannelCount());
    const std::uint32_t size = a.GetLutDataSize();
    if (size != b.GetLutDataSize()) return;
    const std::uint8_t* const left = a.GetRefBuffer();
    const std::uint8_t* const right = b.GetRefBuffer();
    std::uint32_t count = 0;
    std::uint32_t farthest = 0;
    const auto distance = [&](std::uint32_t i) { return int{right[i]} - int{left[i]}; };
    for (std::uint32_t i = 0; i < size; ++i) {
      if (std::abs(distance(i)) > std::abs(distance(farthest))) farthest = i;
      count += left[i] != right[i] ? 1 : 0;
    }
    if (count == 0) return;
    const std::uint32_t width = a.GetOutputChannelCount();
    AddSamples(place + fmt::format("/samples ({} of {})", count, size), std::abs(distance(farthest)),
               100.0 / 255 * distance(farthest),
               fmt::format("{}, output {}", LutNodes(a).InputText(farthest / width), farthest % width));
  }

  void Containers(const std::string& place, CContainerEntry& a, CContainerEntry& b) {
    const auto children = [](CContainerEntry& container) {
      std::map<std::string, CProfileDataEntry*> byKey;
      container.BufferToData();
      for (int i = 0; i < container.GetEntryCount(); ++i) {
        CProfileDataEntry* const child = container.GetProfileDataEntry(i);
        if (child == nullptr) continue;
        byKey.emplace(fmt::format("/{} {}", EntryName(child->GetUsedType()), child->GetOptionInfo()), child);
      }
      return byKey;
    };
    Keyed(place, children(a), children(b), [this](const std::string& at, CProfileDataEntry* x, CProfileDataEntry* y) {
      auto* const left = dynamic_cast<CContainerEntry*>(x);
      auto* const right = dynamic_cast<CContainerEntry*>(y);
      if (left != nullptr && right != nullptr) {
        Values(at + "/value", left->GetContainerData()->Value, right->GetContainerData()->Value);
        Values(at + "/time", left->GetContainerData()->Time, right->GetContainerData()->Time);
        Values(at + "/name", WideToJson(left->GetContainerData()->Name), WideToJson(right->GetContainerData()->Name));
      }
      Entries(at, *x, *y);
    });
  }

  std::vector<Difference> differences_;
};

}  // namespace

std::vector<Difference> Compare(CProfileAccess& a, CProfileAccess& b) {
  Comparison comparison;
  comparison.Profiles(a, b);
  return comparison.Take();
}

}  // namespace nvx::tool
