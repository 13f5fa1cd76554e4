#include "Session/JsonText.h"

#include "Base/Utf8.h"

namespace velmora::host {
namespace {

/// Keys are our own words; only values come from projects.
void MendTexts(Json& value) {
  if (value.is_string()) {
    auto& text = value.get_ref<std::string&>();
    text = ValidUtf8(text);
  } else if (value.is_structured()) {
    for (Json& element : value) MendTexts(element);
  }
}

}  // namespace

std::string JsonText(Json value) {
  MendTexts(value);
  return value.dump();
}

}  // namespace velmora::host
