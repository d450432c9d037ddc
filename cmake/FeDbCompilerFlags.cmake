# Flags of our own code; installed headers and dependencies are not touched.
add_library(fe_db_compiler_flags INTERFACE)
target_compile_options(fe_db_compiler_flags INTERFACE -Wall -Wextra -Wshadow=local -Wno-missing-field-initializers)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  set_property(TARGET fe_db_compiler_flags PROPERTY INTERFACE_COMPILE_OPTIONS
               -Wall -Wextra -Wno-missing-field-initializers)
endif()
if(FE_DB_WERROR)
  target_compile_options(fe_db_compiler_flags INTERFACE -Werror)
endif()
if(FE_DB_SANITIZE)
  # No vptr check: it needs the type information of classes that the libraries keep hidden.
  add_compile_options(-fsanitize=address,undefined -fno-sanitize=vptr -fno-sanitize-recover=undefined
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined -fno-sanitize=vptr)
endif()
