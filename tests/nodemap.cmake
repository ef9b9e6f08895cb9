lanvic_test(tst_nodemap SOURCES tst_nodemap.cpp LIBS platform_gige platform_ozlog)
