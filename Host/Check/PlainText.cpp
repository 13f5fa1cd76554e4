#include "Check/PlainText.h"

#include <cstring>
#include <utility>

#include "Base/FileAccess.h"

namespace velmora::check {
namespace {

/// What is read at once. It stays in the processor's cache, and no label needs as much.
constexpr std::size_t kBlock = std::size_t{256} << 10;
/// Longer names and lists are left to the readers that know their own limits.
constexpr std::ptrdiff_t kLongestName = 200;
constexpr std::size_t kMostValues = 200;

enum ByteClass : std::uint8_t {
  kBlank = 1,   ///< between pieces
  kName = 2,    ///< of a label or section
  kToken = 4,   ///< of a value without quotation marks
  kQuoted = 8,  ///< of a value in quotation marks
};

constexpr auto kClasses = []() {
  std::array<std::uint8_t, 256> classes{};
  for (std::size_t c = 1; c < classes.size(); ++c) {
    std::uint8_t of = 0;
    if (c <= ' ') of |= kBlank;
    if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_') {
      of |= kName;
    }
    if (c > ' ' && c < 0x80 && c != '<') of |= kToken;
    if (c != '"' && c != 0x1B) of |= kQuoted;
    classes[c] = of;
  }
  return classes;
}();

bool Is(char c, ByteClass wanted) {
  return (kClasses[static_cast<unsigned char>(c)] & wanted) != 0;
}

/// Past all bytes of a class. Stops at the NUL at the block's end, which is of none.
const char* Past(const char* at, ByteClass wanted) {
  while (Is(*at, wanted)) ++at;
  return at;
}

std::string_view View(const char* begin, const char* end) {
  return {begin, static_cast<std::size_t>(end - begin)};
}

}  // namespace

PlainText::PlainText(std::FILE* stream, std::function<bool()> cancelled)
    : stream_(stream),
      cancelled_(std::move(cancelled)),
      block_(new char[kBlock + 1]),
      at_(block_.get()),
      end_(block_.get()) {
  block_[0] = '\0';
}

PlainText::Piece PlainText::Next() {
  for (;;) {
    const Step step = Take();
    if (step == Step::Taken) return piece_;
    if (step == Step::Odd || atEnd_ || !Fill()) return Piece::Odd;
  }
}

/// Brings what has not been told yet to the front of the block and reads on. False if that is a
/// whole block already.
bool PlainText::Fill() {
  const auto kept = static_cast<std::size_t>(end_ - at_);
  if (kept == kBlock || (cancelled_ && cancelled_())) return false;
  std::memmove(block_.get(), at_, kept);
  const std::size_t wanted = kBlock - kept;
  const std::size_t count = ReadAt(stream_, place_, block_.get() + kept, wanted);
  place_ += static_cast<std::int64_t>(count);
  atEnd_ = count < wanted;
  at_ = block_.get();
  end_ = at_ + kept + count;
  block_[kept + count] = '\0';
  return true;
}

PlainText::Step PlainText::Take() {
  if (begun_) at_ = Past(at_, kBlank);
  if (at_ == end_) return Step::More;
  begun_ = true;  // what stands before the first tag, blanks too, keeps the system from reading
  if (*at_ == '(') return TakeLabel(at_);
  return *at_ == '<' ? TakeTag(at_) : Step::Odd;
}

PlainText::Step PlainText::TakeLabel(const char* at) {
  const char* const name = at + 1;
  const char* const end = Past(name, kName);
  if (end == end_ || end + 1 == end_) return Step::More;
  const bool isPlain = end != name && end - name <= kLongestName &&
                       !(*name >= '0' && *name <= '9') && *end == ')' && Is(end[1], kBlank);
  if (!isPlain) return Step::Odd;
  line_.label = View(name, end);
  return TakeValues(end + 1);
}

PlainText::Step PlainText::TakeValues(const char* at) {
  std::size_t count = 0;
  for (;; ++count) {
    at = Past(at, kBlank);
    if (*at == '(' || *at == '<') break;
    if (at == end_) return Step::More;
    const bool quoted = *at == '"';
    const char* const begin = quoted ? at + 1 : at;
    const char* const end = Past(begin, quoted ? kQuoted : kToken);
    at = quoted && *end == '"' ? end + 1 : end;
    if (at == end_) return Step::More;
    const bool isPlain = Is(*at, kBlank) && (quoted ? at != end : end != begin) &&
                         !(begin[0] == '/' && begin[1] == '*' && !quoted) && count < kMostValues;
    if (!isPlain) return Step::Odd;
    if (count < line_.values.size()) line_.values[count] = {View(begin, end), quoted};
  }
  line_.valueCount = count;
  at_ = at;
  piece_ = Piece::Label;
  return Step::Taken;
}

PlainText::Step PlainText::TakeTag(const char* at) {
  const bool closes = at[1] == '/';
  const char* const name = at + (closes ? 2 : 1);
  const char* const end = Past(name, kName);
  if (end == end_ || (end + 1 == end_ && !atEnd_)) return Step::More;
  const bool isPlain = end != name && end - name <= kLongestName &&
                       !(*name >= '0' && *name <= '9') && *end == '>' &&
                       (end + 1 == end_ || Is(end[1], kBlank));
  if (!isPlain) return Step::Odd;
  name_ = View(name, end);
  at_ = end + 1;
  piece_ = closes ? Piece::Closing : Piece::Opening;
  return Step::Taken;
}

}  // namespace velmora::check
