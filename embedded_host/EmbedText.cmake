# Writes OUTPUT, a C++ source that defines each NAME=FILE of TEXTS as a text that HEADER declares in
# NAMESPACE.
#   cmake -DOUTPUT=... -DHEADER=... -DNAMESPACE=... "-DTEXTS=kName=file kOther=file" -P EmbedText.cmake
separate_arguments(TEXTS)
set(source "#include \"${HEADER}\"\n\n")
foreach(pair ${TEXTS})
  string(REGEX MATCH "^([^=]+)=(.+)$" _ "${pair}")
  file(READ ${CMAKE_MATCH_2} text)
  string(APPEND source
         "const std::string_view ${NAMESPACE}::${CMAKE_MATCH_1} = R\"text(${text})text\";\n")
endforeach()
file(WRITE ${OUTPUT} "${source}")
