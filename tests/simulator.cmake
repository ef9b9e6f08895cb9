lanvic_wire_test(tst_simulator SOURCES tst_simulator.cpp support/simulator.cpp LIBS Qt6::Network)
target_include_directories(tst_simulator PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_compile_definitions(tst_simulator PRIVATE SCENES="${CMAKE_SOURCE_DIR}/simulator/scenes")
