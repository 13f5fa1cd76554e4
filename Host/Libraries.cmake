# The packaged libraries of the programs, and how each comes in. A start takes 0.1 ms for each shared library, and those with
# codecs bring ten others: loading all of them takes longer than showing a small project does.
#
#   libsndfile, libsoxr, ICU     loaded when they are first needed, see Host/Media/LateLibrary.h
#   pugixml, nettle              a part of the program, where the system has them as archives
#   zlib                         linked: its faults are mended for all programs at once
#   the C++ library              the same, for the program velmora
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(nlohmann_json 3.11 REQUIRED)
find_package(pugixml REQUIRED)
pkg_check_modules(SNDFILE REQUIRED IMPORTED_TARGET GLOBAL sndfile)
pkg_check_modules(SOXR REQUIRED IMPORTED_TARGET soxr)
pkg_check_modules(ICU REQUIRED IMPORTED_TARGET icu-uc)
find_package(ZLIB REQUIRED)
pkg_check_modules(NETTLE REQUIRED IMPORTED_TARGET nettle)

# velmora_soname(NAME FILES...): under which name the loader finds a library; empty if that cannot be told.
function(velmora_soname name)
  set(${name} "" PARENT_SCOPE)
  foreach(file ${ARGN})
    execute_process(COMMAND ${CMAKE_OBJDUMP} -p ${file} OUTPUT_VARIABLE facts ERROR_QUIET)
    if(facts MATCHES "SONAME +([^ \n]+)")
      set(${name} ${CMAKE_MATCH_1} PARENT_SCOPE)
      return()
    endif()
  endforeach()
endfunction()

# Elsewhere the loader does not look where packages put their libraries.
set(late_by_default OFF)
if(CMAKE_SYSTEM_NAME STREQUAL "Linux" AND CMAKE_OBJDUMP)
  set(late_by_default ON)
endif()
option(VELMORA_LATE_LIBRARIES "Load the libraries for codecs, resampling and Unicode when they are first needed"
    ${late_by_default})

# libsndfile, libsoxr and ICU for LateLibrary.h, which finds them by these definitions. Whoever packs the programs asks for the
# libraries in the property VELMORA_LATE_FILES: no linker tells of them.
add_library(velmora_late_libraries INTERFACE)
set(all_are_late ${VELMORA_LATE_LIBRARIES})
set(late_files "")
foreach(library SNDFILE SOXR ICU)
  velmora_soname(soname ${${library}_LINK_LIBRARIES})
  if(NOT soname)
    set(all_are_late OFF)
  endif()
  target_compile_definitions(velmora_late_libraries INTERFACE VELMORA_${library}="${soname}")
  target_include_directories(velmora_late_libraries SYSTEM INTERFACE ${${library}_INCLUDE_DIRS})
  list(APPEND late_files ${${library}_LINK_LIBRARIES})
endforeach()
if(all_are_late)
  target_compile_definitions(velmora_late_libraries INTERFACE VELMORA_LATE_LIBRARIES=1)
  target_link_libraries(velmora_late_libraries INTERFACE ${CMAKE_DL_LIBS})
  set_property(GLOBAL PROPERTY VELMORA_LATE_FILES ${late_files})
else()
  target_compile_definitions(velmora_late_libraries INTERFACE VELMORA_LATE_LIBRARIES=0)
  target_link_libraries(velmora_late_libraries INTERFACE PkgConfig::SNDFILE PkgConfig::SOXR PkgConfig::ICU)
endif()

# velmora_prefer_archives(NAME SHARED ARCHIVES...): the library NAME, as archives if the system has all of them, else as the target
# SHARED.
function(velmora_prefer_archives name shared)
  add_library(${name} INTERFACE)
  set(files "")
  foreach(archive ${ARGN})
    find_library(VELMORA_ARCHIVE_${archive} ${CMAKE_STATIC_LIBRARY_PREFIX}${archive}${CMAKE_STATIC_LIBRARY_SUFFIX})
    mark_as_advanced(VELMORA_ARCHIVE_${archive})
    list(APPEND files ${VELMORA_ARCHIVE_${archive}})
  endforeach()
  if(files MATCHES "NOTFOUND")
    target_link_libraries(${name} INTERFACE ${shared})
  else()
    get_target_property(includes ${shared} INTERFACE_INCLUDE_DIRECTORIES)
    if(includes)
      target_include_directories(${name} SYSTEM INTERFACE ${includes})
    endif()
    target_link_libraries(${name} INTERFACE ${files})
  endif()
endfunction()
velmora_prefer_archives(velmora_pugixml pugixml::shared pugixml)
velmora_prefer_archives(velmora_nettle PkgConfig::NETTLE nettle)
