# The camera layer, as far as it needs no network.
lanvic_test(tst_gige SOURCES tst_gige.cpp LIBS platform_gige)
