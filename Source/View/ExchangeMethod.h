#pragma once

#import <objc/runtime.h>

namespace velmora::view {

// Puts `replacement` in the place of a class's method, which a superclass may have, and returns
// what stood there; null where there is no such method. The runtime knows all methods by one
// function type, whatever they take and return: `replacement` takes and returns what the method
// does.
template <class Function>
Function* ExchangeMethod(Class cls, SEL selector, Function* replacement) {
  Method method = class_getInstanceMethod(cls, selector);
  if (method == nullptr) return nullptr;
  void* const original = reinterpret_cast<void*>(method_getImplementation(method));
  const IMP added = reinterpret_cast<IMP>(reinterpret_cast<void*>(replacement));
  if (!class_addMethod(cls, selector, added, method_getTypeEncoding(method))) {
    method_setImplementation(method, added);
  }
  return reinterpret_cast<Function*>(original);
}

}  // namespace velmora::view
