# qzr_gtest: GoogleTest with mocks, compiled from the distribution's source package, or the installed one where the
# platform brings it ready-made (MSYS2).
if(EXISTS /usr/src/googletest/googletest/src/gtest-all.cc)
    add_library(qzr_gtest STATIC
        /usr/src/googletest/googletest/src/gtest-all.cc
        /usr/src/googletest/googlemock/src/gmock-all.cc)
    target_include_directories(qzr_gtest
        SYSTEM PUBLIC /usr/src/googletest/googletest/include /usr/src/googletest/googlemock/include
        PRIVATE /usr/src/googletest/googletest /usr/src/googletest/googlemock)
    target_compile_options(qzr_gtest PRIVATE -w)
else()
    find_package(GTest REQUIRED)
    add_library(qzr_gtest INTERFACE)
    target_link_libraries(qzr_gtest INTERFACE GTest::gtest GTest::gmock)
endif()
