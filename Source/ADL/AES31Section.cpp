#include "ADL/AES31Section.h"

#include <algorithm>
#include <stdexcept>

namespace velmora {

AES31Values::const_iterator& AES31Values::const_iterator::operator++() {
  --left_;
  if (listed_ != nullptr) {
    ++listed_;
  } else if (left_ != 0) {
    text_ = NextScannedValue(text_);
  }
  return *this;
}

AES31Values::AES31Values(List texts) {
  if (!texts.empty()) Own(std::move(texts));
}

AES31Values::AES31Values(const char* first, size_type count) {
  constexpr size_type kMostWalked = 0x7FFF;
  if (count == 0) return;
  const std::uint64_t place = reinterpret_cast<std::uintptr_t>(first);
  if (count <= kMostWalked && place <= kPointerMask) {
    word_ = kIsWalked | static_cast<std::uint64_t>(count) << kCountAt | place;
    return;
  }
  List texts(count);
  for (const char*& text : texts) {
    if (&text != texts.data()) first = NextScannedValue(first);
    text = first;
  }
  Own(std::move(texts));
}

AES31Values::AES31Values(const AES31Values& other) {
  if (other.IsWalked()) {
    word_ = other.word_;
  } else if (!other.empty()) {
    Own(other.Listed());
  }
}

AES31Values& AES31Values::operator=(const AES31Values& other) {
  if (this != &other) *this = AES31Values(other);
  return *this;
}

AES31Values& AES31Values::operator=(AES31Values&& other) noexcept {
  if (this != &other) {
    Release();
    word_ = std::exchange(other.word_, 0);
  }
  return *this;
}

AES31Values& AES31Values::operator=(std::initializer_list<const char*> texts) {
  return *this = AES31Values(texts);
}

void AES31Values::Own(List texts) {
  word_ = std::uint64_t{reinterpret_cast<std::uintptr_t>(new List(std::move(texts)))} >> 1;
}

AES31Values::const_iterator AES31Values::begin() const {
  if (IsWalked()) return {nullptr, WalkedFirst(), WalkedCount()};
  if (empty()) return end();
  return {Listed().data(), nullptr, Listed().size()};
}

const char* AES31Values::operator[](size_type i) const {
  if (!IsWalked()) return Listed()[i];
  const char* text = WalkedFirst();
  for (; i != 0; --i) text = NextScannedValue(text);
  return text;
}

const char* AES31Values::at(size_type i) const {
  if (i >= size()) throw std::out_of_range("AES31Values");
  return (*this)[i];
}

bool operator==(const AES31Values& a, const AES31Values& b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
}

AES31Values::List& AES31Values::AsArray() {
  if (word_ == 0 || IsWalked()) Own(List(*this));
  return Listed();
}

void AES31Entries::const_iterator::Take() {
  if (left_ == 0) return;
  EntryLine line;
  walk_.Read(line);
  entry_ = {line.label, AES31Values(line.texts[0], line.valueCount)};
}

AES31Entries::const_iterator& AES31Entries::const_iterator::operator++() {
  --left_;
  if (listed_ != nullptr) {
    ++listed_;
  } else {
    Take();
  }
  return *this;
}

AES31Entries::AES31Entries(List entries) : list_(std::make_unique<List>(std::move(entries))) {}

AES31Entries::AES31Entries(const AES31Entries& other)
    : marks_(other.marks_),
      blockEnd_(other.blockEnd_),
      count_(other.count_),
      list_(other.list_ != nullptr ? std::make_unique<List>(*other.list_) : nullptr) {}

AES31Entries& AES31Entries::operator=(const AES31Entries& other) {
  if (this != &other) *this = AES31Entries(other);
  return *this;
}

AES31Entries& AES31Entries::operator=(AES31Entries&& other) noexcept {
  if (this != &other) {
    marks_ = std::exchange(other.marks_, {});
    blockEnd_ = other.blockEnd_;
    count_ = std::exchange(other.count_, 0);
    list_ = std::exchange(other.list_, nullptr);
  }
  return *this;
}

AES31Entries& AES31Entries::operator=(std::initializer_list<AES31Entry> entries) {
  return *this = AES31Entries(entries);
}

AES31Entries::const_iterator AES31Entries::begin() const {
  return From(0);
}

AES31Entries::const_iterator AES31Entries::From(size_type i) const {
  if (i >= size()) return end();
  if (list_ != nullptr) return {list_->data() + i, list_->size() - i};
  const size_type walked = i % kMarkEvery;
  return std::next(const_iterator(WalkFrom(i), count_ - i + walked),
                   static_cast<std::ptrdiff_t>(walked));
}

EntryWalk AES31Entries::WalkFrom(size_type i) const {
  return {marks_[i / kMarkEvery], blockEnd_};
}

AES31Entry AES31Entries::operator[](size_type i) const {
  return list_ != nullptr ? (*list_)[i] : *From(i);
}

AES31Entry AES31Entries::at(size_type i) const {
  if (i >= size()) throw std::out_of_range("AES31Entries");
  return (*this)[i];
}

AES31Entries::List& AES31Entries::AsArray() {
  if (list_ == nullptr) {
    auto entries = std::make_unique<List>();
    entries->reserve(count_);
    const AES31Entries& scanned = *this;
    for (const AES31Entry& entry : scanned) entries->push_back(entry);
    clear();
    list_ = std::move(entries);
  }
  return *list_;
}

void AES31Entries::NoteScanned(const char* label, const char* blockEnd) {
  if (count_ % kMarkEvery == 0) marks_.push_back(label);
  blockEnd_ = blockEnd;
  ++count_;
}

void AES31Entries::Detach() {
  for (AES31Entry& entry : AsArray()) entry.values.AsArray();
}

EntryLines::EntryLines(const AES31Entries& entries, std::size_t first)
    : left_(entries.size() - std::min(first, entries.size())) {
  if (left_ == 0) return;
  if (entries.list_ != nullptr) {
    listed_ = entries.list_->data() + first;
    return;
  }
  walk_ = entries.WalkFrom(first);
  EntryLine passed;
  for (std::size_t i = first % AES31Entries::kMarkEvery; i > 0; --i) walk_.Read(passed);
}

bool EntryLines::Next(EntryLine& line) {
  if (left_ == 0) return false;
  --left_;
  if (listed_ == nullptr) {
    walk_.Read(line);
    return true;
  }
  const AES31Entry& entry = *listed_++;
  line = {entry.label, entry.values.size(), {}};
  std::size_t i = 0;
  for (auto text = entry.values.begin(); i < line.texts.size() && text != entry.values.end();
       ++text) {
    line.texts[i++] = *text;
  }
  return true;
}

AES31Values EntryLines::ValuesOf(const EntryLine& line) const {
  if (listed_ != nullptr) return listed_[-1].values;
  return {line.texts[0], line.valueCount};
}

}  // namespace velmora
