# Headers, both libraries, the tool, a CMake package and a pkg-config file.
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
