# The kit's Swift sources travel inside the program as Qt resources under ":/Kit". The
# resource list is made from the folder itself, so adding or moving a kit file needs no
# list kept by hand.
file(GLOB_RECURSE ZENTORO_KIT_FILES CONFIGURE_DEPENDS RELATIVE ${CMAKE_SOURCE_DIR}/src/resources
  ${CMAKE_SOURCE_DIR}/src/resources/Kit/Sources/*.swift ${CMAKE_SOURCE_DIR}/src/resources/Kit/Sources/*/include/*)
list(SORT ZENTORO_KIT_FILES)
set(ZENTORO_KIT_QRC_TEXT "<!DOCTYPE RCC>\n<RCC version=\"1.0\">\n  <qresource prefix=\"/Kit\">\n")
foreach(file IN LISTS ZENTORO_KIT_FILES)
  string(REGEX REPLACE "^Kit/" "" alias ${file})
  string(APPEND ZENTORO_KIT_QRC_TEXT
    "    <file alias=\"${alias}\">${CMAKE_SOURCE_DIR}/src/resources/${file}</file>\n")
endforeach()
string(APPEND ZENTORO_KIT_QRC_TEXT "  </qresource>\n</RCC>\n")
set(ZENTORO_KIT_QRC ${CMAKE_BINARY_DIR}/generated/kit.qrc)
file(CONFIGURE OUTPUT ${ZENTORO_KIT_QRC} CONTENT "${ZENTORO_KIT_QRC_TEXT}")
target_sources(zentoro_core PRIVATE ${ZENTORO_KIT_QRC})
