#include <nvxprofile/lut.h>

CLutDataEntry::~CLutDataEntry() = default;

std::uint8_t* CLutDataEntry::GetRefBuffer() { return samples_; }
int CLutDataEntry::GetCount() { return static_cast<int>(count_); }
std::uint8_t CLutDataEntry::GetAt(int index) { return samples_[index]; }
void CLutDataEntry::SetAt(int index, std::uint8_t value) { samples_[index] = value; }

void CLutDataEntry::Add(std::uint8_t value) {
  std::vector<std::uint8_t>& own = Own();
  own.push_back(value);
  samples_ = own.data();
  ++count_;
}

void CLutDataEntry::DeleteAllElement() {
  Own().clear();
  count_ = 0;
}

void CLutDataEntry::Delete() {
  if (inTable_) {
    DeleteAllElement();
  } else {
    delete this;
  }
}

void CLutDataEntry::ViewSamples(std::uint8_t* samples, std::uint32_t count) {
  samples_ = samples;
  count_ = count;
  inTable_ = true;
}

// The node's own array, with a copy of what it has viewed so far.
std::vector<std::uint8_t>& CLutDataEntry::Own() {
  if (!own_) {
    own_ = std::make_unique<std::vector<std::uint8_t>>(samples_, samples_ + count_);
    samples_ = own_->data();
  }
  return *own_;
}
