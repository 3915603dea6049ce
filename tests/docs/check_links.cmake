# Every relative link of README.md and docs/*.md names a file or directory
# that exists, so that moving a file or a guide cannot leave a dead link.
#
#   cmake -DSOURCE_DIR=... -P check_links.cmake
cmake_minimum_required(VERSION 3.25)

file(GLOB pages ${SOURCE_DIR}/README.md ${SOURCE_DIR}/docs/*.md)
set(broken "")
foreach(page IN LISTS pages)
  file(READ ${page} text)
  get_filename_component(dir ${page} DIRECTORY)
  # ](target) and ](target#anchor); web links and bare anchors are not
  # files. Brackets and semicolons would split CMake's lists, so they go.
  string(REPLACE "](" "<link>" text "${text}")
  string(REGEX REPLACE "[][;]" "" text "${text}")
  string(REGEX MATCHALL "<link>[^)# ]+" links "${text}")
  foreach(link IN LISTS links)
    string(SUBSTRING "${link}" 6 -1 target)
    if(NOT target MATCHES "^[a-z]+:" AND NOT EXISTS ${dir}/${target})
      file(RELATIVE_PATH shown ${SOURCE_DIR} ${page})
      string(APPEND broken "\n  ${shown}: ${target}")
    endif()
  endforeach()
endforeach()
if(broken)
  message(FATAL_ERROR "links to nothing:${broken}")
endif()
