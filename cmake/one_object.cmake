# big_one_object(LIBRARY [WEAK]): makes a static library hold a single object, in which the objects of
# its sources stand in order. A program that uses any of them then gets all, and what they do at load
# happens in that order. With WEAK a program's own definition of a symbol takes the place of the
# library's. Does nothing to a shared library, which has these properties by itself.
function(big_one_object library)
  get_target_property(type ${library} TYPE)
  if(NOT type STREQUAL STATIC_LIBRARY)
    return()
  endif()
  target_compile_options(${library} PRIVATE -fno-lto) # only machine code can be joined
  set(archive $<TARGET_FILE:${library}>)
  set(object ${library}${CMAKE_CXX_OUTPUT_EXTENSION})
  set(weaken "")
  if("WEAK" IN_LIST ARGN)
    # The definitions alone: what an object only refers to stays as it is.
    set(weaken COMMAND ${CMAKE_NM} -g -j --defined-only ${object} > ${library}.symbols
               COMMAND ${CMAKE_OBJCOPY} --weaken-symbols=${library}.symbols ${object})
  endif()
  add_custom_command(
    TARGET ${library} POST_BUILD
    COMMAND ${CMAKE_CXX_COMPILER} -r -nostdlib -o ${object} -Wl,--whole-archive ${archive}
    ${weaken}
    COMMAND ${CMAKE_COMMAND} -E rm ${archive}
    COMMAND ${CMAKE_AR} qcs ${archive} ${object}
    VERBATIM)
endfunction()
