# The Debian packages: one for those who run programs, one for those who write them, one to read.
# script/package makes and checks them.
option(MIROXGCL_BUILD_PACKAGES "Let cpack make Debian packages" OFF)
if(NOT MIROXGCL_BUILD_PACKAGES)
  return()
endif()

set(MIROXGCL_MAINTAINER "miroxgcl authors <authors@miroxgcl.invalid>"
    CACHE STRING "Who answers for the packages: name and address")
set(runtime_package libmiroxgcl${PROJECT_VERSION_MAJOR})
set(development_package libmiroxgcl-dev)
set(documentation_package libmiroxgcl-doc)
set(package_version ${PROJECT_VERSION}-1)

set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL runtime development documentation)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_PACKAGE_CONTACT ${MIROXGCL_MAINTAINER})
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE miroxgcl)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)

set(description
    "Reference-counted byte strings, statuses that carry messages, containers,
debug traces, dates, pathnames, and the operating system's users and groups.")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DEBUGINFO_PACKAGE ON)  # strips the libraries; for gdb: ...-dbgsym.ddeb
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/libobj)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/triggers)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "foundation class library for C++17
${description}

This package has the shared libraries, their message catalog and gdb's script.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ${development_package})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${runtime_package} (= ${package_version})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS ${documentation_package})
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "foundation class library for C++17 (development files)
${description}

This package has the headers and what CMake and pkg-config read.")

set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME ${documentation_package})
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOCUMENTATION_DESCRIPTION "foundation class library for C++17 (documentation)
${description}

This package has the documents and the sources of the examples.")

# What Debian wants of every package: its changes, its terms, and the exceptions from lintian's
# rules.
set(staging ${PROJECT_BINARY_DIR}/packaging)
string(TIMESTAMP package_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(packaging/changelog.in ${staging}/changelog.Debian @ONLY)
configure_file(CHANGELOG.md ${staging}/changelog COPYONLY)
execute_process(COMMAND gzip -9nfk ${staging}/changelog.Debian ${staging}/changelog
                COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  set(package ${${component}_package})
  install(FILES packaging/copyright ${staging}/changelog.Debian.gz
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
  install(FILES packaging/${component}.overrides
          DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME ${package}
          COMPONENT ${component})
endforeach()

install(FILES README.md ${staging}/changelog.gz TYPE DOC COMPONENT documentation)
install(DIRECTORY doc TYPE DOC COMPONENT documentation FILES_MATCHING PATTERN "*.md")
if(EXISTS ${PROJECT_SOURCE_DIR}/build/docs/html)
  install(DIRECTORY build/docs/html TYPE DOC COMPONENT documentation)
  install(FILES packaging/doc-base DESTINATION ${CMAKE_INSTALL_DATADIR}/doc-base
          RENAME ${documentation_package} COMPONENT documentation)
endif()

include(CPack)
