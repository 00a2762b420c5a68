include(${CMAKE_CURRENT_LIST_DIR}/headers.cmake)
nvxprofile_add_headers(CLI11::CLI11 CLI)
set(CLI11_FOUND TRUE)
