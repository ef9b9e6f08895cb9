# Tests of the real widgets against a scripted SDK. They link no platform_gige and so cannot send a packet; they run in
# the lab because they make themselves adapters with known addresses.
add_library(gui_support OBJECT support/scriptedsdk.cpp support/gui.h support/window.cpp)
target_include_directories(gui_support PUBLIC ${CMAKE_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(gui_support PUBLIC lanvic test_support gige_simulation Qt6::Test)

if(LANVIC_PRECOMPILE)
    target_precompile_headers(gui_support PRIVATE <functional> <map> <QApplication> <QMessageBox> <QSettings> <QTest>
                              <QTreeWidget>)
endif()

foreach(name IN ITEMS window startup tree editor saving connection closing accessibility)
    lanvic_test(tst_${name} SOURCES tst_${name}.cpp $<TARGET_OBJECTS:only_in_lab> LIBS gui_support lanvic LAUNCHER
                ${CMAKE_SOURCE_DIR}/scripts/lab)
    set_tests_properties(tst_${name} PROPERTIES LABELS gui SKIP_RETURN_CODE 77)
    if(LANVIC_PRECOMPILE)
        target_precompile_headers(tst_${name} REUSE_FROM gui_support)
    endif()
endforeach()

# The window asks for the help file through a name of ours, so that it can be there or missing as the test wants.
target_link_options(tst_window PRIVATE "LINKER:--wrap=_Z15GetHelpFilePathv")

# The whole program, and its translation against the sources as they are.
target_compile_definitions(tst_startup PRIVATE SOURCES="${CMAKE_SOURCE_DIR}" LUPDATE="$<TARGET_FILE:Qt6::lupdate>")
