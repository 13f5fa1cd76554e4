#include "Session/Printable.h"

#include "Base/PrintableLine.h"
#include "Session/PrintableAscii.h"

namespace velmora::host {

std::string Printable(std::string_view text) {
  std::string line(WithoutBlankEnd(text));
  return CopyPrintableAscii(line, line.data()) ? line : PrintableLine(text);
}

}  // namespace velmora::host
