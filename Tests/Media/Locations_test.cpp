// What a location's text may mean.

#include "Media/Locations.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velmora::media {
namespace {

std::string Joined(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) joined += (joined.empty() ? "" : "|") + text;
  return joined;
}

struct Row {
  const char* text;
  const char* paths;
  const char* names;
};

TEST(DecodeLocation, everyForm) {
  const Row rows[] = {
      {"URL:file://localhost/Vol/A/x.wav", "/Vol/A/x.wav", "x.wav"},
      {"url:FILE://server/Vol/A/x.wav", "/Vol/A/x.wav", "x.wav"},
      {"Url: file:///Vol/A/x.wav", "/Vol/A/x.wav", "x.wav"},
      {"file:/Vol/x.wav", "/Vol/x.wav", "x.wav"},
      {"URL:/Vol/x.wav", "/Vol/x.wav", "x.wav"},
      {"/Vol/x.wav", "/Vol/x.wav", "x.wav"},
      {"x.wav", "", "x.wav"},
      {"URL:x.wav", "", "x.wav"},
      {"A/x.wav", "A/x.wav", "x.wav"},
      {"URL:file:///C:/A/x.wav", "", "x.wav"},
      {"URL:file://C:/A/x.wav", "", "x.wav"},
      {"URL:file://localhost/C:/A%20B/x%20y.wav", "", "x y.wav|x%20y.wav"},
      {R"(C:\A\x.wav)", "", R"(x.wav|\A\x.wav)"},
      {R"(URL:file:\\\C:\A\x.wav)", "", R"(x.wav|\C:\A\x.wav)"},
      {R"(\\server\share\x.wav)", "//server/share/x.wav", R"(x.wav|\\server\share\x.wav)"},
      {"URL:file:///V/a%20b.wav", "/V/a b.wav|/V/a%20b.wav", "a b.wav|a%20b.wav"},
      {"URL:file:///V/100%.wav", "/V/100%.wav", "100%.wav"},
      {"URL:file:///V/100%2.wav", "/V/100%2.wav", "100%2.wav"},
      {"URL:file:///V/a%e4.wav", "/V/a\xE4.wav|/V/a%e4.wav", "a\xE4.wav|a%e4.wav"},
      {"URL:file:///V/a%00b.wav", "/V/a%00b.wav", "a%00b.wav"},
      {"URL:file:///V/Take {4F}  1.wav", "/V/Take {4F}  1.wav", "Take {4F}  1.wav"},
      {"URL:file:///V/a+b.wav", "/V/a+b.wav", "a+b.wav"},
      {"", "", ""},
      {"URL:", "", ""},
      {"URL:file://localhost", "", "localhost"},
      {"/V/", "", ""},
      {"/V/..", "", ""},
  };
  for (const Row& row : rows) {
    const Location location = DecodeLocation(row.text);
    EXPECT_EQ(Joined(location.paths), row.paths) << row.text;
    EXPECT_EQ(Joined(location.names), row.names) << row.text;
  }
}

TEST(DecodeLocation, tailsHaveNoSlashOrDriveBeforeThem) {
  EXPECT_EQ(Joined(DecodeLocation("URL:file:///C:/A%20B/x.wav").tails), "A B/x.wav|A%20B/x.wav");
  EXPECT_EQ(Joined(DecodeLocation("URL:file://h//V/x.wav").tails), "V/x.wav");
  EXPECT_EQ(Joined(DecodeLocation("x.wav").tails), "x.wav");
}

}  // namespace
}  // namespace velmora::media
