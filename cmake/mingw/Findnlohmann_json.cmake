include(${CMAKE_CURRENT_LIST_DIR}/headers.cmake)
nvxprofile_add_headers(nlohmann_json::nlohmann_json nlohmann)
set(nlohmann_json_FOUND TRUE)
