# How every target of the house is built: one INTERFACE target for warnings and floating-point rules,
# one function for a library room.

add_library(tarvex_build INTERFACE)
target_compile_options(tarvex_build INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  -ffp-contract=off  # the same coordinate on every machine, to the last bit
  $<$<BOOL:${TARVEX_WARNINGS_AS_ERRORS}>:-Werror>)
if(TARVEX_SANITIZERS)
  target_compile_options(tarvex_build INTERFACE -fsanitize=${TARVEX_SANITIZERS} -fno-omit-frame-pointer
                         -fno-sanitize-recover=all)
  target_link_options(tarvex_build INTERFACE -fsanitize=${TARVEX_SANITIZERS})
endif()
if(TARVEX_BUILD_FUZZ)
  target_compile_options(tarvex_build INTERFACE -fsanitize=fuzzer-no-link)  # coverage for libFuzzer
endif()

# tarvex_library(ROOM HEADERS ... SOURCES ... USES ...): the static library tarvex_ROOM, alias Tarvex::ROOM.
function(tarvex_library room)
  cmake_parse_arguments(ARG "" "" "HEADERS;SOURCES;USES" ${ARGN})
  set(target tarvex_${room})
  add_library(${target} STATIC ${ARG_SOURCES})
  add_library(Tarvex::${room} ALIAS ${target})
  target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${ARG_HEADERS})
  target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_link_libraries(${target} PUBLIC ${ARG_USES} PRIVATE $<BUILD_INTERFACE:tarvex_build>)
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${room} VERIFY_INTERFACE_HEADER_SETS ON
                        POSITION_INDEPENDENT_CODE ON)
  set_property(GLOBAL APPEND PROPERTY TARVEX_LIBRARIES ${target})
endfunction()

# Where the modules are after an install: the program looks there, whatever the machine's folder for libraries is.
set(TARVEX_MODULE_INSTALL_FOLDER lib/tarvex)
