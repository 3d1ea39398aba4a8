# What tbs_version_id.cc says of the build: the project's version, and the date and time of the
# configuration, or of SOURCE_DATE_EPOCH, so that two builds of one commit are the same bytes.
string(TIMESTAMP build_date "%a %b %d %H:%M:%S %Y" UTC)
string(REGEX REPLACE " 0([1-9]) " " \\1 " build_date "${build_date}")
set_source_files_properties(
  gcl/tbs_version_id.cc
  PROPERTIES COMPILE_DEFINITIONS
             "MIROXGCL_VERSION=\"${PROJECT_VERSION}\";MIROXGCL_BUILD_DATE=\"${build_date}\"")
