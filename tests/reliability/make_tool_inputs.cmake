# Writes the large inputs of the ui-core reliability checks into DIR, at test
# time, so that nothing of that size is kept in the repository:
#   empty.txt        no bytes at all
#   huge_line.txt    one line of 100,000,000 bytes without a line end
#                    ("abcdefghi<" ten million times)
#   huge_batch.txt   a batch file whose one command line is 100,000,021 bytes:
#                    unit-conversion-type and a word of 100,000,000 letters
# With CLEAN set, removes them instead.
if(NOT DIR)
  message(FATAL_ERROR "DIR is not set")
endif()
set(files ${DIR}/empty.txt ${DIR}/huge_line.txt ${DIR}/huge_batch.txt)
if(CLEAN)
  file(REMOVE ${files})
  return()
endif()
file(MAKE_DIRECTORY ${DIR})
file(WRITE ${DIR}/empty.txt "")
# Appended a megabyte at a time, so the script never holds more than that.
function(write_repeated path prefix unit suffix)
  string(REPEAT "${unit}" 100000 megabyte)  # unit is ten bytes long
  file(WRITE ${path} "${prefix}")
  foreach(i RANGE 1 100)
    file(APPEND ${path} "${megabyte}")
  endforeach()
  file(APPEND ${path} "${suffix}")
endfunction()
write_repeated(${DIR}/huge_line.txt "" "abcdefghi<" "")
write_repeated(${DIR}/huge_batch.txt "unit-conversion-type " "aaaaaaaaaa" "\n")
