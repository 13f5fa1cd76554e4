foreach(test IN LISTS spotrun_tests_TESTS)
  set_tests_properties("${test}" PROPERTIES LABELS threads)
endforeach()
