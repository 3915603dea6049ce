# Installs the build into a fresh prefix and builds hosts against that
# prefix alone: the check's host and the minimal host of docs/host-authors.md with
# find_package(Tamerisk), and the check's host again with pkg-config. The
# check's host is run each time.
#
#   cmake -DBUILD_DIR=... -DSOURCE_DIR=... -DWORK_DIR=... -P check_install.cmake
cmake_minimum_required(VERSION 3.25)

set(prefix ${WORK_DIR}/prefix)
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
foreach(file include/tamerisk/tamerisk.h include/tamerisk/attribute.h include/tamerisk/version.h
             include/tamerisk/dlg_attribute.h bin/tamerisk-render bin/tamerisk-qva bin/tamerisk-host
             share/tamerisk/materials/gold.qva share/mime/packages/tamerisk-material.xml
             share/thumbnailers/tamerisk.thumbnailer share/applications/tamerisk-host.desktop)
  if(NOT EXISTS ${prefix}/${file})
    message(FATAL_ERROR "not installed: ${file}")
  endif()
endforeach()
file(GLOB_RECURSE private_headers ${prefix}/include/*_p.h)
if(private_headers)
  message(FATAL_ERROR "private headers installed: ${private_headers}")
endif()

# find_package, the way docs/host-authors.md shows it.
foreach(project host:${SOURCE_DIR}/tests/install minimal_host:${SOURCE_DIR}/examples/minimal_host)
  string(REPLACE ":" ";" project ${project})
  list(GET project 0 name)
  list(GET project 1 source)
  run(${CMAKE_COMMAND} -S ${source} -B ${WORK_DIR}/${name} -G Ninja
      -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=Release)
  run(${CMAKE_COMMAND} --build ${WORK_DIR}/${name})
endforeach()
run(${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen TAMERISK_SETTINGS_DIR=${WORK_DIR}
    ${WORK_DIR}/host/host)

# The installed demo host finds the installed library by itself.
run(${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen TAMERISK_SETTINGS_DIR=${WORK_DIR}
    ${prefix}/bin/tamerisk-host --screenshot ${WORK_DIR}/editor.png)

# pkg-config, the way a Makefile would.
find_program(PKG_CONFIG pkg-config REQUIRED)
find_program(CXX NAMES c++ g++ clang++ REQUIRED)
file(GLOB_RECURSE pc_file ${prefix}/*/tamerisk.pc)
get_filename_component(pc_dir "${pc_file}" DIRECTORY)
set(ENV{PKG_CONFIG_PATH} ${pc_dir})
execute_process(COMMAND ${PKG_CONFIG} --cflags --libs tamerisk Qt6Widgets
                OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${PKG_CONFIG} --variable=libdir tamerisk
                OUTPUT_VARIABLE libdir OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${CXX} -std=c++17 -fPIC -Wall -Wextra -Wpedantic -Wdouble-promotion -Werror
    ${SOURCE_DIR}/tests/install/host.cpp -o ${WORK_DIR}/pkg-config-host ${flags} -Wl,-rpath,${libdir})
run(${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen TAMERISK_SETTINGS_DIR=${WORK_DIR}
    ${WORK_DIR}/pkg-config-host)
