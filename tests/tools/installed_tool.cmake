# Installs the build BUILD into a prefix, moves that, and starts the tool from BINDIR below it.
set(prefix ${BUILD}/tests/prefix)
set(moved ${BUILD}/tests/moved_prefix)
file(REMOVE_RECURSE ${prefix} ${moved})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${prefix} ${moved})
execute_process(COMMAND ${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH ${moved}/${BINDIR}/nvxprofile --version
                COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE_RECURSE ${moved})
