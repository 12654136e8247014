# `coverage_report` prints the line and the branch coverage of the library by the tests that were run
# in a build with --coverage, as the preset `coverage` makes it.
if(CMAKE_CXX_FLAGS MATCHES "--coverage")
  find_program(GCOVR gcovr REQUIRED)
  set(BIG_COVERAGE ${PROJECT_BINARY_DIR}/coverage.json)
  add_custom_target(
    coverage_report
    COMMAND ${GCOVR} --root ${PROJECT_SOURCE_DIR} --filter ${PROJECT_SOURCE_DIR}/big/ --filter ${PROJECT_SOURCE_DIR}/h/
            --exclude-directories ".*/tests/install$" --exclude-throw-branches --exclude-unreachable-branches
            --json ${BIG_COVERAGE} ${PROJECT_BINARY_DIR}
    COMMAND ${GCOVR} --root ${PROJECT_SOURCE_DIR} --add-tracefile ${BIG_COVERAGE}
    COMMAND ${GCOVR} --root ${PROJECT_SOURCE_DIR} --add-tracefile ${BIG_COVERAGE} --branches
    VERBATIM)
endif()
