# Headers, both libraries, the tool, a CMake package, a pkg-config file, documentation and examples.
include(CMakePackageConfigHelpers)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/nvxprofile DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS nvxprofile nvxprofile_static EXPORT nvxprofileTargets)
if(TARGET nvxprofile_tool)
  install(TARGETS nvxprofile_tool)
endif()
if(TARGET nvxprofile_tool AND NOT WIN32)
  install(FILES ${PROJECT_BINARY_DIR}/tools/nvxprofile.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${PROJECT_BINARY_DIR}/tools/nvxprofile.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
          RENAME nvxprofile)
  install(FILES ${PROJECT_BINARY_DIR}/tools/nvxprofile.zsh DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions
          RENAME _nvxprofile)
  install(FILES ${PROJECT_BINARY_DIR}/tools/nvxprofile.fish
          DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endif()

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/nvxprofileConfig.cmake.in ${PROJECT_BINARY_DIR}/nvxprofileConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/nvxprofile)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/nvxprofileConfigVersion.cmake COMPATIBILITY SameMajorVersion)
# The prefix is found from where the file lies, so that the installed tree can be moved.
file(RELATIVE_PATH NVXPROFILE_PREFIX_FROM_PC /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(${PROJECT_SOURCE_DIR}/cmake/nvxprofile.pc.in ${PROJECT_BINARY_DIR}/nvxprofile.pc @ONLY)

install(EXPORT nvxprofileTargets NAMESPACE nvxprofile:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/nvxprofile)
install(FILES ${PROJECT_BINARY_DIR}/nvxprofileConfig.cmake ${PROJECT_BINARY_DIR}/nvxprofileConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/nvxprofile)
install(FILES ${PROJECT_BINARY_DIR}/nvxprofile.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The page that leads to the others, and what they speak of, lie to each other as they do in the sources.
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/ARCHITECTURE.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
              ${PROJECT_SOURCE_DIR}/CONTRIBUTING.md ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/SECURITY.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples DESTINATION ${CMAKE_INSTALL_DOCDIR}
        PATTERN CMakeLists.txt EXCLUDE PATTERN __pycache__ EXCLUDE)
# Programs that check documents find the form of documents here, whether or not the pages are there.
install(FILES ${PROJECT_SOURCE_DIR}/docs/profile_document.schema.json DESTINATION ${CMAKE_INSTALL_DATADIR}/nvxprofile)
