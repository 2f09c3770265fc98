# How everything is compiled: one language level, one set of warnings, and the sanitizers of the chosen preset.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

add_library(cairnfield_compile INTERFACE)
target_include_directories(cairnfield_compile INTERFACE "${PROJECT_SOURCE_DIR}/src")
target_compile_options(cairnfield_compile INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual
  -Wimplicit-fallthrough -Wno-missing-field-initializers -Werror)

if(CAIRNFIELD_SANITIZE)
  # The check of virtual table pointers opens a pipe for each object it has not seen; some tests leave no descriptor for it.
  add_compile_options(-fsanitize=${CAIRNFIELD_SANITIZE} -fno-sanitize=vptr -fno-omit-frame-pointer
                      -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=${CAIRNFIELD_SANITIZE})
endif()
if(CAIRNFIELD_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(CAIRNFIELD_COVERAGE)
  add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
  add_link_options(-fprofile-instr-generate)
endif()
