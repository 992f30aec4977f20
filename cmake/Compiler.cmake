# One interface target, lumo_options, carries every compiler setting of the project.
add_library(lumo_options INTERFACE)

target_compile_options(lumo_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
  -Wcast-align -Wformat=2 -Wimplicit-fallthrough -Wundef -Werror
  -Wno-missing-field-initializers  # designated initialisers leave the rest to its default
  # false alarms of g++ 12 in optimised builds, on std::string and on inlined pixel stores
  "$<$<CXX_COMPILER_ID:GNU>:-Wno-restrict;-Wno-stringop-overflow>"
  # A fused multiply-add rounds once where the formulas round twice, and changes bytes.
  -ffp-contract=off
  -fno-math-errno -fno-trapping-math)

target_include_directories(lumo_options INTERFACE ${PROJECT_SOURCE_DIR}/src)

string(REPLACE "-O2" "-O3" CMAKE_CXX_FLAGS_RELWITHDEBINFO "${CMAKE_CXX_FLAGS_RELWITHDEBINFO}")

if(LUMO_SANITIZE)
  target_compile_options(lumo_options INTERFACE
    -fsanitize=${LUMO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g1 -O1)
  target_link_options(lumo_options INTERFACE -fsanitize=${LUMO_SANITIZE})
  # The checks that sanitizers insert lead g++ to sizes that no path can have.
  target_compile_options(lumo_options INTERFACE
    $<$<CXX_COMPILER_ID:GNU>:-Wno-stringop-overflow -Wno-array-bounds -Wno-maybe-uninitialized>)
  target_compile_definitions(lumo_options INTERFACE LUMO_SANITIZED)
endif()

if(LUMO_FUZZ)
  target_compile_options(lumo_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

find_program(LUMO_CCACHE ccache)
if(LUMO_CCACHE)
  # Paths below the base folder are hashed relative to it, so that work trees share their objects.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
      CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${LUMO_CCACHE})
  set(CMAKE_C_COMPILER_LAUNCHER ${CMAKE_CXX_COMPILER_LAUNCHER})
endif()
