# Profiles as JSON documents: what the tool and the Python package share. It is compiled against the headers alone, so
# that each of them brings the library in its own way.
find_package(nlohmann_json REQUIRED)
find_package(fmt REQUIRED)

set(NVXPROFILE_DOCUMENT_SOURCES ${PROJECT_SOURCE_DIR}/tools/calibration_view.cpp
                                ${PROJECT_SOURCE_DIR}/tools/clock.cpp
                                ${PROJECT_SOURCE_DIR}/tools/document.cpp
                                ${PROJECT_SOURCE_DIR}/tools/files.cpp
                                ${PROJECT_SOURCE_DIR}/tools/interruption.cpp
                                ${PROJECT_SOURCE_DIR}/tools/json_fields.cpp
                                ${PROJECT_SOURCE_DIR}/tools/json_text.cpp
                                ${PROJECT_SOURCE_DIR}/tools/loading.cpp
                                ${PROJECT_SOURCE_DIR}/tools/paths.cpp
                                ${PROJECT_SOURCE_DIR}/tools/payload.cpp
                                ${PROJECT_SOURCE_DIR}/tools/terminal.cpp)
file(GLOB NVXPROFILE_SYSTEM_SOURCES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/posix/*.cpp
     ${PROJECT_SOURCE_DIR}/tools/windows/*.cpp)
list(FILTER NVXPROFILE_SYSTEM_SOURCES EXCLUDE REGEX "/tools/${NVXPROFILE_OTHER_SYSTEM}/")
list(APPEND NVXPROFILE_DOCUMENT_SOURCES ${NVXPROFILE_SYSTEM_SOURCES})

add_library(nvxprofile_documents STATIC ${NVXPROFILE_DOCUMENT_SOURCES})
set_target_properties(nvxprofile_documents PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden
                                                      VISIBILITY_INLINES_HIDDEN ON)
target_include_directories(nvxprofile_documents PUBLIC ${PROJECT_SOURCE_DIR}/tools
                           PRIVATE ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(nvxprofile_documents PUBLIC nlohmann_json::nlohmann_json PRIVATE nvxprofile_options)
# A wheel has nothing beside it to find a library in.
target_link_libraries(nvxprofile_documents
                      PRIVATE $<IF:$<BOOL:${NVXPROFILE_BUILD_PYTHON}>,fmt::fmt-header-only,fmt::fmt>)
# Outside of a release it is built to be built quickly.
target_compile_options(nvxprofile_documents PRIVATE $<$<NOT:$<CONFIG:Release>>:-O0>)

# Files are small beside the headers that they include: those of a folder are compiled as one.
set_target_properties(nvxprofile_documents PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
foreach(source IN LISTS NVXPROFILE_DOCUMENT_SOURCES)
  cmake_path(GET source PARENT_PATH folder)
  cmake_path(GET folder FILENAME folder)
  set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${folder})
endforeach()
