#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace velmora::program {

/// Writes JSON in the order in which it is told, without building values first: a project of a
/// hundred thousand events has millions of them. Commas come by themselves; the caller closes what
/// it opens. Texts may be any bytes and come out as UTF-8.
class JsonStream {
 public:
  explicit JsonStream(std::ostream& out) : out_(out) {}
  ~JsonStream() { Flush(); }
  JsonStream(const JsonStream&) = delete;
  JsonStream& operator=(const JsonStream&) = delete;

  JsonStream& BeginObject() { return Open('{'); }
  JsonStream& EndObject() { return Close('}'); }
  JsonStream& BeginArray() { return Open('['); }
  JsonStream& EndArray() { return Close(']'); }
  /// The key of the value that is written next. `key` is one of our own words: nothing in it is
  /// escaped.
  JsonStream& Key(std::string_view key);

  JsonStream& Text(std::string_view text);
  JsonStream& Integer(std::int64_t number);
  /// As few digits as tell the number from all others, and none after the point for a whole one;
  /// null for what is not finite.
  JsonStream& Real(double number);
  JsonStream& Boolean(bool value) { return Word(value ? "true" : "false"); }
  JsonStream& Null() { return Word("null"); }
  template <class Number>
  JsonStream& IntegerOrNull(const std::optional<Number>& number) {
    return number ? Integer(*number) : Null();
  }
  JsonStream& RealOrNull(const std::optional<double>& number) {
    return number ? Real(*number) : Null();
  }
  /// Null for the empty text.
  JsonStream& TextOrNull(std::string_view text) { return text.empty() ? Null() : Text(text); }

  void EndLine();

 private:
  JsonStream& Open(char bracket);
  JsonStream& Close(char bracket);
  JsonStream& Word(std::string_view word);
  /// Puts the comma before a value where one belongs.
  void Separate();
  void Flush();

  std::ostream& out_;
  std::string buffer_;
  bool needsComma_ = false;
};

}  // namespace velmora::program
