# Run by CPack on the tree that it is about to pack: what Debian wants otherwise than `cmake --install` leaves it.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()
find_program(GZIP gzip REQUIRED)

file(GLOB_RECURSE pages ${CPACK_TEMPORARY_DIRECTORY}/velmora*.1)
if(NOT pages)
  message(FATAL_ERROR "There is no man page in ${CPACK_TEMPORARY_DIRECTORY}")
endif()
list(GET pages 0 page)
cmake_path(GET page PARENT_PATH share)  # share/man/man1
cmake_path(GET share PARENT_PATH share)
cmake_path(GET share PARENT_PATH share)

# The package's own changelog, in Debian's form, refers to the project's.
set(documents ${share}/doc/velmora)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${documents}/changelog
"velmora (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium

  * Built by CPack; CHANGELOG.md.gz beside this file tells what is new.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
configure_file(${CPACK_VELMORA_DEBIAN}/copyright ${documents}/copyright COPYONLY)
configure_file(${CPACK_VELMORA_DEBIAN}/lintian-overrides ${share}/lintian/overrides/velmora COPYONLY)
execute_process(COMMAND ${GZIP} -9n ${pages} ${documents}/changelog ${documents}/CHANGELOG.md COMMAND_ERROR_IS_FATAL ANY)

file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)

# Folders and what was written here are as open as dpkg expects, whatever the umask of this run is.
set(open_file OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
set(open_folder ${open_file} OWNER_EXECUTE GROUP_EXECUTE WORLD_EXECUTE)
file(CHMOD_RECURSE ${documents} ${share}/man ${share}/lintian
    FILE_PERMISSIONS ${open_file} DIRECTORY_PERMISSIONS ${open_folder})
file(GLOB_RECURSE entries LIST_DIRECTORIES true ${CPACK_TEMPORARY_DIRECTORY}/*)
foreach(entry ${entries})
  if(IS_DIRECTORY ${entry} AND NOT IS_SYMLINK ${entry})
    file(CHMOD ${entry} PERMISSIONS ${open_folder})
  endif()
endforeach()
