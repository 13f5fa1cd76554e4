#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace velmora::test::differential {

/// Makes ADL texts by chance: sound enough to be read far into, odd enough to be read wrongly. A
/// seed makes the same text each time.
class RandomAdl {
 public:
  explicit RandomAdl(std::uint32_t seed) : chance_(seed) {}

  /// A project of which every part may be odd. Many of them do not load.
  std::string WildText();
  /// A project that loads: what is odd in it are numbers, labels and order.
  std::string SoundText();
  /// A project for tables: sources `s/a.wav` to `s/e.wav`, cuts on a few tracks, other events
  /// between them.
  std::string TableText();
  /// Damages a text in some places, or cuts it off.
  std::string Damaged(std::string text);

  std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>(chance_() % limit); }
  bool OneIn(std::uint32_t number) { return Below(number) == 0; }

 private:
  const std::string& OneOf(const std::vector<std::string>& choices) {
    return choices[Below(static_cast<std::uint32_t>(choices.size()))];
  }
  std::string AnyCase(std::string word);
  std::string Blank();
  std::string Token();
  std::string QuotedValue();
  std::string Number();
  std::string Timestamp(char frameSeparator = ':');
  std::string Value();
  std::string Values(std::uint32_t count);
  std::string Label(const std::string& label);
  std::string WildLabel();
  std::string CountedEntry();
  std::string Comment();
  std::string Opening(const std::string& name);
  std::string Closing(const std::string& name);
  std::string WildSection(int depth);
  std::string ReferenceList(int depth);
  std::string WildItem(int depth);
  std::string SoundConstants();
  std::string SoundSources();
  std::string SoundEvents();
  std::string SoundEventLine();

  std::mt19937 chance_;
};

/// Makes a text that `fails` as short as it can in bounded time, and returns it.
template <class Fails>
std::string Shrunk(std::string text, const Fails& fails) {
  int attempts = 3000;
  for (std::size_t piece = (text.size() + 1) / 2; piece > 0; piece /= 2) {
    for (std::size_t at = 0; at < text.size() && attempts > 0;) {
      std::string shorter = text;
      shorter.erase(at, piece);
      --attempts;
      if (fails(shorter)) {
        text = shorter;
      } else {
        at += piece;
      }
    }
  }
  return text;
}

/// How many random texts a test tries: `usual`, or what VELMORA_SEEDS says. The sanitizers, under
/// which all is ten times slower, get a tenth.
[[nodiscard]] std::uint32_t Rounds(std::uint32_t usual);

}  // namespace velmora::test::differential
