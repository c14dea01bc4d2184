# Writes the lines of TABLE as string literals to INCLUDED.
file(STRINGS ${TABLE} lines)
set(text "")
foreach(line IN LISTS lines)
  string(APPEND text "\"${line}\\n\"\n")
endforeach()
file(WRITE ${INCLUDED} "${text}")
