# Finds Clang's C++ libraries for fe_db_record and makes the interface target fe_db_clang of them.
#
# No find_package(Clang): Debian ships ClangConfig.cmake with the compiler and not with the
# development package, and LLVMConfig.cmake asks for half a dozen further libraries that nothing
# here uses. What is needed are five files under one prefix, which llvm-config-N tells.
#
# Result: FE_DB_CLANG_FOUND, FE_DB_CLANG_VERSION (the major version), target fe_db_clang.

set(FE_DB_RECORD_CLANG_VERSION "" CACHE STRING
    "Major version of Clang that fe_db_record is built with (empty: the newest of 19, 16, 14)")

# Sets `result` to the first file that matches one of the patterns under the prefix, or to empty.
function(fe_db_first_match result prefix)
  foreach(pattern ${ARGN})
    file(GLOB matches ${prefix}/${pattern})
    if(matches)
      list(GET matches 0 match)
      set(${result} ${match} PARENT_SCOPE)
      return()
    endif()
  endforeach()
  set(${result} "" PARENT_SCOPE)
endfunction()

function(fe_db_find_clang version)
  find_program(FE_DB_LLVM_CONFIG_${version} llvm-config-${version})
  mark_as_advanced(FE_DB_LLVM_CONFIG_${version})
  if(NOT FE_DB_LLVM_CONFIG_${version})
    return()
  endif()
  execute_process(COMMAND ${FE_DB_LLVM_CONFIG_${version}} --prefix OUTPUT_VARIABLE prefix
                  OUTPUT_STRIP_TRAILING_WHITESPACE)
  fe_db_first_match(clang_header ${prefix} include/clang/Frontend/CompilerInstance.h)
  fe_db_first_match(llvm_header ${prefix} include/llvm/ADT/StringRef.h)
  fe_db_first_match(clang_library ${prefix} lib/libclang-cpp.so.${version}*)
  fe_db_first_match(llvm_library ${prefix} lib/libLLVM-${version}.so lib/libLLVM.so.${version}*)
  fe_db_first_match(stddef ${prefix} lib/clang/${version}*/include/stddef.h)
  if(NOT (clang_header AND llvm_header AND clang_library AND llvm_library AND stddef))
    return()
  endif()

  cmake_path(GET stddef PARENT_PATH resource_include)
  cmake_path(GET resource_include PARENT_PATH resource_directory)
  add_library(fe_db_clang INTERFACE)
  # As system headers: Clang's own do not pass our warnings.
  target_include_directories(fe_db_clang SYSTEM INTERFACE ${prefix}/include)
  target_link_libraries(fe_db_clang INTERFACE ${clang_library} ${llvm_library})
  target_compile_definitions(fe_db_clang INTERFACE
    _GNU_SOURCE __STDC_CONSTANT_MACROS __STDC_FORMAT_MACROS __STDC_LIMIT_MACROS
    FE_DB_RECORD_CLANG_PREFIX="${prefix}"
    FE_DB_RECORD_RESOURCE_DIR="${resource_directory}")
  set(FE_DB_CLANG_FOUND TRUE PARENT_SCOPE)
  set(FE_DB_CLANG_VERSION ${version} PARENT_SCOPE)
  set(FE_DB_CLANG_PREFIX ${prefix} PARENT_SCOPE)
  set(FE_DB_CLANG_RESOURCE_DIR ${resource_directory} PARENT_SCOPE)
endfunction()

set(FE_DB_CLANG_FOUND FALSE)
foreach(version ${FE_DB_RECORD_CLANG_VERSION} 19 16 14)
  if(NOT FE_DB_CLANG_FOUND AND
     (NOT FE_DB_RECORD_CLANG_VERSION OR version EQUAL FE_DB_RECORD_CLANG_VERSION))
    fe_db_find_clang(${version})
  endif()
endforeach()
