#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace velmora {

/// A set of events of a list, by index: one bit an event.
class EventSet {
 public:
  static constexpr std::int32_t kWordBits = 64;

  /// Of the events 0 to `events` - 1, all or none.
  explicit EventSet(std::int32_t events = 0, bool all = false)
      : events_(events), words_(WordsFor(events), all ? ~std::uint64_t{0} : 0) {
    const std::int32_t unused = static_cast<std::int32_t>(words_.size()) * kWordBits - events;
    if (all && unused > 0) words_.back() >>= static_cast<unsigned>(unused);
  }

  /// Members or not, the events of the list.
  [[nodiscard]] std::int32_t Events() const { return events_; }
  [[nodiscard]] bool Has(std::int32_t event) const { return (Word(event) & Bit(event)) != 0; }
  void Put(std::int32_t event, bool isMember) {
    std::uint64_t& word = words_[WordOf(event)];
    word = isMember ? word | Bit(event) : word & ~Bit(event);
  }
  /// The members among the events `kWordBits` * n and on, lowest bit first, in one step. Bits past
  /// the last event have to be 0.
  void PutWord(std::size_t n, std::uint64_t members) { words_[n] = members; }
  /// The events `kWordBits` * n and on, lowest bit first. Bits past the last event are 0.
  [[nodiscard]] const std::vector<std::uint64_t>& Words() const { return words_; }

  [[nodiscard]] friend EventSet operator&(EventSet a, const EventSet& b) {
    for (std::size_t i = 0; i < a.words_.size(); ++i) a.words_[i] &= b.words_[i];
    return a;
  }
  /// True if `b` has every member of `a`.
  [[nodiscard]] friend bool IsWithin(const EventSet& a, const EventSet& b) {
    for (std::size_t i = 0; i < a.words_.size(); ++i) {
      if ((a.words_[i] & ~b.words_[i]) != 0) return false;
    }
    return true;
  }

 private:
  static std::size_t WordsFor(std::int32_t events) {
    return (static_cast<std::size_t>(events) + kWordBits - 1) / kWordBits;
  }
  static std::size_t WordOf(std::int32_t event) {
    return static_cast<std::size_t>(event) / kWordBits;
  }
  static std::uint64_t Bit(std::int32_t event) {
    return std::uint64_t{1} << (static_cast<unsigned>(event) % kWordBits);
  }
  [[nodiscard]] std::uint64_t Word(std::int32_t event) const { return words_[WordOf(event)]; }

  std::int32_t events_;
  std::vector<std::uint64_t> words_;
};

}  // namespace velmora
