#pragma once

#include <cstddef>
#include <new>
#include <pugixml.hpp>

namespace velmora::host {

/// Makes pugixml throw std::bad_alloc where it gets no memory. By itself it leaves out what it has
/// no memory for, and says so by handles that nobody looks at: the document would be written with a
/// gap.
class ThrowingXmlMemory {
 protected:
  ThrowingXmlMemory() {
    static const bool isSet = Set();  // before the first document, by whichever thread makes it
    static_cast<void>(isSet);
  }

 private:
  static bool Set() {
    pugi::set_memory_management_functions([](std::size_t size) { return ::operator new(size); },
                                          [](void* memory) { ::operator delete(memory); });
    return true;
  }
};

/// The document to use in place of pugixml's own.
class XmlDocument : private ThrowingXmlMemory, public pugi::xml_document {};

}  // namespace velmora::host
