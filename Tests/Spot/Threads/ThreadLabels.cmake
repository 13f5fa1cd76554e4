foreach(test IN LISTS spotqueue_tests_TESTS)
  set_tests_properties("${test}" PROPERTIES LABELS threads)
endforeach()
