#include "SlowTimes.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <limits>
#include <map>

namespace velmora::test::differential {
namespace {

std::string SixteenOf(const char* text) {
  std::string characters(text);
  characters.resize(16, '\0');
  return characters;
}

struct Frames {
  int perSecond;
  bool isPulled;
};

Frames FramesOf(char mark) {
  const std::map<char, Frames> marks = {
      {'?', {30, false}}, {'|', {30, false}}, {':', {30, true}},
      {'!', {25, false}}, {'.', {25, false}}, {'/', {25, true}},
      {'=', {24, false}}, {'#', {24, false}}, {'-', {24, true}},
  };
  const auto found = marks.find(mark);
  return found == marks.end() ? Frames{0, false} : found->second;
}

double RateOf(char mark) {
  const std::map<char, double> marks = {
      {'(', 30720.0},
      {'\'', 31968.031968031966},
      {'=', 32000.0},
      {'"', 32032.0},
      {')', 33333.333333333336},
      {'[', 42336.0},
      {'~', 44055.944055944055},
      {'|', 44100.0},
      {'^', 44144.1},
      {']', 45937.5},
      {'<', 46080.0},
      {'-', 47952.04795204795},
      {'/', 48000.0},
      {'+', 48048.0},
      {'>', 50000.0},
      {'`', 84672.0},
      {'?', 88111.88811188811},
      {'@', 88200.0},
      {'$', 88288.2},
      {'!', 91875.0},
      {'{', 92160.0},
      {'&', 95904.0959040959},
      {'*', 96000.0},
      {'#', 96096.0},
      {'}', 100000.0},
  };
  const auto found = marks.find(mark);
  return found == marks.end() ? 0.0 : found->second;
}

}  // namespace

bool IsSlowTimestamp(const char* text) {
  const std::string t = SixteenOf(text);
  const auto isIn = [&t](std::size_t position, char lowest, char highest) {
    return t[position] >= lowest && t[position] <= highest;
  };
  for (const std::size_t position : std::initializer_list<std::size_t>{1, 4, 7, 10, 12, 13, 14, 15})
    if (!isIn(position, '0', '9')) return false;
  return isIn(0, '0', '2') && isIn(3, '0', '5') && isIn(6, '0', '5') && isIn(9, '0', '2') &&
         RateOf(t[11]) > 0 && (t[8] == ';' || t[8] == ',') && FramesOf(t[2]).perSecond > 0;
}

std::int64_t SlowSamples(const char* timestamp) {
  const std::string t = SixteenOf(timestamp);
  const auto digit = [&t](std::size_t position) {
    return static_cast<signed char>(t[position]) - 48;
  };
  const int hours = 10 * digit(0) + digit(1);
  const int minutes = 10 * digit(3) + digit(4);
  const int seconds = 10 * digit(6) + digit(7);
  const int frames = 10 * digit(9) + digit(10);
  const auto [perSecond, isPulled] = FramesOf(t[2]);
  const bool drop = t[8] == ',' || t[8] == ';';

  const int blocks = minutes / 10 + 6 * hours;
  const int minutesOfBlock = minutes % 10;
  const int framesOfBlock = 600 * perSecond - (drop ? 18 : 0);
  int count = (seconds + 60 * minutesOfBlock) * perSecond + frames + blocks * framesOfBlock;
  if (drop) count -= 2 * minutesOfBlock;

  double framesPerSecond = perSecond;
  if (isPulled) framesPerSecond = perSecond * 1000.0 / 1001.0;
  const double samples = std::ceil(RateOf(t[11]) * count / framesPerSecond);
  const auto whole = std::isfinite(samples) ? static_cast<std::int64_t>(samples)
                                            : std::numeric_limits<std::int64_t>::min();
  const int remainder = 1000 * digit(12) + 100 * digit(13) + 10 * digit(14) + digit(15);
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(whole) +
                                   static_cast<std::uint64_t>(std::int64_t{remainder}));
}

std::int64_t SlowDifference(const char* first, const char* second) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(SlowSamples(second)) -
                                   static_cast<std::uint64_t>(SlowSamples(first)));
}

std::string SlowTimecode(const std::string& timestamp) {
  return timestamp.substr(0, timestamp.find('/'));
}

}  // namespace velmora::test::differential
