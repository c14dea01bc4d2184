# Writes OUTPUT, a C++ source that defines each NAME=FILE of TEXTS as a text of embedded_text.h.
#   cmake -DOUTPUT=... "-DTEXTS=kName=file kOther=file" -P EmbedText.cmake
separate_arguments(TEXTS)
set(source "#include \"embedded_host/embedded_text.h\"\n\n")
foreach(pair ${TEXTS})
  string(REGEX MATCH "^([^=]+)=(.+)$" _ "${pair}")
  file(READ ${CMAKE_MATCH_2} text)
  string(APPEND source
         "const std::string_view embedded_host::${CMAKE_MATCH_1} = R\"text(${text})text\";\n")
endforeach()
file(WRITE ${OUTPUT} "${source}")
