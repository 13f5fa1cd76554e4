#include "Report/Markup.h"

#include "Base/Utf8.h"

namespace velmora::report {
namespace {

/// What HTML has no reference for, and XML-minded readers refuse.
bool IsControl(char32_t character) {
  return (character < 0x20 && character != '\t' && character != '\n') ||
         (character >= 0x7F && character < 0xA0);
}

bool IsNoCharacter(char32_t character) {
  return (character & 0xFFFE) == 0xFFFE || (character >= 0xFDD0 && character <= 0xFDEF);
}

}  // namespace

std::string Html(std::string_view text) {
  constexpr char32_t kReplacement = 0xFFFD;
  std::string html;
  html.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const char32_t character = NextCharacter(text, at);
    switch (character) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      case '\'':
        html += "&#39;";
        break;
      default:
        AppendUtf8(html,
                   IsControl(character) || IsNoCharacter(character) ? kReplacement : character);
    }
  }
  return html;
}

std::string ScriptJson(std::string_view json) {
  // These characters stand in texts alone, never in JSON's own structure.
  std::string safe;
  safe.reserve(json.size());
  for (const char c : json) {
    if (c == '<') {
      safe += "\\u003c";
    } else if (c == '>') {
      safe += "\\u003e";
    } else if (c == '&') {
      safe += "\\u0026";
    } else {
      safe += c;
    }
  }
  return safe;
}

}  // namespace velmora::report
