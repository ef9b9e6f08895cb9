# What a network and its cameras can do to the program, over the wire.
lanvic_wire_test(gige-soak SOURCES ${CMAKE_SOURCE_DIR}/bench/soak.cpp support/simulator.cpp LIBS platform_gige
                 Qt6::Network)
target_include_directories(gige-soak PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_compile_definitions(gige-soak PRIVATE SCENES="${CMAKE_SOURCE_DIR}/simulator/scenes")

lanvic_wire_test(wire_faults SOURCES wire_faults.cpp LIBS wire_support gige_simulation lanvic)
target_link_options(wire_faults PRIVATE "LINKER:--wrap=sendmsg,--wrap=recvmsg,--wrap=socket")
