# The bundle of GNUstep: Velmora.bundle with the program at its top and the xib as it is, which is
# read there without being compiled.

set(bundle ${CMAKE_CURRENT_BINARY_DIR}/Velmora.bundle)
set(VELMORA_BUNDLE ${bundle} CACHE INTERNAL "Folder of the built Velmora.bundle")

set(versions ${CMAKE_CURRENT_BINARY_DIR}/exported.map)
file(WRITE ${versions} "{ global: __objc_class_name_*; local: *; };\n")

target_sources(Velmora PRIVATE GNUstepRepairs.mm)
target_compile_options(Velmora PRIVATE -include ${CMAKE_CURRENT_SOURCE_DIR}/GNUstepRepairs.h)
target_link_options(Velmora PRIVATE -Wl,--version-script=${versions})
set_target_properties(Velmora PROPERTIES
    PREFIX "" SUFFIX "" OUTPUT_NAME Velmora
    LINK_DEPENDS ${versions}
    LIBRARY_OUTPUT_DIRECTORY ${bundle})

configure_file(Info-gnustep.plist.in ${bundle}/Resources/Info-gnustep.plist @ONLY)

# Renewed when a resource changes, without a new link.
add_custom_command(OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/resources.stamp
    COMMAND ${CMAKE_COMMAND} -E copy ${VELMORA_XIB} ${bundle}/Resources
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${bundle}/Resources/KestaneGUI.bundle
    COMMAND ${CMAKE_COMMAND} -E copy_directory ${VELMORA_PICTURES}
        ${bundle}/Resources/KestaneGUI.bundle
    COMMAND ${CMAKE_COMMAND} -E touch ${CMAKE_CURRENT_BINARY_DIR}/resources.stamp
    DEPENDS ${VELMORA_XIB} ${VELMORA_PICTURE_FILES}
    VERBATIM)
add_custom_target(velmora_resources ALL DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/resources.stamp)
add_dependencies(Velmora velmora_resources)
