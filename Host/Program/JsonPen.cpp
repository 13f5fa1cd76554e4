#include "Program/JsonPen.h"

#include <algorithm>
#include <cstring>

#include "Program/JsonPlain.h"
#include "Program/JsonStream.h"

namespace velmora::program {
namespace {

/// Appends a text of the project that stands in quotation marks, as names do, if these are all that
/// has to be escaped: 20 ns where the way for all texts takes 60.
bool AppendQuoted(CharBuffer& text, const char* added) {
  constexpr std::size_t kMost = 4096;
  if (added == nullptr || *added != '"') return false;
  const std::size_t size = std::strlen(added);
  if (size < 2 || size > kMost || added[size - 1] != '"') return false;
  char* out = text.Room(size + 4);
  if (!CopyPlainText({added + 1, size - 2}, out + 3)) return false;
  std::copy_n("\"\\\"", 3, out);
  std::copy_n("\\\"\"", 3, out + size + 1);
  text.Take(out + size + 4);
  return true;
}

}  // namespace

char* JsonPen::RoomAt(CharBuffer& text, char* at, std::size_t bytes) {
  text.Take(at);
  return text.Room(bytes);
}

char* JsonPen::DecimalAt(CharBuffer& text, char* at, double number) {
  text.Take(at);
  JsonStream(text).Decimal(number);
  return text.Room(0);
}

char* JsonPen::ProjectTextAt(CharBuffer& text, char* at, const char* added) {
  text.Take(at);
  if (!AppendQuoted(text, added)) JsonStream(text).ProjectText(added);
  return text.Room(0);
}

char* JsonPen::TextAt(CharBuffer& text, char* at, std::string_view added) {
  text.Take(at);
  JsonStream(text).Text(added);
  return text.Room(0);
}

}  // namespace velmora::program
