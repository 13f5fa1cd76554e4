# Objective-C and Objective-C++ for the view and the programs around it: the languages and the interface target
# `velmora_objcxx`, which carries the flags and libraries of AppKit, or of GNUstep where there is no
# AppKit. Include it from every folder that compiles .mm files.

if(NOT APPLE)
  # The compilers of C and C++. Left alone, CMake would take clang wherever it found one.
  if(NOT CMAKE_OBJC_COMPILER)
    set(CMAKE_OBJC_COMPILER ${CMAKE_C_COMPILER})
  endif()
  if(NOT CMAKE_OBJCXX_COMPILER)
    set(CMAKE_OBJCXX_COMPILER ${CMAKE_CXX_COMPILER})
  endif()
endif()
enable_language(OBJC OBJCXX)

if(TARGET velmora_objcxx)
  return()
endif()
add_library(velmora_objcxx INTERFACE)

if(APPLE)
  target_compile_options(velmora_objcxx INTERFACE $<$<COMPILE_LANGUAGE:OBJCXX>:-std=gnu++20>)
  target_link_libraries(velmora_objcxx INTERFACE "-framework AppKit" "-framework Foundation")
else()
  # Without -fobjc-call-cxx-cdtors g++ would never construct the C++ members of objects; clang does so
  # anyway. The class library is built for gcc's runtime, whose headers only gcc finds by itself.
  if(CMAKE_OBJCXX_COMPILER_ID STREQUAL "GNU")
    set(runtime -fgnu-runtime)
  else()
    set(runtime -fobjc-runtime=gcc)
    find_program(VELMORA_GCC gcc REQUIRED)
    execute_process(COMMAND ${VELMORA_GCC} -print-file-name=include/objc
        OUTPUT_VARIABLE headers OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/gcc-headers)
    file(CREATE_LINK ${headers} ${PROJECT_BINARY_DIR}/gcc-headers/objc SYMBOLIC)
    target_include_directories(velmora_objcxx SYSTEM INTERFACE ${PROJECT_BINARY_DIR}/gcc-headers)
  endif()
  target_compile_options(velmora_objcxx INTERFACE
      -fexceptions -fno-strict-aliasing -pthread
      $<$<COMPILE_LANGUAGE:OBJCXX>:-std=gnu++20>
      $<$<COMPILE_LANG_AND_ID:OBJCXX,GNU>:-fobjc-call-cxx-cdtors>
      "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:-fobjc-exceptions;-fconstant-string-class=NSConstantString;${runtime}>")
  target_compile_definitions(velmora_objcxx INTERFACE
      GNUSTEP GNUSTEP_BASE_LIBRARY=1 GNU_GUI_LIBRARY=1 GNU_RUNTIME=1 _NATIVE_OBJC_EXCEPTIONS)
  # The headers are not ours, hence SYSTEM; their own warnings would drown all others.
  find_path(VELMORA_GNUSTEP_HEADERS AppKit/AppKit.h
      PATHS /usr/include/GNUstep /usr/local/include/GNUstep REQUIRED)
  target_include_directories(velmora_objcxx SYSTEM INTERFACE ${VELMORA_GNUSTEP_HEADERS})
  target_link_libraries(velmora_objcxx INTERFACE gnustep-gui gnustep-base objc pthread)
endif()
