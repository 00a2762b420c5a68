// The lists of the model: every object that holds children holds them in one of these.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace nvx {

// What both lists share: pointers in order, and one cursor for walks of the caller. Code that walks a list for itself
// goes by its range or by First, and so leaves the cursor where the caller has it; only Head, Next and Find move it.
template <class T>
class ItemList {
 public:
  ItemList(const ItemList&) = delete;
  ItemList& operator=(const ItemList&) = delete;

  std::size_t Count() const { return items_.size(); }
  bool IsEmpty() const { return items_.empty(); }

  // Null for an index at or beyond the count.
  T* At(std::size_t index) const { return index < items_.size() ? items_[index] : nullptr; }
  bool Contains(const T* item) const { return std::find(items_.begin(), items_.end(), item) != items_.end(); }

  // First element that passes, null if none does.
  template <class Passes>
  T* First(Passes passes) const {
    const auto found = FindIf(passes);
    return found != items_.end() ? *found : nullptr;
  }

  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

  // Room for that many elements, so that adding them cannot fail.
  void Reserve(std::size_t count) { items_.reserve(count); }

  // The cursor: Head puts it on the first element and says whether there is one; Next gives the element at the cursor,
  // moves on and says whether another follows. Next at the end gives null. Adding or removing ends a walk.
  bool Head() {
    cursor_ = 0;
    return !items_.empty();
  }

  // See Head.
  T* Next(bool& more) {
    T* const item = At(cursor_);
    if (cursor_ < items_.size()) ++cursor_;
    more = cursor_ < items_.size();
    return item;
  }

  // As First; the cursor then stands behind what was found, or at the end.
  template <class Passes>
  T* Find(Passes passes) {
    const auto found = FindIf(passes);
    cursor_ = static_cast<std::size_t>(found - items_.begin());
    if (found == items_.end()) return nullptr;
    ++cursor_;
    return *found;
  }

 protected:
  ItemList() = default;
  ~ItemList() = default;

  // Behind all others for an index at or beyond the count.
  void Put(std::size_t index, T* item) {
    items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(std::min(index, items_.size())), item);
  }

  // Puts the other one wherever the item stands.
  void Swap(const T* item, T* other) { std::replace(items_.begin(), items_.end(), const_cast<T*>(item), other); }

  // Null if there is none.
  T* Take(std::size_t index) {
    T* const item = At(index);
    if (index < items_.size()) items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(index));
    return item;
  }

  // Empties the list.
  std::vector<T*> TakeAll() {
    cursor_ = 0;
    return std::exchange(items_, {});
  }

  std::vector<T*> items_;

 private:
  template <class Passes>
  auto FindIf(Passes passes) const {
    return std::find_if(items_.begin(), items_.end(), [&](T* item) { return passes(*item); });
  }

  std::size_t cursor_ = 0;
};

// A list that refers to what somebody else owns.
template <class T>
class ReferenceList : public ItemList<T> {
 public:
  ReferenceList() = default;

  // Adds the item at the end.
  void Append(T* item) { this->Put(this->Count(), item); }
  // Takes every occurrence of the item out.
  void Remove(const T* item) { std::erase(this->items_, item); }
  // Refers to the other one wherever it refers to the item.
  void Exchange(const T* item, T* other) { this->Swap(item, other); }
  void Clear() { this->TakeAll(); }
  void Become(std::vector<T*> items) { this->items_ = std::move(items); }
};

// A list that owns its items: they are destroyed with delete when the list is cleared or dies.
//
// Payloads whose children may be borrowed (auto-delete off) say so at each step: AppendBorrowed and InsertBorrowed take
// an item that is not destroyed if the list cannot grow, LetGo empties the list and destroys nothing.
template <class T>
class CursorList : public ItemList<T> {
 public:
  CursorList() = default;
  ~CursorList() { Clear(); }

  // Add the item at the end, or before the one at `index`.
  void Append(std::unique_ptr<T> item) { Insert(this->Count(), std::move(item)); }
  void AppendBorrowed(T* item) { this->Put(this->Count(), item); }
  void InsertBorrowed(std::size_t index, T* item) { this->Put(index, item); }

  // Puts the item before the one at `index`; at or beyond the count it appends.
  void Insert(std::size_t index, std::unique_ptr<T> item) {
    this->Put(index, item.get());
    static_cast<void>(item.release());
  }

  // Takes the item at `index` out; null if there is none.
  std::unique_ptr<T> TakeAt(std::size_t index) { return std::unique_ptr<T>(this->Take(index)); }

  // Takes every occurrence of the item out; null if there is none.
  std::unique_ptr<T> Remove(const T* item) {
    const auto found = std::find(this->items_.begin(), this->items_.end(), item);
    std::unique_ptr<T> taken(found != this->items_.end() ? *found : nullptr);
    std::erase(this->items_, item);
    return taken;
  }

  // Puts the other one where the item stands, which must be in the list once; gives the item.
  std::unique_ptr<T> Exchange(T* item, std::unique_ptr<T> other) {
    this->Swap(item, other.release());
    return std::unique_ptr<T>(item);
  }

  // The list is emptied before anything is destroyed, so that a destructor that looks back finds nothing.
  void Clear() {
    for (T* const item : this->TakeAll()) delete item;
  }
  void LetGo() { this->TakeAll(); }
  // Holds these items instead of its own, all of which are among them.
  void Become(std::vector<T*> items) { this->items_ = std::move(items); }
};

}  // namespace nvx
