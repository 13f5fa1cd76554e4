#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "ADL/EntryWalk.h"

namespace velmora {

// The scanned tree. A project of a million cuts has three million entries with ten million values:
// as arrays of pointers they would take three times the memory of the file. But the scanner has cut
// the block in place, so that every entry can be found again in it. A scanned list therefore keeps
// hardly more than where it begins and how many it has, and finds the rest when it is asked.
//
// To its users each list is a growing array with value semantics. It takes the form of an array as
// soon as somebody may write to it, which is by every access to a list that is not const; a const
// list is only read and may be read by several threads. Texts are never copied: a copy of a list
// is bound to the project's file block just as the list itself.

/// The values of an entry, in file order: texts of the file block, or of whoever added them.
///
/// Eight bytes: either a pointer to an array, or the place of the first value in the block with the
/// number of values above it. There the values stand one after the other with blanks between them,
/// each ended by a NUL.
class AES31Values {
 public:
  using value_type = const char*;
  using size_type = std::size_t;
  using List = std::vector<const char*>;
  using iterator = List::iterator;

  class const_iterator {
   public:
    using iterator_category = std::input_iterator_tag;  // of C++17: it has no references to give
    using iterator_concept = std::forward_iterator_tag;
    using value_type = const char*;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = const char*;

    const_iterator() = default;
    reference operator*() const { return listed_ != nullptr ? *listed_ : text_; }
    const_iterator& operator++();
    const_iterator operator++(int) { return std::exchange(*this, std::next(*this)); }
    /// Both of one list.
    bool operator==(const const_iterator& other) const { return left_ == other.left_; }

   private:
    friend class AES31Values;
    const_iterator(const char* const* listed, const char* text, size_type left)
        : listed_(listed), text_(text), left_(left) {}
    const char* const* listed_ = nullptr;
    const char* text_ = nullptr;
    size_type left_ = 0;
  };

  AES31Values() = default;
  AES31Values(std::initializer_list<const char*> texts) : AES31Values(List(texts)) {}
  AES31Values(List texts);  // NOLINT(google-explicit-constructor): a list is a list
  /// `count` values of a cut block, the first of which stands at `first`.
  AES31Values(const char* first, size_type count);
  ~AES31Values() { Release(); }
  AES31Values(const AES31Values& other);
  AES31Values(AES31Values&& other) noexcept : word_(std::exchange(other.word_, 0)) {}
  AES31Values& operator=(const AES31Values& other);
  AES31Values& operator=(AES31Values&& other) noexcept;
  AES31Values& operator=(std::initializer_list<const char*> texts);
  operator List() const { return {begin(), end()}; }  // NOLINT(google-explicit-constructor)

  [[nodiscard]] size_type size() const {
    return IsWalked() ? WalkedCount() : word_ != 0 ? Listed().size() : 0;
  }
  [[nodiscard]] bool empty() const { return size() == 0; }
  [[nodiscard]] const_iterator begin() const;
  [[nodiscard]] const_iterator end() const { return {nullptr, nullptr, 0}; }
  [[nodiscard]] const_iterator cbegin() const { return begin(); }
  [[nodiscard]] const_iterator cend() const { return end(); }
  /// Costs a walk over the values before it.
  [[nodiscard]] const char* operator[](size_type i) const;
  /// @throws std::out_of_range
  [[nodiscard]] const char* at(size_type i) const;
  [[nodiscard]] const char* front() const { return (*this)[0]; }
  [[nodiscard]] const char* back() const { return (*this)[size() - 1]; }
  /// Both have the same pointers.
  friend bool operator==(const AES31Values& a, const AES31Values& b);

  /// Takes the form of an array, which is then this list itself.
  List& AsArray();
  [[nodiscard]] iterator begin() { return AsArray().begin(); }
  [[nodiscard]] iterator end() { return AsArray().end(); }
  [[nodiscard]] const char*& operator[](size_type i) { return AsArray()[i]; }
  /// @throws std::out_of_range
  [[nodiscard]] const char*& at(size_type i) { return AsArray().at(i); }
  [[nodiscard]] const char*& front() { return AsArray().front(); }
  [[nodiscard]] const char*& back() { return AsArray().back(); }
  void push_back(const char* text) { AsArray().push_back(text); }
  const char*& emplace_back(const char* text) { return AsArray().emplace_back(text); }
  void pop_back() { AsArray().pop_back(); }
  void reserve(size_type count) { AsArray().reserve(count); }
  void resize(size_type count) { AsArray().resize(count); }
  void clear() { Release(); }

 private:
  // The highest bit tells the two forms apart. Below it stand a count of 15 bits and a place of 48:
  // a place that needs more, as some systems' do, is never put there, and its list is an array. The
  // pointer to an array is even, so that it loses nothing by one bit to the right.
  static constexpr std::uint64_t kIsWalked = std::uint64_t{1} << 63;
  static constexpr unsigned kCountAt = 48;
  static constexpr std::uint64_t kPointerMask = (std::uint64_t{1} << kCountAt) - 1;

  bool IsWalked() const { return (word_ & kIsWalked) != 0; }
  size_type WalkedCount() const { return static_cast<size_type>((word_ & ~kIsWalked) >> kCountAt); }
  const char* WalkedFirst() const {
    return reinterpret_cast<const char*>(static_cast<std::uintptr_t>(word_ & kPointerMask));
  }
  List& Listed() const { return *reinterpret_cast<List*>(static_cast<std::uintptr_t>(word_ << 1)); }
  void Own(List texts);
  void Release() {
    if (word_ != 0 && !IsWalked()) delete &Listed();
    word_ = 0;
  }

  std::uint64_t word_ = 0;  ///< 0: empty
};

/// A label with its values. All texts point into the project's file block; a quoted value keeps its
/// quotation marks.
struct AES31Entry {
  const char* label = nullptr;  ///< the text between the parentheses
  AES31Values values;           ///< in file order
};

/// The entries of a section, in file order.
class AES31Entries {
 public:
  using value_type = AES31Entry;
  using size_type = std::size_t;
  using List = std::vector<AES31Entry>;
  using iterator = List::iterator;

  class const_iterator {
   public:
    using iterator_category = std::input_iterator_tag;  // of C++17: it has no references to give
    using value_type = AES31Entry;
    using difference_type = std::ptrdiff_t;
    using pointer = const AES31Entry*;
    using reference = AES31Entry;

    const_iterator() = default;
    reference operator*() const { return listed_ != nullptr ? *listed_ : entry_; }
    pointer operator->() const { return listed_ != nullptr ? listed_ : &entry_; }
    const_iterator& operator++();
    const_iterator operator++(int) { return std::exchange(*this, std::next(*this)); }
    /// Both of one list.
    bool operator==(const const_iterator& other) const { return left_ == other.left_; }

   private:
    friend class AES31Entries;
    const_iterator(const AES31Entry* listed, size_type left) : listed_(listed), left_(left) {}
    const_iterator(const EntryWalk& walk, size_type left) : left_(left), walk_(walk) { Take(); }
    void Take();
    const AES31Entry* listed_ = nullptr;
    size_type left_ = 0;
    EntryWalk walk_;
    AES31Entry entry_;
  };

  AES31Entries() = default;
  AES31Entries(std::initializer_list<AES31Entry> entries) : AES31Entries(List(entries)) {}
  AES31Entries(List entries);  // NOLINT(google-explicit-constructor): a list is a list
  ~AES31Entries() = default;
  AES31Entries(const AES31Entries& other);
  AES31Entries(AES31Entries&& other) noexcept { *this = std::move(other); }
  AES31Entries& operator=(const AES31Entries& other);
  AES31Entries& operator=(AES31Entries&& other) noexcept;
  AES31Entries& operator=(std::initializer_list<AES31Entry> entries);
  operator List() const { return {begin(), end()}; }  // NOLINT(google-explicit-constructor)

  [[nodiscard]] size_type size() const { return list_ != nullptr ? list_->size() : count_; }
  [[nodiscard]] bool empty() const { return size() == 0; }
  /// Each entry that this gives is a value of its own, not a place in the list.
  [[nodiscard]] const_iterator begin() const;
  [[nodiscard]] const_iterator end() const { return {nullptr, 0}; }
  [[nodiscard]] const_iterator cbegin() const { return begin(); }
  [[nodiscard]] const_iterator cend() const { return end(); }
  /// The iterator at entry `i`, at most `size()`. This and the next cost a walk over up to 63
  /// entries.
  [[nodiscard]] const_iterator From(size_type i) const;
  [[nodiscard]] AES31Entry operator[](size_type i) const;
  /// @throws std::out_of_range
  [[nodiscard]] AES31Entry at(size_type i) const;
  [[nodiscard]] AES31Entry front() const { return (*this)[0]; }
  [[nodiscard]] AES31Entry back() const { return (*this)[size() - 1]; }

  /// Takes the form of an array, which is then this list itself. Its entries have their places for
  /// good, as long as none is added or removed.
  List& AsArray();
  [[nodiscard]] iterator begin() { return AsArray().begin(); }
  [[nodiscard]] iterator end() { return AsArray().end(); }
  [[nodiscard]] AES31Entry& operator[](size_type i) { return AsArray()[i]; }
  /// @throws std::out_of_range
  [[nodiscard]] AES31Entry& at(size_type i) { return AsArray().at(i); }
  [[nodiscard]] AES31Entry& front() { return AsArray().front(); }
  [[nodiscard]] AES31Entry& back() { return AsArray().back(); }
  void push_back(AES31Entry entry) { AsArray().push_back(std::move(entry)); }
  template <class... Parts>
  AES31Entry& emplace_back(Parts&&... parts) {
    AsArray().push_back(AES31Entry{std::forward<Parts>(parts)...});
    return AsArray().back();
  }
  void pop_back() { AsArray().pop_back(); }
  void reserve(size_type count) { AsArray().reserve(count); }
  void resize(size_type count) { AsArray().resize(count); }
  void clear() { *this = AES31Entries(); }

  // For the scanner.

  [[nodiscard]] bool IsArray() const { return list_ != nullptr; }
  /// Adds the entry whose label begins there, in a block that ends at `blockEnd`. From the list's
  /// first entry on, nothing but such entries may stand between blanks up to this one.
  void NoteScanned(const char* label, const char* blockEnd);
  /// Lets nothing be found again any more: all entries and values become arrays, because the block
  /// is about to be written to where they stand.
  void Detach();

 private:
  friend class EntryLines;
  /// So many entries are walked over at most to find one by its place.
  static constexpr size_type kMarkEvery = 64;

  EntryWalk WalkFrom(size_type i) const;

  // A scanned list:
  std::vector<const char*> marks_;  ///< labels of entries 0, 64, 128 and so on
  const char* blockEnd_ = nullptr;
  size_type count_ = 0;
  // Any other:
  std::unique_ptr<List> list_;
};

/// A tagged section. Lines mean nothing to it: an entry runs on to the next label or tag.
struct AES31Section {
  const char* name = nullptr;  ///< the tag without its angle brackets
  AES31Entries entries;        ///< in file order
};

/// The entries of a section one after the other, for those who read them all: each with its first
/// values at hand. For 3 million entries with 10 million values this takes 50 ms, and the lists
/// above twice that.
class EntryLines {
 public:
  /// Begins with the entry `first`, to which it walks over up to 63 others.
  explicit EntryLines(const AES31Entries& entries, std::size_t first = 0);
  /// Reads the next entry; false if there is none.
  bool Next(EntryLine& line);
  /// All values of the entry that was read last, which is this one.
  [[nodiscard]] AES31Values ValuesOf(const EntryLine& line) const;

 private:
  const AES31Entry* listed_ = nullptr;
  std::size_t left_;
  EntryWalk walk_;
};

}  // namespace velmora
