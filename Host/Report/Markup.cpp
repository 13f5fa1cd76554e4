#include "Report/Markup.h"

#include "Base/HarmfulCharacters.h"
#include "Base/Utf8.h"

namespace velmora::report {
namespace {

bool IsNoCharacter(char32_t character) {
  return (character & 0xFFFE) == 0xFFFE || (character >= 0xFDD0 && character <= 0xFDEF);
}

/// The marks that texts in Arabic and Hebrew need. On a page each text has a direction of its own,
/// so that they turn nothing else.
bool IsDirectionMark(char32_t character) {
  return character == 0x061C || character == 0x200E || character == 0x200F;
}

bool IsShown(char32_t character) {
  if (character == '\t' || character == '\n') return true;
  return !IsHarmful(character) && !IsNoCharacter(character);
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
        if (character >= 0x20 && character < 0x7F) {  // nearly all there is
          html += static_cast<char>(character);
          break;
        }
        if (IsDirectionMark(character)) {  // not as it is: whoever looks at the source sees it
          html += character == 0x061C ? "&#x61C;" : character == 0x200E ? "&#x200E;" : "&#x200F;";
          break;
        }
        AppendUtf8(html, IsShown(character) ? character : kReplacement);
    }
  }
  return html;
}

std::string Shortened(std::string_view text, std::size_t bytes) {
  if (text.size() <= bytes) return std::string(text);
  std::size_t at = 0, end = 0;
  while (at <= bytes) {
    end = at;
    static_cast<void>(NextCharacter(text, at));
  }
  return std::string(text.substr(0, end)) + "… (" + std::to_string(text.size()) + " bytes)";
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
