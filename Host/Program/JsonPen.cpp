#include "Program/JsonPen.h"

#include "Program/JsonStream.h"

namespace velmora::program {

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
  JsonStream(text).ProjectText(added);
  return text.Room(0);
}

char* JsonPen::TextAt(CharBuffer& text, char* at, std::string_view added) {
  text.Take(at);
  JsonStream(text).Text(added);
  return text.Room(0);
}

}  // namespace velmora::program
