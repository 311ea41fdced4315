# The last step of `make install`: the desktop entry, the prepared kit, and the list of all
# that was installed.
include(${CMAKE_CURRENT_LIST_DIR}/InstalledFiles.cmake)

# The Exec key's quoting: a quoted argument escapes " ` $ \, the string value escapes \ again,
# and a literal % is doubled.
set(exec "${CMAKE_INSTALL_PREFIX}/bin/zentoro")
string(REGEX REPLACE "([\"`$\\\\])" "\\\\\\1" exec "${exec}")
string(REPLACE "\\" "\\\\" exec "\"${exec}\"")
string(REPLACE "%" "%%" ZENTORO_EXEC "${exec}")
configure_file("${ZENTORO_SOURCE_DIR}/src/resources/desktop/${ZENTORO_BUNDLE_ID}.desktop.in"
  "${ZENTORO_BINARY_DIR}/desktop/${ZENTORO_BUNDLE_ID}.desktop" @ONLY)
file(INSTALL DESTINATION "${CMAKE_INSTALL_PREFIX}/share/applications" TYPE FILE
  FILES "${ZENTORO_BINARY_DIR}/desktop/${ZENTORO_BUNDLE_ID}.desktop")

# The built program names the kit it uses; the installed one finds it in lib/zentoro.
execute_process(COMMAND "${ZENTORO_PROGRAM}" --prepared-kit-folder
  OUTPUT_VARIABLE kit OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE status ERROR_QUIET)
if(status EQUAL 0 AND IS_DIRECTORY "${kit}")
  file(INSTALL DESTINATION "${CMAKE_INSTALL_PREFIX}/lib/zentoro/KitCache" TYPE DIRECTORY FILES "${kit}"
    USE_SOURCE_PERMISSIONS)
else()
  message(STATUS "No prepared UI kit to install: the first build of an app prepares it.")
endif()

zentoro_installed_list("${CMAKE_INSTALL_PREFIX}" list)
set(lines "")
foreach(file IN LISTS CMAKE_INSTALL_MANIFEST_FILES)
  if(NOT "$ENV{DESTDIR}" STREQUAL "")
    string(REPLACE "$ENV{DESTDIR}" "" file "${file}")
  endif()
  string(APPEND lines "${file}\n")
endforeach()
foreach(folder IN LISTS ZENTORO_CREATED_FOLDERS)
  string(APPEND lines "${folder}\n")
endforeach()
file(WRITE "${list}" "${lines}")
list(APPEND CMAKE_INSTALL_MANIFEST_FILES "${list}")
