// Random operations on a model, held against a plain picture of it: whenever a result is true, nothing is lost, and
// whenever it is false, nothing has changed. A property test drives it with random numbers, a fuzzer with its bytes.
#pragma once

#include <nvxprofile/profile_data.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace nvx::test {

// What an entry knows: the payload where it says all, else the bytes, and of containers the children.
struct Knowledge {
  std::uint32_t usedType = 0;
  std::uint32_t formatType = 0;
  bool complete = false;
  std::uint32_t optionInfo = 0;
  std::string label;  // of entries of a profile; the form of children has no place for it
  std::vector<std::uint8_t> contents;
  std::vector<Knowledge> children;

  bool operator==(const Knowledge&) const = default;
};

Knowledge KnowledgeOf(CProfileDataEntry& entry);

class ModelMachine {
 public:
  // Gives numbers below a bound; files go to the folder.
  using Choose = std::function<std::uint32_t(std::uint32_t bound)>;
  ModelMachine(Choose choose, std::u16string folder);
  ~ModelMachine();

  // Does one operation. What it broke, empty if nothing.
  std::string Step();

 private:
  struct Picture {
    std::vector<Knowledge> entries;
    std::map<std::uint32_t, std::vector<std::size_t>> routes;
    bool operator==(const Picture&) const = default;
  };
  using Operation = std::string (ModelMachine::*)(const Picture& before);
  using EntryOperation = std::string (ModelMachine::*)(CProfileDataEntry& entry, const Picture& before);

  Picture Look() const;
  CProfileDataEntry* Any();
  std::unique_ptr<CProfileDataEntry> NewEntry(std::uint32_t usedType);
  std::uint32_t AnyRoute();
  // The picture but for one entry.
  static bool SameBut(Picture a, Picture b, std::size_t index);
  std::size_t IndexOf(const CProfileDataEntry* entry) const;

  std::string Add(const Picture& before);
  std::string Remove(CProfileDataEntry& entry, const Picture& before);
  std::string Damage(CProfileDataEntry& entry, const Picture& before);
  std::string Parse(CProfileDataEntry& entry, const Picture& before);
  std::string Rebuild(CProfileDataEntry& entry, const Picture& before);
  std::string Edit(CProfileDataEntry& entry, const Picture& before);
  std::string Walk(const Picture& before);
  std::string SaveContainer(const Picture& before);
  std::string SaveProfile(const Picture& before);
  std::string Clone(CProfileDataEntry& entry, const Picture& before);
  std::string CopyOver(CProfileDataEntry& entry, const Picture& before);
  std::string Import(CProfileDataEntry& entry, const Picture& before);
  std::string ChangeHistory(const Picture& before);

  Choose choose_;
  std::u16string path_;
  std::mt19937 random_;
  std::unique_ptr<CProfileData> data_;
};

}  // namespace nvx::test
