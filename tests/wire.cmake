# Tests of the real camera layer on simulated cameras: as a library, and behind the real window. Each runs in a network
# namespace of its own, so they may run side by side.
add_library(wire_support OBJECT support/simulator.cpp support/window.cpp support/wire.cpp)
target_include_directories(wire_support PUBLIC ${CMAKE_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
target_compile_definitions(wire_support PRIVATE SCENES="${CMAKE_SOURCE_DIR}/simulator/scenes")
target_link_libraries(wire_support PUBLIC lanvic platform_gige test_support gige_simulation Qt6::Test)

foreach(name IN ITEMS discovery window saving)
    lanvic_wire_test(wire_${name} SOURCES wire_${name}.cpp LIBS wire_support lanvic)
    if(LANVIC_PRECOMPILE)
        target_precompile_headers(wire_${name} REUSE_FROM gui_support)
    endif()
endforeach()
