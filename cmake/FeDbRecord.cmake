# Recording as a part of the build; comes with find_package(fe_db).
#
# fe_db_record_target(TARGET [OUTPUT FILE] [OPTIONS OPTION...])
#
# Every C and C++ source of TARGET is recorded when it is compiled, beside its object, and the
# target TARGET.facts, part of `all`, merges them into FILE (TARGET.facts.db in the current binary
# directory unless given) whenever an object has changed. OPTIONs are those of fe_db_record. A
# launcher that the target has already, such as ccache, runs after fe_db_record.

set(FE_DB_MERGE_UNITS "${CMAKE_CURRENT_LIST_DIR}/FeDbMergeUnits.cmake")

function(fe_db_record_target target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "OUTPUT" "OPTIONS")
  foreach(program "${FE_DB_RECORD_PROGRAM}" "${FE_DB_PROGRAM}")
    if(NOT EXISTS "${program}")
      message(FATAL_ERROR "fe_db_record_target(${target}): ${program} is missing; install fe_db "
                          "with its programs (fe_db_record needs Clang's development packages)")
    endif()
  endforeach()

  foreach(language C CXX)
    get_target_property(launcher ${target} ${language}_COMPILER_LAUNCHER)
    if(NOT launcher)
      set(launcher "")
    endif()
    set_property(TARGET ${target} PROPERTY ${language}_COMPILER_LAUNCHER
                 "${FE_DB_RECORD_PROGRAM}" --launcher ${arg_OPTIONS} -- ${launcher})
  endforeach()

  get_property(has_configurations GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
  set(directory "${CMAKE_CURRENT_BINARY_DIR}")
  if(has_configurations)
    string(APPEND directory "/$<CONFIG>")
  endif()
  if(NOT arg_OUTPUT)
    set(arg_OUTPUT "${directory}/${target}.facts.db")
  endif()
  cmake_path(ABSOLUTE_PATH arg_OUTPUT BASE_DIRECTORY "${directory}")
  set(objects "${directory}/CMakeFiles/${target}.facts.objects")
  file(GENERATE OUTPUT "${objects}" CONTENT "$<JOIN:$<TARGET_OBJECTS:${target}>,\n>\n")
  add_custom_command(
    OUTPUT "${arg_OUTPUT}"
    COMMAND ${CMAKE_COMMAND} "-DPROGRAM=${FE_DB_PROGRAM}" "-DOBJECTS=${objects}"
            "-DOUTPUT=${arg_OUTPUT}" -P "${FE_DB_MERGE_UNITS}"
    DEPENDS "$<TARGET_OBJECTS:${target}>" "${objects}"
    COMMENT "Merging the facts of ${target}"
    VERBATIM)
  add_custom_target(${target}.facts ALL DEPENDS "${arg_OUTPUT}")
  # In Makefiles only the target itself knows how to make its objects.
  add_dependencies(${target}.facts ${target})
endfunction()
