#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <random>
#include <string>

namespace velmora::check {

/// Pieces that writers, editors and broken transfers put into projects.
inline constexpr auto kPieces = std::to_array<const char*>({
    "_",
    "0",
    "1",
    "2",
    "3",
    "7",
    "-1",
    "\"",
    "(",
    ")",
    "<",
    ">",
    "/*",
    "*/",
    "/* x */",
    "/* (Cut) */",
    "/* (Entry) 9 */",
    "/* <x> */",
    "(Entry) 1",
    "(Entry)",
    "(Index) 1",
    "(Gain) 2 3",
    "(Infade) _ _ _ _ _",
    "(Cut) I 1 1 1 00.00.10:10/0000 01.00.00:00/0000 01.00.01:00/0000 R",
    "99999999999",
    "1~2",
    "1.5",
    "1abc",
    "\"1\"",
    "x",
    "two words",
    "\xC3\xA4",
    "\x82\xA0",
    "\x1B",
    "\n",
    "\r\n",
    " ",
    "\t",
    "<EVENT_LIST>",
    "</EVENT_LIST>",
    "<X>",
    "</X>",
    "(x",
    "(x)5",
    "y)",
    "00.00.10:10/0000",
    "00.00.10:10",
    "\"00.00.10:10/0000\"",
    "00|00|10:10|0000",
    "01.00.00;02/0000",
    "<REF_LIST>",
    "</REF_LIST>",
    "</ADL>",
    "<ADL>",
});

/// Replaces, inserts or removes a piece at a random word.
inline std::string Damaged(std::string text, std::mt19937& random) {
  const auto below = [&random](std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
  };
  const std::size_t changes = 1 + below(3);
  for (std::size_t change = 0; change < changes; ++change) {
    std::size_t begin = below(text.size());
    // At the beginning of a word more often than within one.
    if (below(4) != 0) begin = std::min(text.find_first_of(" \n", begin), text.size() - 1) + 1;
    std::size_t end = std::min(text.find_first_of(" \n", begin), text.size());
    if (begin > end) begin = end;
    const std::string piece = kPieces[below(kPieces.size())];
    switch (below(4)) {
      case 0:
        text.erase(begin, end - begin);
        break;
      case 1:
        text.insert(begin, piece + " ");
        break;
      case 2:
        text.replace(begin, end - begin, piece);
        break;
      default:
        text.insert(begin, piece);
        break;
    }
  }
  return text;
}

}  // namespace velmora::check
