#pragma once

#include <utility>
#include <vector>

#include "ADL/AES31Section.h"
#include "ADL/Blanks.h"

namespace velmora {

/// Cuts the text of an ADL file into a tree, in place: it writes NUL bytes into the block to end
/// each piece and keeps pointers to the pieces. Labels and values mean nothing to it, and it
/// reports nothing: a damaged file yields a shorter tree.
///
/// The block behaves as if blanks followed it. `*end` is a spare NUL after the block; nothing else
/// outside the block is read or written.
///
/// One pass that writes NUL bytes and counts entries: 110 MB take 50 ms. Sections find their
/// entries again in the block, but for two odd cases in which that cannot be: a comment between
/// entries, and a counted label that cuts what stands before it.
class AdlScanner {
 public:
  AdlScanner(char* begin, char* end, std::vector<std::vector<AES31Section>>& refLists,
             std::vector<const char*>& comments)
      : begin_(begin), end_(end), refLists_(refLists), comments_(comments) {}

  /// Scans the block's outer section into `sections`. False if the block does not begin with the
  /// tag <ADL>: it is no ADL then, and nothing of it is read.
  bool Scan(std::vector<AES31Section>& sections);

 private:
  /// Nesting of <REF> blocks from which on one counts as damaged: it bounds the stack.
  static constexpr int kMaxDepth = 256;

  struct Token {
    char* begin;
    char* end;  ///< equal to `begin` at the end of the block
    char First() const { return begin == end ? '\0' : *begin; }
    char Last() const { return begin == end ? '\0' : end[-1]; }
  };

  /// What the values of an entry are: kept one by one only where they cannot be found again.
  struct Values {
    const char* first = nullptr;
    std::size_t count = 0;
    std::vector<const char*> texts;
  };

  // Each returns the position to go on from, which may lie one past `end_`; null ends the scan.
  char* ScanSection(std::vector<AES31Section>& sections, char* at, const char* tag, int depth);
  char* ScanBlock(std::vector<AES31Section>& sections, char* at, const char* tag, int depth);
  char* ScanReferenceList(char* at, int depth);
  char* ScanEntries(AES31Section& section, char* at);
  char* ScanEntry(AES31Section& section, const Token& token);
  char* ScanValues(Values& values, char* at);
  char* ScanCountedValue(AES31Section& section, Values& values, const Token& token);
  char* TakeComment(const Token& token);

  void Note(Values& values, const char* text) const;
  void DetachEverything(AES31Section& section);

  Token NextToken(char* at) const { return TokenAt(NextText(at, end_)); }
  Token TokenAt(char* at) const { return {at, at == end_ ? at : NextBlank(at + 1, end_)}; }
  bool StartsWith(const Token& token, const char* prefix) const;

  char* const begin_;
  char* const end_;
  std::vector<std::vector<AES31Section>>& refLists_;
  /// Stretches of the block, rising, in which backward searches have found no further ")". A later
  /// search jumps over them, so that many searches together take time in proportion to the block.
  std::vector<std::pair<char*, char*>> searched_;
  std::vector<const char*>& comments_;
  std::vector<std::vector<AES31Section>*> open_;  ///< lists of the sections around the present one
  bool detached_ = false;  ///< entries and values are kept one by one from now on
};

}  // namespace velmora
