#include "Program/JsonPen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "ADL/ShiftJis.h"
#include "Session/JsonText.h"

namespace velmora::program {
namespace {

// The packaged library that builds values before it writes them is the witness.

/// A copy of a text without a byte after it that may be read.
class TightText {
 public:
  explicit TightText(std::string_view text) : bytes_(new char[text.size()]), size_(text.size()) {
    std::copy(text.begin(), text.end(), bytes_.get());
  }
  operator std::string_view() const { return {bytes_.get(), size_}; }

 private:
  std::unique_ptr<char[]> bytes_;
  std::size_t size_;
};

/// Calls `check` with texts of up to 70 bytes that have one byte of every value at every place.
template <class Check>
void ForEachByteAtEveryPlace(const Check& check) {
  for (int byte = 0; byte < 256; ++byte) {
    for (const std::size_t size :
         {1u, 2u, 3u, 4u, 5u, 7u, 8u, 9u, 15u, 16u, 17u, 31u, 32u, 33u, 70u}) {
      for (std::size_t at = 0; at < size; ++at) {
        std::string text(size, 'a');
        text[at] = static_cast<char>(byte);
        check(text, static_cast<char>(byte));
        if (::testing::Test::HasFailure()) return;
      }
    }
  }
}

TEST(JsonPlain, marksInOneStepAreThoseOfEachByte) {
  std::mt19937 random(5);
  for (int byte = 0; byte < 256; ++byte) {
    for (std::size_t at = 0; at < kStepBytes; ++at) {
      std::string text(kStepBytes, 'a');
      text[at] = static_cast<char>(byte);
      ASSERT_EQ(MarkEscaped(text.data()), MarkEscapedPortably(text.data())) << byte << " at " << at;
      ASSERT_EQ(MarkEscaped(text.data()) == 0, IsPlainInJson(static_cast<char>(byte)));
    }
  }
  for (int i = 0; i < 10000; ++i) {
    std::string text(kStepBytes, '\0');
    for (char& c : text) c = static_cast<char>(random());
    ASSERT_EQ(MarkEscaped(text.data()), MarkEscapedPortably(text.data()));
  }
}

TEST(JsonPlain, copiesPlainTextsOfAnySizeAndNoOthers) {
  ForEachByteAtEveryPlace([](const std::string& text, char byte) {
    const TightText tight(text);
    std::string copy(text.size(), '?');
    const bool isCopied = CopyPlainText(tight, copy.data());
    if (byte != 0x7F) {  // plain, but whoever says otherwise looks at it once more
      EXPECT_EQ(isCopied, IsPlainInJson(byte)) << text;
    }
    if (isCopied) {
      EXPECT_EQ(copy, text);
    }
  });
  EXPECT_TRUE(CopyPlainText("", nullptr));
}

/// What the pen makes of a project's text: in a block that goes on for so many bytes after its NUL,
/// and in none.
std::vector<std::string> ProjectTexts(const std::string& text) {
  std::vector<std::string> written;
  for (const std::size_t after : {0u, 1u, 14u, 15u, 16u, 31u, 32u, 100u}) {
    const TightText block("ab" + text + std::string(1, '\0') + std::string(after, '"'));
    CharBuffer buffer;
    JsonPen(buffer, block).ProjectText(std::string_view(block).data() + 2);
    written.emplace_back(buffer.Text());
  }
  CharBuffer buffer;
  JsonPen(buffer, {}).ProjectText(text.c_str());
  written.emplace_back(buffer.Text());
  return written;
}

TEST(JsonPen, writesProjectTextsAsTheLibraryDoesWhereverTheyStand) {
  ForEachByteAtEveryPlace([](const std::string& text, char) {
    const std::string expected = host::JsonText(ShiftJisToUtf8(text.c_str()));
    for (const std::string& written : ProjectTexts(text)) EXPECT_EQ(written, expected);
  });
  for (const std::string& written : ProjectTexts("")) EXPECT_EQ(written, "\"\"");
  CharBuffer none;
  JsonPen(none, "block").ProjectText(static_cast<const char*>(nullptr));
  EXPECT_EQ(none.Text(), "null");
}

TEST(JsonPen, writesQuotedProjectTextsAsTheLibraryDoes) {
  const auto check = [](const std::string& text) {
    const std::string expected = host::JsonText(ShiftJisToUtf8(text.c_str()));
    for (const std::string& written : ProjectTexts(text)) EXPECT_EQ(written, expected) << text;
  };
  ForEachByteAtEveryPlace([&check](const std::string& text, char) { check('"' + text + '"'); });
  for (const char* const text : {"\"", "\"\"", "\"\"\"", "\"a", "\"a\"b", "\"a\" ", "a\""})
    check(text);
  for (const std::size_t size : {4093u, 4094u, 4095u, 70000u}) {
    check('"' + std::string(size, 'a') + '"');
  }
}

TEST(JsonPen, writesTextsOfKnownSizeAsTheLibraryDoes) {
  ForEachByteAtEveryPlace([](const std::string& text, char byte) {
    const TightText tight(text);
    CharBuffer utf8;
    JsonPen(utf8, {}).Text(tight);
    EXPECT_EQ(utf8.Text(), host::JsonText(text));
    if (byte == '\0') return;
    CharBuffer project;
    JsonPen(project, {}).ProjectText(std::string_view(tight));
    EXPECT_EQ(project.Text(), host::JsonText(ShiftJisToUtf8(text.c_str())));
  });
  for (const std::string text : {"", "\n", "\n\n", "0007\n", "\x01\n", "a\nb", "嵐\n"}) {
    CharBuffer buffer;
    JsonPen(buffer, {}).Text(text);
    EXPECT_EQ(buffer.Text(), host::JsonText(text));
  }
}

TEST(JsonPen, writesNumbersAsTheLibraryDoes) {
  using Limits = std::numeric_limits<std::int64_t>;
  for (const std::int64_t number : {std::int64_t{0}, std::int64_t{9}, std::int64_t{10},
                                    std::int64_t{-1}, Limits::min(), Limits::max()}) {
    CharBuffer buffer;
    JsonPen(buffer, {}).Integer(number);
    EXPECT_EQ(buffer.Text(), std::to_string(number));
  }
  for (const double number : {0.0, -0.0, 1.0, -3.01, 0.1, 1e16, 5e-324}) {
    CharBuffer buffer;
    JsonPen(buffer, {}).Decimal(number);
    EXPECT_EQ(buffer.Text(), host::JsonText(number));
  }
  CharBuffer infinite;
  JsonPen(infinite, {}).Decimal(std::numeric_limits<double>::infinity());
  EXPECT_EQ(infinite.Text(), "null");
}

TEST(JsonPen, writesPiecesWithWhatStandsBetween) {
  const JsonPiece shortKey(R"({"Space":)");
  const JsonPiece longKey(R"(,"a key that takes more than one step to copy":)");
  const JsonPiece nothing("");
  std::string expected = "before";
  CharBuffer buffer;
  buffer.Append("before");
  {
    JsonPen json(buffer, {});
    for (int i = 0; i < 5000; ++i) {  // so that the text has to grow anywhere
      json.Part(shortKey).Digits("12").Part(nothing).Part(longKey).Text("te\"xt").Part("}");
      expected += R"({"Space":12,"a key that takes more than one step to copy":"te\"xt"})";
    }
  }
  EXPECT_EQ(buffer.Text(), expected);
}

}  // namespace
}  // namespace velmora::program
