lanvic_test(tst_nodemap SOURCES tst_nodemap.cpp LIBS platform_gige platform_ozlog)

# One more archive, beside those that the fuzzer starts from: small in itself and too large outside. The test looks for
# its data below its own directory as well.
set(bomb ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/fuzz/seeds/fuzz_zip/bomb)
if(NOT EXISTS ${bomb}.zip)
    string(REPEAT " " 16777217 blanks)
    file(WRITE ${bomb}.xml "${blanks}")
    file(ARCHIVE_CREATE OUTPUT ${bomb}.zip PATHS ${bomb}.xml FORMAT zip)
    file(REMOVE ${bomb}.xml)
endif()
