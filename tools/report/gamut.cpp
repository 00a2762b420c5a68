#include "report/gamut.h"

#include <nvxprofile/icc_header.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <tuple>
#include <utility>

namespace nvx::tool {
namespace {

using Bytes = std::span<const std::uint8_t>;
using Triple = std::array<double, 3>;

constexpr std::uint32_t Signature(const char (&text)[5]) {
  std::uint32_t value = 0;
  for (int i = 0; i < 4; ++i) value = value << 8 | static_cast<std::uint8_t>(text[i]);
  return value;
}

// Big-endian numbers. What lies beyond the bytes reads as 0 and is remembered.
class Reader {
 public:
  explicit Reader(Bytes bytes) : bytes_(bytes) {}

  bool IsSound() const { return sound_; }
  std::size_t Size() const { return bytes_.size(); }
  std::uint32_t U8(std::size_t at) const { return Number(at, 1); }
  std::uint32_t U16(std::size_t at) const { return Number(at, 2); }
  std::uint32_t U32(std::size_t at) const { return Number(at, 4); }
  double Fixed(std::size_t at) const { return static_cast<std::int32_t>(U32(at)) / 65536.0; }
  // A sample of 1 or 2 bytes on the scale from 0 to 1.
  double Unit(std::size_t at, std::size_t width) const { return Number(at, width) / (width == 1 ? 255.0 : 65535.0); }
  Bytes From(std::size_t at) const { return bytes_.subspan(std::min(at, bytes_.size())); }

 private:
  std::uint32_t Number(std::size_t at, std::size_t size) const {
    if (at > bytes_.size() || bytes_.size() - at < size) {
      sound_ = false;
      return 0;
    }
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size; ++i) value = value << 8 | bytes_[at + i];
    return value;
  }

  Bytes bytes_;
  mutable bool sound_ = true;
};

// Samples at equal distances from 0 to 1, looked up with linear interpolation.
double Interpolate(const std::vector<double>& samples, double x) {
  if (samples.empty()) return x;
  const double place = std::clamp(std::isnan(x) ? 0.0 : x, 0.0, 1.0) * static_cast<double>(samples.size() - 1);
  const auto index = std::min(static_cast<std::size_t>(place), samples.size() - 1);
  const double next = samples[std::min(index + 1, samples.size() - 1)];
  return std::lerp(samples[index], next, place - static_cast<double>(index));
}

// A one-dimensional curve of the types curv and para.
class Curve {
 public:
  // Reads the curve at `at` and moves `at` behind it.
  Curve(const Reader& reader, std::size_t& at) {
    const std::uint32_t type = reader.U32(at);
    if (type == Signature("curv")) {
      ReadSamples(reader, at);
    } else if (type == Signature("para")) {
      ReadParameters(reader, at);
    } else {
      sound_ = false;
    }
    at = (at + 3) / 4 * 4;
  }

  bool IsSound() const { return sound_; }

  double operator()(double x) const {
    if (kind_ < 0) return Interpolate(samples_, x);
    const auto& [g, a, b, c, d, e, f] = parameters_;
    const auto power = [g = g](double base) { return std::pow(std::max(base, 0.0), g); };
    switch (kind_) {
      case 0:
        return power(x);
      case 1:
        return a * x + b >= 0 ? power(a * x + b) : 0;
      case 2:
        return a * x + b >= 0 ? power(a * x + b) + c : c;
      case 3:
        return x >= d ? power(a * x + b) : c * x;
      default:
        return x >= d ? power(a * x + b) + e : c * x + f;
    }
  }

 private:
  void ReadSamples(const Reader& reader, std::size_t& at) {
    const std::uint32_t count = reader.U32(at + 8);
    at += 12;
    if (count > reader.From(at).size() / 2) {
      sound_ = false;
    } else if (count == 1) {
      kind_ = 0;
      parameters_[0] = reader.U16(at) / 256.0;
    } else {
      for (std::uint32_t i = 0; i < count; ++i) samples_.push_back(reader.Unit(at + 2 * i, 2));
    }
    at += std::size_t{2} * count;
  }

  void ReadParameters(const Reader& reader, std::size_t& at) {
    constexpr std::array<std::size_t, 5> kCounts{1, 3, 4, 5, 7};
    const std::uint32_t kind = reader.U16(at + 8);
    at += 12;
    if (kind >= kCounts.size()) {
      sound_ = false;
      return;
    }
    kind_ = static_cast<int>(kind);
    for (std::size_t i = 0; i < kCounts[kind]; ++i) parameters_[i] = reader.Fixed(at + 4 * i);
    at += 4 * kCounts[kind];
  }

  int kind_ = -1;  // of a parametric curve
  std::array<double, 7> parameters_{};
  std::vector<double> samples_;
  bool sound_ = true;
};

double LabFunction(double t) { return t > 216.0 / 24389 ? std::cbrt(t) : (24389.0 / 27 * t + 16) / 116; }

Lab XyzToLab(const Triple& xyz) {
  constexpr Triple kD50{0.9642, 1.0, 0.8249};
  const double x = LabFunction(xyz[0] / kD50[0]);
  const double y = LabFunction(xyz[1] / kD50[1]);
  const double z = LabFunction(xyz[2] / kD50[2]);
  return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

// A table from device to connection space: its grid, and the connection space values of its nodes.
struct Table {
  std::vector<std::uint32_t> grid;  // nodes along each axis, the last axis running fastest
  std::size_t samplesAt = 0;
  std::size_t width = 1;  // bytes of a sample
  std::array<std::vector<double>, 3> outputTables;
  std::vector<Curve> mCurves;
  std::vector<Curve> bCurves;
  std::array<double, 12> matrix{1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
  bool legacyLab = false;  // the encoding of lut16

  std::uint64_t CountNodes() const {
    std::uint64_t count = 1;
    for (const std::uint32_t points : grid) count = std::min<std::uint64_t>(count * points, UINT32_MAX);
    return count;
  }
  bool Fits(const Reader& reader) const {
    const bool hasAxes = !grid.empty() && std::find(grid.begin(), grid.end(), 0u) == grid.end();
    return hasAxes && CountNodes() <= reader.From(samplesAt).size() / (3 * width);
  }
};

std::optional<Table> ReadLut(const Reader& reader, std::size_t width) {
  const std::uint32_t inputs = reader.U8(8);
  if (reader.U8(9) != 3 || inputs == 0) return std::nullopt;
  Table table;
  table.width = width;
  table.grid.assign(inputs, reader.U8(10));
  table.legacyLab = width == 2;
  const std::size_t inputEntries = width == 2 ? reader.U16(48) : 256;
  const std::size_t outputEntries = width == 2 ? reader.U16(50) : 256;
  table.samplesAt = (width == 2 ? 52 : 48) + inputs * inputEntries * width;
  if (!table.Fits(reader)) return std::nullopt;
  const std::size_t outputsAt = table.samplesAt + static_cast<std::size_t>(table.CountNodes()) * 3 * width;
  for (std::size_t c = 0; c < 3; ++c) {
    for (std::size_t i = 0; i < outputEntries && reader.IsSound(); ++i) {
      table.outputTables[c].push_back(reader.Unit(outputsAt + (c * outputEntries + i) * width, width));
    }
  }
  return reader.IsSound() ? std::optional(std::move(table)) : std::nullopt;
}

bool ReadCurves(const Reader& reader, std::size_t at, std::vector<Curve>& curves) {
  if (at == 0) return true;
  for (int i = 0; i < 3; ++i) {
    curves.emplace_back(reader, at);
    if (!curves.back().IsSound()) return false;
  }
  return reader.IsSound();
}

std::optional<Table> ReadLutAToB(const Reader& reader) {
  const std::uint32_t inputs = reader.U8(8);
  const std::uint32_t clutAt = reader.U32(24);
  if (reader.U8(9) != 3 || inputs == 0 || inputs > 16 || clutAt == 0) return std::nullopt;
  Table table;
  for (std::uint32_t i = 0; i < inputs; ++i) table.grid.push_back(reader.U8(clutAt + i));
  table.width = reader.U8(clutAt + 16);
  table.samplesAt = std::size_t{clutAt} + 20;
  if (table.width < 1 || table.width > 2 || !table.Fits(reader)) return std::nullopt;
  if (!ReadCurves(reader, reader.U32(12), table.bCurves) || !ReadCurves(reader, reader.U32(20), table.mCurves)) {
    return std::nullopt;
  }
  if (const std::size_t matrixAt = reader.U32(16); matrixAt != 0) {
    for (std::size_t i = 0; i < 12; ++i) table.matrix[i] = reader.Fixed(matrixAt + 4 * i);
  }
  return reader.IsSound() ? std::optional(std::move(table)) : std::nullopt;
}

std::optional<Table> ReadTable(const Reader& reader) {
  switch (reader.U32(0)) {
    case Signature("mft1"):
      return ReadLut(reader, 1);
    case Signature("mft2"):
      return ReadLut(reader, 2);
    case Signature("mAB "):
      return ReadLutAToB(reader);
    default:
      return std::nullopt;
  }
}

// Curves and matrix of a damaged profile may lead anywhere; what no colour has is cut.
double Cut(double value) {
  constexpr double kFar = 300;
  return std::isnan(value) ? 0 : std::clamp(value, -kFar, kFar);
}

// Turns stored nodes into Lab.
class NodeReader {
 public:
  NodeReader(const Reader& reader, const Table& table, bool isXyz) : reader_(reader), table_(table), isXyz_(isXyz) {}

  Lab At(std::uint64_t node) const {
    Triple value{};
    const std::size_t at = table_.samplesAt + static_cast<std::size_t>(node) * 3 * table_.width;
    for (std::size_t c = 0; c < 3; ++c) {
      value[c] = Interpolate(table_.outputTables[c], reader_.Unit(at + c * table_.width, table_.width));
      if (!table_.mCurves.empty()) value[c] = table_.mCurves[c](value[c]);
    }
    value = Multiply(value);
    for (std::size_t c = 0; c < 3 && !table_.bCurves.empty(); ++c) value[c] = table_.bCurves[c](value[c]);
    const Lab lab = FromEncoding(value);
    return {Cut(lab.l), Cut(lab.a), Cut(lab.b)};
  }

 private:
  Triple Multiply(const Triple& v) const {
    const auto& m = table_.matrix;
    Triple result{};
    for (std::size_t r = 0; r < 3; ++r) {
      result[r] = m[3 * r] * v[0] + m[3 * r + 1] * v[1] + m[3 * r + 2] * v[2] + m[9 + r];
    }
    return result;
  }

  Lab FromEncoding(const Triple& v) const {
    if (isXyz_) {
      constexpr double kGreatestXyz = 65535.0 / 32768;
      return XyzToLab({v[0] * kGreatestXyz, v[1] * kGreatestXyz, v[2] * kGreatestXyz});
    }
    // lut16 puts 100 and 255 at FF00 hexadecimal, all others at the greatest value.
    const double scale = table_.legacyLab ? 65535.0 / 65280 : 1.0;
    return {v[0] * 100 * scale, v[1] * 255 * scale - 128, v[2] * 255 * scale - 128};
  }

  const Reader& reader_;
  const Table& table_;
  bool isXyz_;
};

double Turn(const Lab& o, const Lab& p, const Lab& q) { return (p.a - o.a) * (q.b - o.b) - (p.b - o.b) * (q.a - o.a); }

// The convex hull in a*b*, anticlockwise.
std::vector<Lab> HullOf(std::vector<Lab> points) {
  std::sort(points.begin(), points.end(),
            [](const Lab& p, const Lab& q) { return std::tie(p.a, p.b) < std::tie(q.a, q.b); });
  std::vector<Lab> hull;
  const auto add = [&hull](const Lab& point, std::size_t least) {
    while (hull.size() > least && Turn(hull[hull.size() - 2], hull.back(), point) <= 0) hull.pop_back();
    hull.push_back(point);
  };
  for (const Lab& point : points) add(point, 1);
  const std::size_t lower = hull.size();
  for (std::size_t i = points.size(); i-- > 1;) add(points[i - 1], lower);
  if (hull.size() > 1) hull.pop_back();
  return hull;
}

// Where a node stands: how many of its colorants are not at the end that is paper, and whether all of these are full.
struct Place {
  int used = 0;
  bool full = true;
  std::size_t last = 0;
};

Place PlaceOf(std::uint64_t node, const std::vector<std::uint32_t>& grid, bool isAdditive) {
  Place place;
  for (std::size_t axis = grid.size(); axis-- > 0; node /= grid[axis]) {
    const auto stored = static_cast<std::uint32_t>(node % grid[axis]);
    const std::uint32_t amount = isAdditive ? grid[axis] - 1 - stored : stored;
    if (amount == 0) continue;
    ++place.used;
    place.full = place.full && amount == grid[axis] - 1;
    place.last = axis;
  }
  return place;
}

Gamut Measure(const Table& table, const NodeReader& nodes, bool isAdditive) {
  Gamut gamut;
  gamut.grid = table.grid.front();
  gamut.nodes = table.CountNodes();
  gamut.solids.resize(table.grid.size());
  std::vector<Lab> all;
  all.reserve(static_cast<std::size_t>(gamut.nodes));
  for (std::uint64_t i = 0; i < gamut.nodes; ++i) {
    all.push_back(nodes.At(i));
    const Place place = PlaceOf(i, table.grid, isAdditive);
    if (place.used <= 2) gamut.surface.push_back(all.back());
    if (place.used == 0) gamut.paper = all.back();
    if (place.used == 1 && place.full) gamut.solids[place.last] = all.back();
  }
  gamut.outline = HullOf(std::move(all));
  return gamut;
}

}  // namespace

std::optional<Gamut> ReadGamut(std::span<const std::uint8_t> profile) {
  IccDirectory directory;
  if (!ReadIccDirectory(profile.data(), profile.size(), directory)) return std::nullopt;
  const std::uint32_t space = directory.header.phConnectionSpace;
  const bool isXyz = space == Signature("XYZ ");
  if (!isXyz && space != Signature("Lab ")) return std::nullopt;
  for (const char* const name : {"A2B1", "A2B0"}) {
    const IccTag* const tag = directory.Find(Signature({name[0], name[1], name[2], name[3], 0}));
    if (tag == nullptr) continue;
    const Reader reader(profile.subspan(tag->offset, tag->size));
    const std::optional<Table> table = ReadTable(reader);
    if (!table) return std::nullopt;
    const bool isAdditive = directory.header.phDataColorSpace == Signature("RGB ");
    Gamut gamut = Measure(*table, NodeReader(reader, *table, isXyz), isAdditive);
    gamut.tag = name;
    return gamut;
  }
  return std::nullopt;
}

}  // namespace nvx::tool
