# What `cmake --install` lays out: libraries, headers and the files that find_package() reads.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/miroxgcl)

install(TARGETS miroxplat miroxgcl EXPORT miroxgclTargets)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/libobj/include/ TYPE INCLUDE FILES_MATCHING PATTERN "*.h")
install(EXPORT miroxgclTargets NAMESPACE miroxgcl:: DESTINATION ${package_dir})

write_basic_package_version_file(${PROJECT_BINARY_DIR}/miroxgclConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_SOURCE_DIR}/cmake/miroxgclConfig.cmake
              ${PROJECT_BINARY_DIR}/miroxgclConfigVersion.cmake DESTINATION ${package_dir})
