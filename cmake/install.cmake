# What `cmake --install` installs: the public headers, the library, a CMake package and a pkg-config file.  None
# of it holds the prefix, so that an installed tree can be moved.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/tarnutil)
install(TARGETS tarnutil EXPORT tarnutilTargets
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarnutil
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarnutil)
install(EXPORT tarnutilTargets NAMESPACE tarnutil:: DESTINATION ${package_folder})
configure_package_config_file(cmake/tarnutilConfig.cmake.in tarnutilConfig.cmake
                              INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(tarnutilConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tarnutilConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/tarnutilConfigVersion.cmake
        DESTINATION ${package_folder})

# Folders below the prefix are written relative to the file itself, those outside it as they are.
set(pc_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
cmake_path(ABSOLUTE_PATH pc_folder BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX} OUTPUT_VARIABLE pc_place)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${pc_place} OUTPUT_VARIABLE pc_up)
set(pc_prefix "\${pcfiledir}/${pc_up}")
set(pc_libdir "\${prefix}")
cmake_path(APPEND pc_libdir ${CMAKE_INSTALL_LIBDIR})
set(pc_includedir "\${prefix}")
cmake_path(APPEND pc_includedir ${CMAKE_INSTALL_INCLUDEDIR} tarnutil)
set(pc_private ${CMAKE_DL_LIBS})
list(TRANSFORM pc_private PREPEND -l)
list(JOIN pc_private " " pc_private)
set(pc_define "")
if(BUILD_SHARED_LIBS)
  set(pc_define " -DTARN_SHARED")
endif()
configure_file(cmake/tarnutil.pc.in tarnutil.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tarnutil.pc DESTINATION ${pc_folder})
