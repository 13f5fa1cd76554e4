#pragma once

#include <cstddef>
#include <ostream>

#include "Session/JsonText.h"

namespace velmora::program {

/// One JSON object, written member by member: a large project need not stand in memory twice.
class JsonObjectWriter {
 public:
  explicit JsonObjectWriter(std::ostream& out) : out_(out) { out_ << '{'; }
  void Member(const char* key, const host::Json& value) {
    Key(key);
    out_ << host::JsonText(value);
  }
  /// An array of `count` elements, each asked for by its index.
  template <class ElementOf>
  void Array(const char* key, std::size_t count, const ElementOf& elementOf) {
    Key(key);
    out_ << '[';
    for (std::size_t i = 0; i < count; ++i)
      out_ << (i > 0 ? "," : "") << host::JsonText(elementOf(i));
    out_ << ']';
  }
  /// A member whose value the caller writes.
  std::ostream& Key(const char* key) {
    out_ << (first_ ? "" : ",") << host::JsonText(key) << ':';
    first_ = false;
    return out_;
  }
  void End() { out_ << '}'; }

 private:
  std::ostream& out_;
  bool first_ = true;
};

}  // namespace velmora::program
