// The one list of the model: every object that holds children holds them in one of these.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

namespace nvx {

enum class Ownership { kOwned, kBorrowed };

// An ordered list of pointers with one cursor. Clear says whether the elements are destroyed; a list that dies with
// elements in it leaves them alone, so the object that holds it decides in its destructor. Elements are destroyed with
// delete. Adding or removing ends a walk.
template <class T>
class CursorList {
 public:
  CursorList() = default;
  CursorList(const CursorList&) = delete;
  CursorList& operator=(const CursorList&) = delete;

  std::size_t Count() const { return items_.size(); }
  bool IsEmpty() const { return items_.empty(); }

  // Null for an index at or beyond the count.
  T* At(std::size_t index) const { return index < items_.size() ? items_[index] : nullptr; }

  // An item that is handed over is destroyed if the list cannot grow.
  void Append(T* item, Ownership ownership = Ownership::kBorrowed) { Insert(items_.size(), item, ownership); }
  void Reserve(std::size_t count) { items_.reserve(count); }

  // Puts the item before the one at `index`; at or beyond the count it appends.
  void Insert(std::size_t index, T* item, Ownership ownership = Ownership::kBorrowed) {
    std::unique_ptr<T> taken(ownership == Ownership::kOwned ? item : nullptr);
    items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(std::min(index, items_.size())), item);
    static_cast<void>(taken.release());
  }

  // Takes the item at `index` out; null if there is none.
  T* TakeAt(std::size_t index) {
    T* const item = At(index);
    if (index < items_.size()) items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(index));
    return item;
  }

  // Takes every occurrence of the item out.
  void Remove(const T* item) { items_.erase(std::remove(items_.begin(), items_.end(), item), items_.end()); }

  bool Contains(const T* item) const { return std::find(items_.begin(), items_.end(), item) != items_.end(); }

  void Clear(Ownership ownership) {
    // The list is emptied first, so that a destructor that looks back finds nothing.
    std::vector<T*> items;
    items.swap(items_);
    cursor_ = 0;
    if (ownership == Ownership::kOwned) {
      for (T* item : items) delete item;
    }
  }

  // The cursor: Head puts it on the first element and says whether there is one; Next gives the element at the cursor,
  // moves on and says whether another follows. Next at the end gives null.
  bool Head() {
    cursor_ = 0;
    return !items_.empty();
  }

  T* Next(bool& more) {
    T* const item = At(cursor_);
    if (item != nullptr || cursor_ < items_.size()) ++cursor_;
    more = cursor_ < items_.size();
    return item;
  }

  // First element that passes, null if none does; the cursor then stands behind it.
  template <class Passes>
  T* Find(Passes passes) {
    const auto found = std::find_if(items_.begin(), items_.end(), [&](T* item) { return item && passes(*item); });
    cursor_ = static_cast<std::size_t>(found - items_.begin());
    if (found == items_.end()) return nullptr;
    ++cursor_;
    return *found;
  }

  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

 private:
  std::vector<T*> items_;
  std::size_t cursor_ = 0;
};

}  // namespace nvx
