lanvic_test(tst_simulator SOURCES tst_simulator.cpp LIBS gige_simulation platform_gige)
target_compile_definitions(tst_simulator PRIVATE SCENES="${CMAKE_SOURCE_DIR}/simulator/scenes")
lanvic_wire_test(tst_simulatorprocess SOURCES tst_simulatorprocess.cpp LIBS Qt6::Network)
