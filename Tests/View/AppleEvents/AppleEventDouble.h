#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace velmora::test {

/// What the doubled system calls do and saw. Each call is one line of text in `calls`: its name and
/// what it was given, bytes in hexadecimal, descriptors by the name under which they were made
/// ("target", "event", "region", "reply") or as "empty".
///
/// A step answers 0, or what `answers` holds for it. A step is a call's name, followed by the
/// keyword or type where there are several: "AEPutParamPtr Trak", "AECreateDesc sign".
struct AppleEventDouble {
  std::vector<std::string> calls;
  std::map<std::string, std::int32_t> answers;
  std::string aliasBytes = "alias of a file";
  bool aliasHandleIsNull = false;  ///< FSNewAlias makes none, whatever it answers

  /// What stands allocated: 0 when everything made was disposed of.
  int handles = 0;
  int descriptors = 0;
  /// What the system would not forgive, such as bytes read from a handle that is not locked.
  std::vector<std::string> mistakes;
};

/// The double that the calls go to; each test sets it anew.
AppleEventDouble& TheAppleEventDouble();

std::string Hex(const void* data, std::size_t size);

}  // namespace velmora::test
