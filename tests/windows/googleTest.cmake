# The distribution has no GoogleTest for this target, but its sources.
find_path(GOOGLETEST_SOURCE src/gtest-all.cc HINTS /usr/src/googletest/googletest NO_CMAKE_FIND_ROOT_PATH REQUIRED)
add_library(gtest_main STATIC "${GOOGLETEST_SOURCE}/src/gtest-all.cc" "${GOOGLETEST_SOURCE}/src/gtest_main.cc")
target_include_directories(gtest_main SYSTEM PUBLIC "${GOOGLETEST_SOURCE}/include" PRIVATE "${GOOGLETEST_SOURCE}")
add_library(GTest::gtest_main ALIAS gtest_main)

set(path_prefix "Z:") # the drive of Wine that has the files of this machine

# A whole program is one test, because a start under Wine takes as long as most programs.
function(qel_run_test name)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 120)
endfunction()
