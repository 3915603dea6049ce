# cmake --install: the library with its public headers, the tools, a CMake
# package (find_package(Tamerisk) gives Tamerisk::tamerisk) and a pkg-config
# file (tamerisk.pc). Nothing of the static libraries, the tests or src/ goes
# into the prefix: a host sees the C interface and the editor class only.
include(CMakePackageConfigHelpers)

set(TAMERISK_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Tamerisk)

install(TARGETS tamerisk EXPORT TameriskTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
          COMPONENT runtime NAMELINK_COMPONENT development)
install(FILES
  ${PROJECT_SOURCE_DIR}/include/tamerisk/attribute.h
  ${PROJECT_SOURCE_DIR}/include/tamerisk/dlg_attribute.h
  ${PROJECT_SOURCE_DIR}/include/tamerisk/export.h
  ${PROJECT_SOURCE_DIR}/include/tamerisk/fz_truncate.h
  ${PROJECT_SOURCE_DIR}/include/tamerisk/tamerisk.h
  ${PROJECT_SOURCE_DIR}/include/tamerisk/version.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tamerisk COMPONENT development)

# The tools. The demo host finds the library in ../lib beside its own
# directory, as it does in the build tree.
foreach(tool tamerisk-render tamerisk-qva tamerisk-host)
  if(TARGET ${tool})
    install(TARGETS ${tool} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
  endif()
endforeach()

install(EXPORT TameriskTargets NAMESPACE Tamerisk:: DESTINATION ${TAMERISK_CMAKE_DIR}
  COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/TameriskConfig.cmake.in
  ${PROJECT_BINARY_DIR}/TameriskConfig.cmake INSTALL_DESTINATION ${TAMERISK_CMAKE_DIR})
# Minor versions only add to the interface; a new major version changes it.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TameriskConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TameriskConfig.cmake
              ${PROJECT_BINARY_DIR}/TameriskConfigVersion.cmake
  DESTINATION ${TAMERISK_CMAKE_DIR} COMPONENT development)

# The file names its prefix relative to itself, so that it stays right for
# any --prefix given to cmake --install, and when the prefix is moved.
file(RELATIVE_PATH TAMERISK_PC_TO_PREFIX "/p/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/p")
string(REGEX REPLACE "/$" "" TAMERISK_PC_TO_PREFIX "${TAMERISK_PC_TO_PREFIX}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/tamerisk.pc.in ${PROJECT_BINARY_DIR}/tamerisk.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tamerisk.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# The desktop side: the material files' type (by name and by header), a
# thumbnailer entry through which thumbnail services draw them, and the demo
# host as the program that opens them. The entries name the installed
# programs by their full path, so they are written when the prefix is known,
# at install time.
install(FILES ${PROJECT_SOURCE_DIR}/data/tamerisk-material.xml
  DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages COMPONENT runtime)
install(CODE "
  set(TAMERISK_BIN \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}\")
  configure_file(\"${PROJECT_SOURCE_DIR}/data/tamerisk.thumbnailer.in\"
                 \"${PROJECT_BINARY_DIR}/install-time/tamerisk.thumbnailer\" @ONLY)
  configure_file(\"${PROJECT_SOURCE_DIR}/data/tamerisk-host.desktop.in\"
                 \"${PROJECT_BINARY_DIR}/install-time/tamerisk-host.desktop\" @ONLY)
" COMPONENT runtime)
install(FILES ${PROJECT_BINARY_DIR}/install-time/tamerisk.thumbnailer
  DESTINATION ${CMAKE_INSTALL_DATADIR}/thumbnailers COMPONENT runtime)
install(FILES ${PROJECT_BINARY_DIR}/install-time/tamerisk-host.desktop
  DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT runtime)
# The type is known only once the prefix's MIME database is rebuilt. A
# package (DESTDIR set) leaves that to the system's triggers.
install(CODE "
  find_program(TAMERISK_UPDATE_MIME update-mime-database)
  if(TAMERISK_UPDATE_MIME AND NOT \"\$ENV{DESTDIR}\")
    execute_process(COMMAND \${TAMERISK_UPDATE_MIME} \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}/mime\")
  endif()
" COMPONENT runtime)

# The presets, which "開く" offers beside the user's own folder.
install(FILES ${TAMERISK_PRESETS}
  DESTINATION ${CMAKE_INSTALL_DATADIR}/tamerisk/materials COMPONENT runtime)
