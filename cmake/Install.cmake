# `make install`: the program, the UI kit prepared for it, its desktop entry with a "Start in
# Safe Mode" action, its icon in the hicolor theme, its AppStream metadata and the licences of
# what it ships. The list of what was installed, and of the folders the install created, goes
# to lib/zentoro/installed-files.txt under the prefix, so `make uninstall` removes exactly that.

set(ZENTORO_ICONS ${CMAKE_BINARY_DIR}/icons/hicolor)
add_executable(zentoro_write_icons src/tools/WriteIcons.cpp)
target_link_libraries(zentoro_write_icons PRIVATE zentoro_core)
add_custom_command(OUTPUT ${ZENTORO_ICONS}/scalable/apps/${ZENTORO_BUNDLE_ID}.svg
  COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen $<TARGET_FILE:zentoro_write_icons> ${ZENTORO_ICONS}
  DEPENDS zentoro_write_icons)
add_custom_target(app_icons ALL DEPENDS ${ZENTORO_ICONS}/scalable/apps/${ZENTORO_BUNDLE_ID}.svg)

configure_file(src/resources/desktop/${ZENTORO_BUNDLE_ID}.metainfo.xml.in
  ${CMAKE_BINARY_DIR}/desktop/${ZENTORO_BUNDLE_ID}.metainfo.xml @ONLY)

# The desktop entry names the installed program by its path, which is known only once the
# prefix is (`cmake --install --prefix` may change it), so InstallEnd writes it.
install(CODE "
  set(ZENTORO_SOURCE_DIR [[${CMAKE_SOURCE_DIR}]])
  set(ZENTORO_BINARY_DIR [[${CMAKE_BINARY_DIR}]])
  set(ZENTORO_PROGRAM [[$<TARGET_FILE:zentoro>]])
  set(ZENTORO_BUNDLE_ID ${ZENTORO_BUNDLE_ID})")
install(SCRIPT cmake/InstallBegin.cmake)
install(TARGETS zentoro RUNTIME DESTINATION bin)
install(DIRECTORY ${ZENTORO_ICONS} DESTINATION share/icons)
install(FILES ${CMAKE_BINARY_DIR}/desktop/${ZENTORO_BUNDLE_ID}.metainfo.xml DESTINATION share/metainfo)
install(FILES src/resources/fonts/OFL.txt DESTINATION share/doc/zentoro RENAME Anybody-OFL.txt)
install(SCRIPT cmake/InstallEnd.cmake)
