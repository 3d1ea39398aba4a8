include(${CMAKE_CURRENT_LIST_DIR}/miroxgclTargets.cmake)
