# cmake -DSOURCE=... -DGENERATED=... -DDESTINATION=... -DHEADERS="a/b.h ..." -P InstalledHeaders.cmake
# Copies headers to where users see them: all below tvmathrng/, including each other by that path, so
# that no name of ours gets in the way of a user's. Those of the folder GENERATED lie there already.
separate_arguments(HEADERS)
file(REMOVE_RECURSE ${DESTINATION}/tvmathrng)
file(COPY ${GENERATED}/tvmathrng DESTINATION ${DESTINATION})
foreach(header ${HEADERS})
  string(REGEX REPLACE "^(c|cpp)/tvmathrng/" "" place ${header})
  file(READ ${SOURCE}/${header} text)
  string(REGEX REPLACE "#include \"([^\"]+)\"" "#include \"tvmathrng/\\1\"" text "${text}")
  file(WRITE ${DESTINATION}/tvmathrng/${place} "${text}")
endforeach()
