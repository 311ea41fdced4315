# The instructions tell the model what the UI kit supports. That list is docs/kit.md,
# compiled into the program at build time so that the two never disagree.
file(GLOB ZENTORO_KIT_LIST CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/docs/kit.md)
set(ZENTORO_KIT_LIST_HEADER ${CMAKE_BINARY_DIR}/generated/KitList.inc)
add_custom_command(
  OUTPUT ${ZENTORO_KIT_LIST_HEADER}
  COMMAND ${CMAKE_COMMAND} -DINPUT=${CMAKE_SOURCE_DIR}/docs/kit.md -DOUTPUT=${ZENTORO_KIT_LIST_HEADER}
          -P ${CMAKE_SOURCE_DIR}/cmake/EmbedText.cmake
  DEPENDS ${ZENTORO_KIT_LIST} ${CMAKE_SOURCE_DIR}/cmake/EmbedText.cmake
  COMMENT "Embedding the UI kit's list")
target_sources(zentoro_core PRIVATE ${ZENTORO_KIT_LIST_HEADER})
target_include_directories(zentoro_core PRIVATE ${CMAKE_BINARY_DIR}/generated)
