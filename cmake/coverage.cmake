# `coverage_report` prints the line and the branch coverage of the library by the tests that were run
# in a build with --coverage, as the preset `coverage` makes it. Branches that only an exception takes
# are left out, which gcovr manages in the source folder alone.
if(CMAKE_CXX_FLAGS MATCHES "--coverage")
  find_program(GCOVR gcovr REQUIRED)
  set(gcovr ${GCOVR} --root ${PROJECT_SOURCE_DIR} --filter ${PROJECT_SOURCE_DIR}/big/ --filter ${PROJECT_SOURCE_DIR}/h/
            --exclude-directories ".*/tests/install$" --exclude-throw-branches ${PROJECT_BINARY_DIR})
  add_custom_target(coverage_report COMMAND ${gcovr} COMMAND ${gcovr} --branches
                                    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} VERBATIM)
endif()
