# The first step of `make install`: takes away what an earlier install into this prefix put
# there, so a new kit never stands beside a stale one and a running program's file is replaced
# rather than overwritten, then creates the folders this install needs, noting the new ones.
include(${CMAKE_CURRENT_LIST_DIR}/InstalledFiles.cmake)
zentoro_uninstall("${CMAKE_INSTALL_PREFIX}")

file(GLOB icon_folders RELATIVE "${ZENTORO_BINARY_DIR}/icons" "${ZENTORO_BINARY_DIR}/icons/hicolor/*/apps")
list(TRANSFORM icon_folders PREPEND share/icons/)
set(ZENTORO_CREATED_FOLDERS "")
foreach(folder IN LISTS icon_folders ITEMS bin lib/zentoro share/applications share/metainfo share/doc/zentoro)
  set(path "${CMAKE_INSTALL_PREFIX}")
  string(REPLACE "/" ";" parts "${folder}")
  foreach(part IN LISTS parts)
    set(path "${path}/${part}")
    if(NOT IS_DIRECTORY "$ENV{DESTDIR}${path}")
      file(MAKE_DIRECTORY "$ENV{DESTDIR}${path}")
      list(APPEND ZENTORO_CREATED_FOLDERS "${path}/")
    endif()
  endforeach()
endforeach()
