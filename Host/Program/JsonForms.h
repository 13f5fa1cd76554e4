#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

#include "ADL/AES31Event.h"
#include "ADL/AES31Section.h"
#include "BWF/AES31BWF.h"
#include "Spot/RegionMessage.h"

namespace velmora::program {

using Json = nlohmann::ordered_json;

/// The text with U+FFFD for what is not UTF-8.
std::string ValidUtf8(const std::string& text);

/// A text of the project, read as Shift-JIS; null for none.
Json ProjectText(const char* text);
/// A path of the file system, or null for the empty one.
Json PathText(const std::string& path);
/// Null for what is not finite.
Json Number(double number);

Json SectionJson(const AES31Section& section);
Json WaveFileJson(AES31BWF& file);
Json EventJson(const AES31Event& event, std::size_t index);
Json MessageJson(const RegionMessage& message);

/// One JSON object, written member by member: a large project need not stand in memory twice.
class JsonObjectWriter {
 public:
  explicit JsonObjectWriter(std::ostream& out) : out_(out) { out_ << '{'; }
  void Member(const char* key, const Json& value) {
    Key(key);
    out_ << Text(value);
  }
  /// An array of `count` elements, each asked for by its index.
  template <class ElementOf>
  void Array(const char* key, std::size_t count, const ElementOf& elementOf) {
    Key(key);
    out_ << '[';
    for (std::size_t i = 0; i < count; ++i) out_ << (i > 0 ? "," : "") << Text(elementOf(i));
    out_ << ']';
  }
  /// A member whose value the caller writes.
  std::ostream& Key(const char* key) {
    out_ << (first_ ? "" : ",") << Text(key) << ':';
    first_ = false;
    return out_;
  }
  void End() { out_ << '}'; }

  static std::string Text(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
  }

 private:
  std::ostream& out_;
  bool first_ = true;
};

}  // namespace velmora::program
