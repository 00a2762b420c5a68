include(${CMAKE_CURRENT_LIST_DIR}/headers.cmake)
nvxprofile_add_headers(fmt::fmt fmt)
target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY)
set(fmt_FOUND TRUE)
