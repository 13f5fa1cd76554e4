#include "Base/StandardError.h"

#include <gtest/gtest.h>

#include <string>

#include "ADL/AES31Project.h"
#include "Base/PrintableLine.h"
#include "Base/SystemLog.h"
#include "Support/CapturedStandardError.h"
#include "Support/TemporaryFolder.h"

namespace velmora::test {
namespace {

const std::string kHostile = "a\x1B]0;title\x07z \x9B 2J\xC2\x9B\x7F";

class StandardErrorTest : public testing::Test {
 protected:
  ~StandardErrorTest() override { SetStandardErrorFilter(nullptr); }

  template <class Write>
  static std::string Told(Write write) {
    CapturedStandardError captured;
    write();
    return captured.Text();
  }
};

TEST_F(StandardErrorTest, linesGoOutAsTheyAreUnlessThereIsAFilter) {
  EXPECT_EQ(Told([] { WriteStandardError(kHostile); }), kHostile + '\n');
  EXPECT_EQ(Told([] { SystemLog(kHostile); }), kHostile + '\n');
  SetStandardErrorFilter(PrintableLine);
  const std::string printable = "a ]0;title z \xEF\xBF\xBD 2J\n";
  EXPECT_EQ(Told([] { WriteStandardError(kHostile); }), printable);
  EXPECT_EQ(Told([] { SystemLog(kHostile); }), printable);
}

/// Labels end at such bytes, but for one: a counted label without its closing parenthesis takes the
/// number after the one before, and reaches as far as its value.
TEST_F(StandardErrorTest, readersLinesPassTheFilterAndDiagnosticsDoNot) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("p.adl",
                                        "<ADL>\n<EVENT_LIST>\n(Entry) 1 (Cut) I 1 1 1 a b c d\n"
                                        "(Rem) \"x)7\" (Odd \x1B[2J\x9B"
                                        "x\n</EVENT_LIST>\n</ADL>\n");
  const std::string line = "Encountered unexpected label: Odd ";
  const auto load = [&] {
    bool ok = false;
    const AES31Project project(path.c_str(), nullptr, &ok);
    ASSERT_EQ(project.diagnostics.size(), 1U);
    EXPECT_EQ(project.diagnostics[0].text, line +
                                               "\x1B[2J\x9B"
                                               "x");
  };
  EXPECT_EQ(Told(load), line +
                            "\x1B[2J\x9B"
                            "x\n");
  SetStandardErrorFilter(PrintableLine);
  EXPECT_EQ(Told(load), line +
                            " [2J\xEF\xBF\xBD"
                            "x\n");
}

struct LineRow {
  const char* rule;
  std::string text;
  std::string line;
};

TEST(PrintableLine, takesAwayWhatATerminalObeys) {
  const LineRow rows[] = {
      {"printable", "caf\xC3\xA9 \xE5\xB5\x90 \xF0\x9F\x8E\x99",
       "caf\xC3\xA9 \xE5\xB5\x90 \xF0\x9F\x8E\x99"},
      {"controls",
       std::string("a\0b\tc\nd\re\x1B"
                   "f\x1F"
                   "g",
                   13),
       "a b c d e f g"},
      {"delete",
       "a\x7F"
       "b",
       "a b"},
      {"controlsFrom80On",
       "a\xC2\x80"
       "b\xC2\x9F"
       "c\xC2\xA0"
       "d",
       "a b c\xC2\xA0"
       "d"},
      {"rawBytesOfThose",
       "a\x80"
       "b\x9F"
       "c",
       "a\xEF\xBF\xBD"
       "b\xEF\xBF\xBD"
       "c"},
      {"turnsOfDirection",
       "a\xE2\x80\xAE"
       "b\xE2\x81\xA6"
       "c\xE2\x80\x8F"
       "d",
       "a b c d"},
      {"endsOfLines",
       "a\xE2\x80\xA8"
       "b\xE2\x80\xA9"
       "c",
       "a b c"},
      {"blankEnd", "a \x1B \x7F", "a"},
      {"nothing", "", ""},
  };
  for (const LineRow& row : rows) EXPECT_EQ(PrintableLine(row.text), row.line) << row.rule;
}

}  // namespace
}  // namespace velmora::test
