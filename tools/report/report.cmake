# Embeds the page of nvxprofile report and the charting library into the tool. Without the library the tool builds, and
# report says what is missing.
find_file(NVXPROFILE_D3 d3.min.js PATHS /usr/share/nodejs/d3/dist /usr/lib/nodejs/d3/dist DOC "d3, version 5 or later"
          NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
set(charts ${NVXPROFILE_D3})
if(NOT charts)
  set(charts "")
  message(STATUS "d3 is missing (Debian: node-d3): nvxprofile is built without its reports")
endif()

set(page ${CMAKE_CURRENT_LIST_DIR}/page)
# In the order in which they build on each other.
set(scripts data format dom inks plot curves separation gamut conditions calibrations profile compare index main)
list(TRANSFORM scripts REPLACE "(.+)" "${page}/\\1.js")
set(styles ${page}/style.css ${page}/plots.css ${page}/media.css)
set(embedded ${CMAKE_CURRENT_BINARY_DIR}/report_page.cpp)
add_custom_command(
  OUTPUT ${embedded}
  COMMAND ${CMAKE_COMMAND} -DTEMPLATE=${page}/template.html "-DSTYLES=${styles}" "-DSCRIPTS=${scripts}"
          -DCHARTS=${charts} -DOUT=${embedded} -P ${CMAKE_CURRENT_LIST_DIR}/embed.cmake
  DEPENDS ${page}/template.html ${styles} ${scripts} ${charts} ${CMAKE_CURRENT_LIST_DIR}/embed.cmake
  VERBATIM)
target_sources(nvxprofile_tool PRIVATE ${embedded})
set_source_files_properties(${embedded} PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
