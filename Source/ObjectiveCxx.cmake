# Objective-C++ for the view and the programs around it: the languages and the interface target
# `velmora_objcxx`, which carries the flags and libraries of AppKit, or of GNUstep where there is no
# AppKit. Include it from every folder that compiles .mm files.

if(APPLE)
  enable_language(OBJCXX)
else()
  # The class library is built for gcc's runtime, and CMake would take clang++ if it found one.
  if(NOT CMAKE_OBJCXX_COMPILER)
    find_program(VELMORA_GNU_OBJCXX NAMES g++ REQUIRED)
    set(CMAKE_OBJCXX_COMPILER ${VELMORA_GNU_OBJCXX})
  endif()
  enable_language(OBJCXX)
endif()

if(TARGET velmora_objcxx)
  return()
endif()
add_library(velmora_objcxx INTERFACE)

if(APPLE)
  target_compile_options(velmora_objcxx INTERFACE $<$<COMPILE_LANGUAGE:OBJCXX>:-std=gnu++20>)
  target_link_libraries(velmora_objcxx INTERFACE "-framework AppKit" "-framework Foundation")
else()
  # Without -fobjc-call-cxx-cdtors the C++ members of objects would never be constructed. The headers
  # are not ours, hence -isystem; their own warnings would drown all others.
  target_compile_options(velmora_objcxx INTERFACE
      -fgnu-runtime -fobjc-exceptions -fexceptions -fobjc-call-cxx-cdtors
      -fconstant-string-class=NSConstantString -fno-strict-aliasing -pthread
      $<$<COMPILE_LANGUAGE:OBJCXX>:-std=gnu++20>)
  target_compile_definitions(velmora_objcxx INTERFACE
      GNUSTEP GNUSTEP_BASE_LIBRARY=1 GNU_GUI_LIBRARY=1 GNU_RUNTIME=1 _NATIVE_OBJC_EXCEPTIONS)
  find_path(VELMORA_GNUSTEP_HEADERS AppKit/AppKit.h
      PATHS /usr/include/GNUstep /usr/local/include/GNUstep REQUIRED)
  target_include_directories(velmora_objcxx SYSTEM INTERFACE ${VELMORA_GNUSTEP_HEADERS})
  target_link_libraries(velmora_objcxx INTERFACE gnustep-gui gnustep-base objc pthread)
endif()
