# Writes the bytes of INPUT into OUTPUT as a C++ array `embeddedText` of UTF-8 bytes with
# its length `embeddedTextSize`. A missing INPUT gives an empty text.
if(EXISTS ${INPUT})
  file(READ ${INPUT} bytes HEX)
else()
  set(bytes "")
endif()
string(LENGTH "${bytes}" hexLength)
math(EXPR size "${hexLength} / 2")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," body "${bytes}")
file(WRITE ${OUTPUT}.tmp
  "// Generated from ${INPUT}; do not edit.\n"
  "static const char embeddedText[] = {${body}'\\0'};\n"
  "static constexpr qsizetype embeddedTextSize = ${size};\n")
file(RENAME ${OUTPUT}.tmp ${OUTPUT})
