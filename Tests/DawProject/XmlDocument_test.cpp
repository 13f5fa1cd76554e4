#include "Session/XmlDocument.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <new>
#include <string>

namespace velmora::host {
namespace {

// AddressSanitizer ends the program where memory is refused.
#if defined(__has_feature)
#define VELMORA_REFUSALS_END_THE_PROGRAM __has_feature(address_sanitizer)
#else
#define VELMORA_REFUSALS_END_THE_PROGRAM 0
#endif

TEST(XmlDocument, throwsWhereItGetsNoMemory) {
  XmlDocument xml;
  const auto take = pugi::get_memory_allocation_function();
  ASSERT_NE(take, nullptr);
#if !VELMORA_REFUSALS_END_THE_PROGRAM
  EXPECT_THROW(static_cast<void>(take(std::numeric_limits<std::size_t>::max() / 4)),
               std::bad_alloc);
#endif
  pugi::xml_node node = xml.append_child("a");
  const std::string text(100000, 'x');
  EXPECT_TRUE(node.append_attribute("long").set_value(text.c_str()));
  EXPECT_EQ(xml.child("a").attribute("long").value(), text);
}

}  // namespace
}  // namespace velmora::host
