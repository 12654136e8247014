# What `cmake --install` puts under the prefix: the libraries, the headers in include/big, the CMake
# package `big`, and big.pc for pkg-config. The tool has its own line in tools/.
include(CMakePackageConfigHelpers)

# Wherever the prefix is, libbig.so finds libbig_platform.so beside it.
set_target_properties(big PROPERTIES INSTALL_RPATH "$ORIGIN")
set(BIG_LIBRARIES big)
if(TARGET big_platform)
  set_target_properties(big_platform PROPERTIES EXPORT_NAME platform)
  list(APPEND BIG_LIBRARIES big_platform)
endif()
install(TARGETS ${BIG_LIBRARIES} EXPORT big)
install(DIRECTORY h/ platform/h/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/big FILES_MATCHING PATTERN "*.h")

# The CMake package
set(BIG_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/big)
install(EXPORT big NAMESPACE big:: FILE bigTargets.cmake DESTINATION ${BIG_PACKAGE_DIR})
configure_package_config_file(cmake/bigConfig.cmake.in ${PROJECT_BINARY_DIR}/bigConfig.cmake
                              INSTALL_DESTINATION ${BIG_PACKAGE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/bigConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/bigConfig.cmake ${PROJECT_BINARY_DIR}/bigConfigVersion.cmake
        DESTINATION ${BIG_PACKAGE_DIR})

# The store is a component of the package, so that what it needs is asked of those who ask for it.
if(TARGET big_store)
  set_target_properties(big_store PROPERTIES EXPORT_NAME store INSTALL_RPATH "$ORIGIN")
  install(TARGETS big_store EXPORT bigStore)
  install(DIRECTORY platform/store/h/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/big FILES_MATCHING PATTERN "*.h")
  install(EXPORT bigStore NAMESPACE big:: FILE bigStoreTargets.cmake DESTINATION ${BIG_PACKAGE_DIR})
endif()

# pkg-config
file(RELATIVE_PATH BIG_PC_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
cmake_path(APPEND BIG_PC_INCLUDEDIR "\${prefix}" "${CMAKE_INSTALL_INCLUDEDIR}" big)
cmake_path(APPEND BIG_PC_LIBDIR "\${prefix}" "${CMAKE_INSTALL_LIBDIR}")
list(TRANSFORM BIG_LIBRARIES PREPEND -l OUTPUT_VARIABLE BIG_PC_LIBS)
list(JOIN BIG_PC_LIBS " " BIG_PC_LIBS)
configure_file(cmake/big.pc.in ${PROJECT_BINARY_DIR}/big.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/big.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(TARGET big_store)
  set(BIG_STORE_PC_LIBS -lbig_store)
  get_target_property(type big_store TYPE)
  if(type STREQUAL STATIC_LIBRARY)
    string(APPEND BIG_STORE_PC_LIBS " -lsqlite3")
    get_target_property(definitions big_store COMPILE_DEFINITIONS)
    if(definitions MATCHES BIG_STORE_HAS_POSTGRES)
      string(APPEND BIG_STORE_PC_LIBS " -lpq")
    endif()
  endif()
  configure_file(cmake/big-store.pc.in ${PROJECT_BINARY_DIR}/big-store.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/big-store.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()
