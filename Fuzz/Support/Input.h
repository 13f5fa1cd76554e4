#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

namespace velmora::fuzz {

/// The bytes of one input, taken from the front. What is asked for beyond the end is 0 or empty, so
/// that every input means something.
class Input {
 public:
  Input(const std::uint8_t* bytes, std::size_t size)
      : left_(reinterpret_cast<const char*>(bytes), size) {}

  [[nodiscard]] bool IsEmpty() const { return left_.empty(); }

  std::uint8_t Byte() { return Number<std::uint8_t>(); }
  bool Flag() { return (Byte() & 1) != 0; }
  /// An integer or a floating-point number, as the machine holds it.
  template <class Value>
  Value Number() {
    static_assert(std::is_arithmetic_v<Value>);
    Value value{};
    const std::string_view bytes = Bytes(sizeof value);
    if (!bytes.empty())
      std::memcpy(&value, bytes.data(), bytes.size());  // null where there is none
    return value;
  }
  /// At most `count` bytes.
  std::string_view Bytes(std::size_t count) {
    const std::string_view taken = left_.substr(0, count);
    left_.remove_prefix(taken.size());
    return taken;
  }
  /// As many bytes as the next one says, or the next two.
  std::string_view ShortBytes() { return Bytes(Byte()); }
  std::string_view LongBytes() { return Bytes(Number<std::uint16_t>()); }
  /// What stands before the next line feed, which is dropped.
  std::string_view Line() {
    const std::string_view line = left_.substr(0, left_.find('\n'));
    left_.remove_prefix(line.size() < left_.size() ? line.size() + 1 : line.size());
    return line;
  }
  std::string_view Rest() { return Bytes(left_.size()); }

 private:
  std::string_view left_;
};

/// The text of an input that is a project. Its last byte, which no reader looks at once the project
/// is closed, chooses how it is read.
struct ProjectInput {
  ProjectInput(const std::uint8_t* bytes, std::size_t size)
      : text(reinterpret_cast<const char*>(bytes), size), choice(size > 0 ? bytes[size - 1] : 0) {}

  std::string_view text;
  std::uint8_t choice;
};

}  // namespace velmora::fuzz
