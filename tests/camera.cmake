# The camera layer, as far as it needs no network.
lanvic_test(tst_gvcpcodec SOURCES tst_gvcpcodec.cpp LIBS platform_gige)
lanvic_test(tst_reversepath SOURCES tst_reversepath.cpp LIBS platform_gige)
