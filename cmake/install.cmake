# What `cmake --install` puts where: the library, its headers, the CMake package, the pkg-config file, zkey and its manual.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

if(TARGET zchromakey)
  target_compile_features(zchromakey INTERFACE cxx_std_17)
  set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zchromakey)
  install(TARGETS zchromakey EXPORT zchromakeyTargets
      RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
      LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
      ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")

  install(EXPORT zchromakeyTargets NAMESPACE zchromakey:: FILE zchromakeyConfig.cmake DESTINATION ${package_dir})
  write_basic_package_version_file(${CMAKE_BINARY_DIR}/zchromakeyConfigVersion.cmake COMPATIBILITY SameMajorVersion)
  install(FILES ${CMAKE_BINARY_DIR}/zchromakeyConfigVersion.cmake DESTINATION ${package_dir})

  # The file finds its prefix by its own place, so that an installed tree can be moved.
  file(RELATIVE_PATH pc_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/zchromakey.pc.in ${CMAKE_BINARY_DIR}/zchromakey.pc @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/zchromakey.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()

if(TARGET zkey)
  file(RELATIVE_PATH bin_to_lib /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
  set_target_properties(zkey PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
  install(TARGETS zkey RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  if(EXISTS ${PROJECT_SOURCE_DIR}/hosts/zkey/zkey.1)
    install(FILES ${PROJECT_SOURCE_DIR}/hosts/zkey/zkey.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  endif()
endif()
