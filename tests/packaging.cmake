# The translation, against the sources as they are and in the real program on the scripted SDK.
lanvic_test(tst_translation SOURCES tst_translation.cpp support/onlyinlab.cpp LIBS gui_support lanvic LAUNCHER
            ${CMAKE_SOURCE_DIR}/scripts/lab)
set_tests_properties(tst_translation PROPERTIES LABELS gui SKIP_RETURN_CODE 77)
target_compile_definitions(tst_translation PRIVATE SOURCES="${CMAKE_SOURCE_DIR}" LUPDATE="$<TARGET_FILE:Qt6::lupdate>")
