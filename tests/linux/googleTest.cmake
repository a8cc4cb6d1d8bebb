find_package(GTest REQUIRED)
include(GoogleTest)

set(path_prefix "")

# Each case is a test of its own.
function(qel_run_test name)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120 ENVIRONMENT "${sanitizer_options}")
endfunction()
