#include "Session/SessionJson.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

namespace velmora::host {
namespace {

std::string Written(const Session& session) {
  std::ostringstream out;
  EXPECT_TRUE(WriteSessionJson(session, out));
  return out.str();
}

TEST(SessionJson, writesAnEmptySession) {
  const Session session;
  EXPECT_EQ(Written(session),
            "{\n"
            "  \"summary\": {\"tracks\":0,\"regions\":0,\"files\":0,\"first\":0,\"end\":0},\n"
            "  \"tracks\": []\n"
            "}\n");
}

TEST(SessionJson, writesTracksRegionsAndWhatIsHeardOfThem) {
  Session session;
  session.Place({2, 100, 7, 57, 1, "/a/x.wav", "x"});
  session.Place({0, -5, 3, 3, 2, "/a/y.wav", "y"});
  session.Place({2, 120, 0, 10, 1, "/a/y.wav", "y_Gain"});
  EXPECT_EQ(
      Written(session),
      R"({
  "summary": {"tracks":2,"regions":3,"files":2,"first":-5,"end":150},
  "tracks": [
    {
      "track": 0,
      "regions": [
        {"index":1,"name":"y","path":"/a/y.wav","position":-5,"length":0,"start":3,"stop":3,"stream":2,)"
      R"("fadeIn":0,"fadeOut":0,"gainDb":0.0,"event":null,"entry":null,"source":null,"piece":null}
      ],
      "visible": []
    },
    {
      "track": 2,
      "regions": [
        {"index":0,"name":"x","path":"/a/x.wav","position":100,"length":50,"start":7,"stop":57,"stream":1,)"
      R"("fadeIn":0,"fadeOut":0,"gainDb":0.0,"event":null,"entry":null,"source":null,"piece":null},
        {"index":2,"name":"y_Gain","path":"/a/y.wav","position":120,"length":10,"start":0,"stop":10,"stream":1,)"
      R"("fadeIn":0,"fadeOut":0,"gainDb":0.0,"event":null,"entry":null,"source":null,"piece":null}
      ],
      "visible": [
        {"region":0,"position":100,"end":120},
        {"region":2,"position":120,"end":130},
        {"region":0,"position":130,"end":150}
      ]
    }
  ]
}
)");
}

TEST(SessionJson, tellsWhereARegionCameFromAndItsFades) {
  Session session;
  const std::size_t region = session.Place({0, 0, 0, 50, 1, "/a/x.wav", "x"});
  session.Describe(region, {3, 7, 2, RegionPiece::Crossfade});
  session.Shape(region, {10, 20, -6.5});
  const std::string text = Written(session);
  EXPECT_NE(text.find(R"("fadeIn":10,"fadeOut":20,"gainDb":-6.5,"event":3,"entry":7,"source":2,)"
                      R"("piece":"crossfade"})"),
            std::string::npos)
      << text;
  session.Describe(region, {3, 7, std::nullopt, RegionPiece::Main});
  EXPECT_NE(Written(session).find(R"("source":null,"piece":"main"})"), std::string::npos);
}

TEST(SessionJson, isUtf8AndJsonWhateverTheNamesHold) {
  std::string every;
  for (int byte = 0; byte < 256; ++byte) every.push_back(static_cast<char>(byte));
  Session session;
  session.Place({0, 0, 0, 1, 1, '/' + every,
                 "\xE3\x81"
                 "z\"\\\n"});
  session.Place({0, 1, 0, 1, 1, "/\xE9t\xE9.wav", "\xF0\x9F\x8E\xB5"});
  const std::string text = Written(session);
  // A parser in strict mode refuses bytes that are not UTF-8.
  const auto json = nlohmann::json::parse(text, nullptr, false);
  ASSERT_FALSE(json.is_discarded()) << text;
  const auto& regions = json["tracks"][0]["regions"];
  EXPECT_EQ(regions[0]["name"].get<std::string>(), "\xEF\xBF\xBD\xEF\xBF\xBDz\"\\\n");
  EXPECT_EQ(regions[0]["path"].get<std::string>().substr(1, 128), every.substr(0, 128));
  EXPECT_EQ(regions[1]["path"].get<std::string>(), "/\xEF\xBF\xBDt\xEF\xBF\xBD.wav");
  EXPECT_EQ(regions[1]["name"].get<std::string>(), "\xF0\x9F\x8E\xB5");
}

TEST(SessionJson, ignoresTheStreamsFormat) {
  Session session;
  session.Place({10, 255, 16, 32, 1, "/a.wav", "a"});
  std::ostringstream out;
  out << std::hex << std::showpos << std::showbase;
  ASSERT_TRUE(WriteSessionJson(session, out));
  EXPECT_EQ(out.str(), Written(session));
}

TEST(SessionJson, tellsThatTheStreamFailed) {
  const Session session;
  std::ostringstream out;
  out.setstate(std::ios::badbit);
  EXPECT_FALSE(WriteSessionJson(session, out));
}

}  // namespace
}  // namespace velmora::host
