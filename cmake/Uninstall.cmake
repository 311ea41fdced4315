# `make uninstall`: cmake -D PREFIX=<prefix> -P cmake/Uninstall.cmake (DESTDIR is honoured).
include(${CMAKE_CURRENT_LIST_DIR}/InstalledFiles.cmake)
zentoro_installed_list("${PREFIX}" list)
if(NOT EXISTS "${list}")
  message(FATAL_ERROR "Nothing to uninstall: ${list} isn't there, so Zentoro isn't installed in ${PREFIX}.")
endif()
zentoro_uninstall("${PREFIX}")
