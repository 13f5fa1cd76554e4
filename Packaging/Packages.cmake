# What `cpack` makes of an optimised build: `cpack -G DEB` one Debian package with the programs that were built. What other
# projects are built with is left to `cmake --install`.
set(CPACK_PACKAGE_NAME velmora)
set(CPACK_PACKAGE_VENDOR Velmora)
set(CPACK_PACKAGE_CONTACT "Velmora <velmora@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_FILE ${CMAKE_CURRENT_SOURCE_DIR}/description.txt)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR TGZ)

set(CPACK_COMPONENTS_ALL ${components})
list(REMOVE_ITEM CPACK_COMPONENTS_ALL development)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/Debian/finish-tree.cmake)
set(CPACK_VELMORA_DEBIAN ${CMAKE_CURRENT_SOURCE_DIR}/Debian)  # for that script
# It is found when a spot goes there, and too large for those who never do.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS ardour)
# Libraries that are loaded when they are first needed, which no linker tells of: asked for by the names of the packages that
# they come from here, as the linker's are.
set(depends "")
get_property(late_files GLOBAL PROPERTY VELMORA_LATE_FILES)
find_program(VELMORA_DPKG_QUERY dpkg-query)
mark_as_advanced(VELMORA_DPKG_QUERY)
foreach(file IN LISTS late_files)
  file(REAL_PATH ${file} file)
  if(VELMORA_DPKG_QUERY)
    execute_process(COMMAND ${VELMORA_DPKG_QUERY} -S ${file} OUTPUT_VARIABLE owner ERROR_QUIET)
    if(owner MATCHES "^([^:,]+)[:,]")
      list(APPEND depends ${CMAKE_MATCH_1})
    endif()
  endif()
endforeach()
if(TARGET velmora_desktop)
  # Fonts are found by name, which no linker sees. What the toolkit loads itself (the back end that draws, its daemons)
  # its own library asks for.
  list(APPEND depends fonts-dejavu-core)
  # For the Japanese names of projects.
  set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-ipafont-gothic | fonts-noto-cjk")
endif()
list(REMOVE_DUPLICATES depends)
list(JOIN depends ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
include(CPack)
