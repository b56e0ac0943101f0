# qzr_hardening: protections of the built images, said explicitly although some are the tool chain's defaults.
add_library(qzr_hardening INTERFACE)
target_compile_options(qzr_hardening INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-fstack-protector-strong>)
target_link_options(qzr_hardening INTERFACE
    -fstack-protector-strong
    LINKER:--nxcompat LINKER:--dynamicbase LINKER:--high-entropy-va LINKER:--no-insert-timestamp)
target_compile_definitions(qzr_hardening INTERFACE
    $<$<OR:$<CONFIG:Debug>,$<BOOL:${QZR_UBSAN}>>:_GLIBCXX_ASSERTIONS>)

# Images name source files relative to the tree, so that builds in different folders are equal. Coverage data
# needs the full names.
if(NOT QZR_COVERAGE)
    target_compile_options(qzr_hardening INTERFACE
        $<$<COMPILE_LANGUAGE:CXX>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>)
endif()

# Trap mode needs no runtime library: the offending instruction ends the process.
if(QZR_UBSAN)
    target_compile_options(qzr_hardening INTERFACE
        $<$<COMPILE_LANGUAGE:CXX>:-fsanitize=undefined -fsanitize-undefined-trap-on-error>)
endif()
if(QZR_COVERAGE)
    target_compile_options(qzr_hardening INTERFACE $<$<COMPILE_LANGUAGE:CXX>:--coverage>)
    target_link_options(qzr_hardening INTERFACE --coverage)
endif()
