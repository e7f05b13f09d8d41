# Flags and output folders that every target shares.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

# SSE arithmetic everywhere, the tests and their models included: x87 would round twice.
# No contraction and no -ffast-math: the order and the rounding of every sum is a promise.
add_library(jex_flags INTERFACE)
target_compile_options(jex_flags INTERFACE
  -march=i686 -msse3 -mtune=generic -mfpmath=sse
  -ffp-contract=off -fno-math-errno -mstackrealign
  $<$<CXX_COMPILER_ID:GNU>:-fno-version-loops-for-strides>
  -falign-loops=32
  -Wall -Wextra -Wno-psabi
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)  # false alarms of g++ 12 in std::string
if(WIN32)
  # No library of the compiler's own is needed where the programs run.
  add_link_options(-static)
else()
  target_link_options(jex_flags INTERFACE -Wl,--as-needed -Wl,-z,noexecstack -Wl,-z,defs)
endif()
target_include_directories(jex_flags INTERFACE
  "${PROJECT_SOURCE_DIR}/include" "${PROJECT_BINARY_DIR}/include")
set(CMAKE_CXX_FLAGS_RELEASE "-O3 -DNDEBUG")

if(JEX_SANITIZE)
  target_compile_options(jex_flags INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(jex_flags INTERFACE -fsanitize=address,undefined LINKER:-z,undefs)
endif()

include("${CMAKE_CURRENT_LIST_DIR}/JexExportHeader.cmake")

# jex_export_lists(<target> <list>...)
#
# One list for each family names its exports, one row each. From the rows this makes
#   include/jex/exports/         the prototypes of each list, with its docstrings
#   include/jex/exports.h        all of them
#   include/jex/export_names.inc one row JEX_ENTRY(name) for each export
#   jex_q7t.map, jex_q7t.def     version script and module definition
function(jex_export_lists target)
  set(out "${PROJECT_BINARY_DIR}/include/jex")
  set(products "${out}/exports.h" "${out}/export_names.inc"
      "${PROJECT_BINARY_DIR}/exports/jex_q7t.map" "${PROJECT_BINARY_DIR}/exports/jex_q7t.def")
  foreach(list ${ARGN})
    jex_header_of(header "${list}")
    list(APPEND products "${out}/exports/${header}")
  endforeach()
  set(stamp "${PROJECT_BINARY_DIR}/exports/made")
  add_custom_command(
    OUTPUT "${stamp}"
    BYPRODUCTS ${products}
    COMMAND "${CMAKE_COMMAND}" "-DCXX=${CMAKE_CXX_COMPILER}" "-DLISTS=${ARGN}"
            "-DGMP=${JEX_GMP_DLL}" "-DOUT=${PROJECT_BINARY_DIR}" "-DSOURCE=${PROJECT_SOURCE_DIR}" "-DSTAMP=${stamp}"
            -P "${PROJECT_SOURCE_DIR}/cmake/MakeExports.cmake"
    DEPENDS ${ARGN} "${PROJECT_SOURCE_DIR}/cmake/MakeExports.cmake"
            "${PROJECT_SOURCE_DIR}/cmake/JexExportHeader.cmake"
            "${PROJECT_SOURCE_DIR}/cmake/exports_rows.inc"
    COMMENT "Making the export table from its lists"
    VERBATIM)
  add_custom_target(${target} DEPENDS "${stamp}")
endfunction()

# jex_install(<target> <exported name> <folder>): a library for users, exported as jex::<name>. Its name
# without a version is the linker's business, and that of the development package.
function(jex_install target name folder)
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
  install(TARGETS ${target} EXPORT jexTargets
    LIBRARY DESTINATION "${folder}" COMPONENT libraries NAMELINK_COMPONENT development
    ARCHIVE DESTINATION "${folder}" COMPONENT development
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT libraries
    INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
endfunction()
