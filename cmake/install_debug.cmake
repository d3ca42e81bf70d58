# What debuggers show of the library, for its clients: docs/debugging.md.  gdb loads its printers by the place of the
# shared library: below the auto-load folder is the library's whole path.  The prefix is that of the installation,
# which `cmake --install --prefix` may change.
include(GNUInstallDirs)

install(FILES tools/debug/tarnutil-gdb.py tools/debug/tarnutil.natvis DESTINATION ${CMAKE_INSTALL_DATADIR}/tarnutil)
if(BUILD_SHARED_LIBS AND CMAKE_EXECUTABLE_FORMAT STREQUAL "ELF")
  set(library_folder "\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}")
  if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
    set(library_folder ${CMAKE_INSTALL_LIBDIR})
  endif()
  install(FILES tools/debug/tarnutil-gdb.py
          DESTINATION ${CMAKE_INSTALL_DATADIR}/gdb/auto-load/${library_folder}
          RENAME libtarnutil.so.${PROJECT_VERSION}-gdb.py)
endif()
