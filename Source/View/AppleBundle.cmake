# The bundle of macOS: Velmora.bundle/Contents with the compiled nib.

find_program(VELMORA_IBTOOL ibtool REQUIRED)

set(nib ${CMAKE_CURRENT_BINARY_DIR}/Velmora_View.nib)
add_custom_command(OUTPUT ${nib}
    COMMAND ${VELMORA_IBTOOL} --errors --warnings --compile ${nib} ${VELMORA_XIB}
    DEPENDS ${VELMORA_XIB} VERBATIM)

set(exported ${CMAKE_CURRENT_BINARY_DIR}/exported.txt)
file(WRITE ${exported} "_OBJC_CLASS_$_*\n_OBJC_METACLASS_$_*\n.objc_class_name_*\n")

set_source_files_properties(${nib} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
target_sources(Velmora PRIVATE AppleEventHost.cpp ${nib})
# The view keeps to calls that 10.8 has; newer SDKs call some of them deprecated.
target_compile_options(Velmora PRIVATE -Wno-deprecated-declarations)
target_link_libraries(Velmora PRIVATE "-framework CoreServices" "-framework Carbon")
target_link_options(Velmora PRIVATE -Wl,-exported_symbols_list,${exported})
set_target_properties(Velmora PROPERTIES
    BUNDLE TRUE
    BUNDLE_EXTENSION bundle
    MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_SOURCE_DIR}/Info.plist.in)

# The button's first picture is named in the nib, which finds it beside itself.
add_custom_command(TARGET Velmora POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E copy_directory ${VELMORA_PICTURES}
        $<TARGET_BUNDLE_CONTENT_DIR:Velmora>/Resources/KestaneGUI.bundle
    COMMAND ${CMAKE_COMMAND} -E copy
        ${VELMORA_PICTURES}/Resources/Spot_Off.png ${VELMORA_PICTURES}/Resources/Spot_Off@2x.png
        $<TARGET_BUNDLE_CONTENT_DIR:Velmora>/Resources
    VERBATIM)
