#include "Program/JsonStream.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <sstream>
#include <string>

#include "ADL/ShiftJis.h"
#include "Session/JsonText.h"

namespace velmora::program {
namespace {

// The packaged library that builds values before it writes them is the witness.

std::string TextOf(std::string_view text) {
  CharBuffer buffer;
  JsonStream(buffer).Text(text);
  return std::string(buffer.Text());
}

std::string DecimalOf(double number) {
  CharBuffer buffer;
  JsonStream(buffer).Decimal(number);
  return std::string(buffer.Text());
}

TEST(JsonStream, writesEveryByteAtEveryPlaceAsTheLibraryDoes) {
  for (int byte = 0; byte < 256; ++byte) {
    for (std::size_t size = 1; size < 20; ++size) {
      for (std::size_t at = 0; at < size; ++at) {
        std::string text(size, 'a');
        text[at] = static_cast<char>(byte);
        ASSERT_EQ(TextOf(text), host::JsonText(text)) << byte << " at " << at << " of " << size;
      }
    }
  }
}

TEST(JsonStream, writesTextsOfAnySizeAsTheLibraryDoes) {
  EXPECT_EQ(TextOf(""), "\"\"");
  for (const std::size_t size : {65535u, 65536u, 65537u, 200000u}) {
    const std::string text = std::string(size, 'x') + "\"\x01\xE5";
    EXPECT_EQ(TextOf(text), host::JsonText(text)) << size;
    EXPECT_EQ(TextOf(text.substr(0, size)), host::JsonText(text.substr(0, size))) << size;
  }
}

TEST(JsonStream, readsProjectTextsAsShiftJis) {
  const char* const texts[] = {"", "Cut", "\"take\"", "a\\b~", "\x97\x92\x82\xCC", "\xFF", "\xE5"};
  for (const char* const text : texts) {
    CharBuffer buffer;
    JsonStream(buffer).ProjectText(text);
    EXPECT_EQ(buffer.Text(), host::JsonText(ShiftJisToUtf8(text)));
  }
  CharBuffer none;
  JsonStream(none).ProjectText(nullptr);
  EXPECT_EQ(none.Text(), "null");
}

TEST(JsonStream, writesDecimalsAsTheLibraryDoes) {
  const double numbers[] = {0.0,
                            -0.0,
                            1.0,
                            -3.01,
                            0.1,
                            1e15,
                            1e16,
                            123456789012345678.0,
                            1e-4,
                            1e-5,
                            5e-324,
                            1e308,
                            -2.5e-7,
                            4.9406564584124654e-324,
                            std::numeric_limits<double>::max()};
  for (const double number : numbers) EXPECT_EQ(DecimalOf(number), host::JsonText(number));
  std::mt19937_64 random(9);
  for (int i = 0; i < 20000; ++i) {
    const double number = std::bit_cast<double>(random());
    if (!std::isfinite(number)) continue;
    ASSERT_EQ(DecimalOf(number), host::JsonText(number));
  }
  EXPECT_EQ(DecimalOf(std::numeric_limits<double>::infinity()), "null");
  EXPECT_EQ(DecimalOf(std::numeric_limits<double>::quiet_NaN()), "null");
}

TEST(JsonStream, putsCommasWhereTheyBelong) {
  CharBuffer buffer;
  JsonStream json(buffer);
  json.BeginObject().Key("a").BeginArray().EndArray();
  json.Key("b").BeginArray().Integer(-1).Text("\xFF").Null().BeginObject().EndObject().EndArray();
  json.Key("c").Boolean(true);
  json.Key(std::string_view("d")).Integer(std::numeric_limits<std::int64_t>::min());
  json.EndObject();
  EXPECT_EQ(buffer.Text(),
            "{\"a\":[],\"b\":[-1,\"\xEF\xBF\xBD\",null,{}],\"c\":true,\"d\":-9223372036854775808}");
}

TEST(JsonStream, continuesAnArrayThatAnotherStreamBegan) {
  CharBuffer buffer;
  JsonStream(buffer).BeginArray().Integer(1);
  JsonStream(buffer).ContinueArray().Integer(2).EndArray();
  EXPECT_EQ(buffer.Text(), "[1,2]");
}

TEST(JsonStream, writesAllOfALargeValueToAStream) {
  std::ostringstream out;
  std::string expected = "[";
  {
    JsonStream json(out);
    json.BeginArray();
    for (int i = 0; i < 50000; ++i) {
      json.BeginObject().Key("i").Integer(i).EndObject();
      expected += (i > 0 ? ",{\"i\":" : "{\"i\":") + std::to_string(i) + '}';
    }
    json.EndArray();
    EXPECT_GT(out.str().size(), 0u) << "it is written before all of it stands in memory";
    json.EndLine();
  }
  EXPECT_EQ(out.str(), expected + "]\n");
}

}  // namespace
}  // namespace velmora::program
