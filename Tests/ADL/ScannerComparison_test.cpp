#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>

#include "LoadedProject.h"
#include "ReferenceScanner.h"

namespace velmora::test {
namespace {

using std::string_view_literals::operator""sv;

// Names that no reader takes up, so that only the scan is compared.
constexpr auto kPieces = std::to_array<std::string_view>({
    "<A>",
    "</A>",
    "</a>",
    "<B",
    "</B>",
    "</AB>",
    "<>",
    "<",
    "</",
    "</>",
    "<ADL>",
    "</ADL>",
    "<REF_LIST>",
    "</REF_LIST>",
    "<REF>",
    "</REF>",
    "<ref>",
    "</ref_list>",
    "(x)",
    "(y)",
    "()",
    "(",
    ")",
    "(x)(y)",
    "(x)3",
    "(y)0",
    "(z)12",
    "(x)1",
    "(y)-2",
    "(z)q",
    "(x)999999999999",
    "(y)7)",
    "1",
    "22",
    "word",
    "fifteen_letters",
    "01.02:03:04/0567",
    "01.02:03:04/0567x",
    "01.02:03:\x82/0567",
    "\"quoted text\"",
    "\"",
    "\"\"",
    "\"a\x1B\"b\"",
    "\"(z) </A>\"",
    "/*",
    "*/",
    "/*/",
    "/**/",
    "/* note */",
    "*",
    "/",
    "\x82\xA0",
    "\x1B",
    "\0"sv,
    "ab\"cd",
    "x\x7F",
    "!",
});

constexpr auto kBlanks = std::to_array<std::string_view>(
    {" ", " ", " ", " ", "\n", "\r\n", "\t", "", "\x80", "  ", "\0"sv});

class Soup {
 public:
  explicit Soup(std::uint32_t seed) : random_(seed) {}

  std::string Project() {
    std::string adl = "<ADL> ";
    for (auto pieces = random_() % 40; pieces > 0; --pieces) adl += Piece();
    if (random_() % 4 == 0) adl += "</REF> </REF_LIST> <A> (x) 1 </A> ";
    if (random_() % 4 != 0) adl += "</ADL>\n";
    if (random_() % 8 == 0) adl.resize(random_() % adl.size());
    return adl;
  }

 private:
  /// A single piece, or one of the wholes that let a scan get far.
  std::string Piece() {
    const std::string blank(kBlanks[random_() % kBlanks.size()]);
    switch (random_() % 8) {
      case 0:
        return "<A> (x) 1 \"2 3\" (y) </A>" + blank;
      case 1:
        return "<REF_LIST> <REF> <B> (z) 4 </B> </REF> </REF_LIST>" + blank;
      case 2:
        return "(x) \"one\" (y) two" + blank;
      case 3:
        return "<REF_LIST> <REF> <A> </A>" + blank;
      default:
        return std::string(kPieces[random_() % kPieces.size()]) + blank;
    }
  }

  std::mt19937 random_;
};

TEST(ScannerComparison, arbitraryProjectsScanAsTheReferenceDoes) {
  const TemporaryFolder folder;
  const ReusedFile file(folder);
  int withSections = 0;
  int withLists = 0;
  int comparedCuts = 0;
  for (std::uint32_t seed = 1; seed <= 6'000; ++seed) {
    const std::string adl = Soup(seed).Project();
    const Loading project(file.Holding(adl));
    const ReferenceScanner reference(adl);
    ASSERT_TRUE(project.ok) << "seed " << seed;
    ASSERT_EQ(Shown(project->sections), reference.Sections()) << "seed " << seed << "\n" << adl;
    ASSERT_EQ(ShownTexts(project->comments), reference.Comments()) << "seed " << seed << "\n"
                                                                   << adl;
    if (!reference.CutInsideAReferenceList()) {
      ASSERT_EQ(Shown(project->refLists), reference.RefLists()) << "seed " << seed << "\n" << adl;
      if (!project->refLists.empty()) ++withLists;
    } else {
      ++comparedCuts;
    }
    if (!project->sections.empty()) ++withSections;
  }
  // The generator is worth its time only if the scans get somewhere.
  EXPECT_GT(withSections, 1'500);
  EXPECT_GT(withLists, 500);
  EXPECT_GT(comparedCuts, 300);
}

TEST(ScannerComparison, arbitraryBytesScanAsTheReferenceDoes) {
  const TemporaryFolder folder;
  const ReusedFile file(folder);
  std::mt19937 random(77);
  constexpr std::string_view kCommon =
      "<>()/*\" \n\x1B"
      "019AxREF_LIST\x00\x82"sv;
  for (int round = 0; round < 3'000; ++round) {
    std::string adl = "<ADL> <A> ";
    for (auto size = random() % 120; size > 0; --size) {
      adl += random() % 6 == 0 ? static_cast<char>(random() % 256)
                               : kCommon[random() % kCommon.size()];
    }
    const Loading project(file.Holding(adl));
    const ReferenceScanner reference(adl);
    ASSERT_EQ(Shown(project->sections), reference.Sections()) << "round " << round << "\n" << adl;
    ASSERT_EQ(ShownTexts(project->comments), reference.Comments()) << "round " << round;
  }
}

// Sixteen bytes of a value are looked at together where the block has so many left.
TEST(ScannerComparison, valuesOfAnyLengthAtAnyPlaceScanAsTheReferenceDoes) {
  constexpr std::size_t kLongest = 35;
  constexpr std::string_view kAfter = "\n\t(y) 0123456789abcdef_ z </A> </ADL>\n";
  const TemporaryFolder folder;
  const ReusedFile file(folder);
  for (std::size_t length = 1; length <= kLongest; ++length) {
    for (std::size_t odd = 0; odd <= length; ++odd) {
      for (const char c : {' ', '\x80', '!', '(', '<', ')', '"', '\0'}) {
        std::string value(length, 'v');
        if (odd < length) value[odd] = c;
        const std::string adl = "<ADL> <A> (x) " + value + std::string(kAfter);
        const Loading project(file.Holding(adl));
        ASSERT_EQ(Shown(project->sections), ReferenceScanner(adl).Sections()) << adl;
      }
    }
    // The block ends in the value or soon after it.
    for (std::size_t left = 0; left <= kAfter.size(); ++left) {
      const std::string adl =
          "<ADL> <A> (x) " + std::string(length, 'v') + std::string(kAfter.substr(0, left));
      const Loading project(file.Holding(adl));
      ASSERT_EQ(Shown(project->sections), ReferenceScanner(adl).Sections()) << adl;
    }
  }
}

}  // namespace
}  // namespace velmora::test
