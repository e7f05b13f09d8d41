# The guards of the DLL read the file themselves.

add_library(pe_file STATIC pe_file.cpp)
target_include_directories(pe_file PUBLIC "${PROJECT_SOURCE_DIR}/tests")
target_link_libraries(pe_file PRIVATE jex_flags)

add_library(bad_dll SHARED bad_dll.cpp bad_dll.def)
jex_out_of_reach(bad_dll bad)
target_link_libraries(bad_dll PRIVATE jex_core user32)
target_link_options(bad_dll PRIVATE LINKER:--disable-dynamicbase,--disable-nxcompat)

# The build's objdump does not run where the tests do.
set(disassembly "${CMAKE_CURRENT_BINARY_DIR}/jex_q7t.asm")
add_custom_command(OUTPUT "${disassembly}"
  COMMAND "${CMAKE_OBJDUMP}" -d -M intel --no-show-raw-insn "$<TARGET_FILE:jex_q7t>" > "${disassembly}"
  DEPENDS jex_q7t
  VERBATIM)

jex_test(pe_rules_test LABEL guard
  SOURCES pe_rules_test.cpp pe_rules.cpp instruction_rule.cpp "${disassembly}"
  LIBRARIES pe_file gmock)
add_dependencies(pe_rules_test bad_dll)
target_include_directories(pe_rules_test PRIVATE
  "${PROJECT_SOURCE_DIR}/module" "${PROJECT_BINARY_DIR}/exports")
target_compile_definitions(pe_rules_test PRIVATE
  MODULE_LIBRARY="$<TARGET_FILE:jex_q7t>" BAD_LIBRARY="$<TARGET_FILE:bad_dll>"
  MODULE_DISASSEMBLY="${disassembly}")
