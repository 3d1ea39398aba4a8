# What `cmake --install` lays out: libraries, headers, the files that find_package() and pkg-config
# read, and the examples. Nothing but the place of the debugger's script holds the prefix: the tree
# may be moved.
if(NOT MIROXGCL_INSTALL)
  return()
endif()
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/miroxgcl)

install(TARGETS miroxplat miroxgcl EXPORT miroxgclTargets
        LIBRARY COMPONENT runtime NAMELINK_COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/libobj/include/ TYPE INCLUDE COMPONENT development
        FILES_MATCHING PATTERN "*.h")
install(EXPORT miroxgclTargets NAMESPACE miroxgcl:: DESTINATION ${package_dir}
        COMPONENT development)

write_basic_package_version_file(${PROJECT_BINARY_DIR}/miroxgclConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_SOURCE_DIR}/cmake/miroxgclConfig.cmake
              ${PROJECT_BINARY_DIR}/miroxgclConfigVersion.cmake DESTINATION ${package_dir}
        COMPONENT development)

set(pc_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH pc_prefix /${pc_dir} /)
string(REGEX REPLACE "/$" "" pc_prefix "${pc_prefix}")
set(pc_definitions "")
if(MIROXGCL_CHECK_PRECONDITIONS)
  set(pc_definitions " -DMIROXGCL_CHECK_PRECONDITIONS=1")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/miroxgcl.pc.in ${PROJECT_BINARY_DIR}/miroxgcl.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/miroxgcl.pc DESTINATION ${pc_dir} COMPONENT development)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples TYPE DOC COMPONENT documentation
        FILES_MATCHING PATTERN "*.cc")

# gdb finds its script by the library's full path, which is known when the prefix is: here the
# installed tree cannot be moved.
install(CODE "file(REAL_PATH \"${CMAKE_INSTALL_LIBDIR}\" gdb_library_dir
                   BASE_DIRECTORY \"\${CMAKE_INSTALL_PREFIX}\")"
        COMPONENT runtime)
install(FILES ${PROJECT_SOURCE_DIR}/tools/gdb_printers.py
        DESTINATION "${CMAKE_INSTALL_DATADIR}/gdb/auto-load\${gdb_library_dir}"
        RENAME $<TARGET_FILE_NAME:miroxgcl>-gdb.py COMPONENT runtime)
