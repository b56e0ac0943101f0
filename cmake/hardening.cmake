# qzr_hardening: protections of the built images, said explicitly although some are the tool chain's defaults.
add_library(qzr_hardening INTERFACE)
target_compile_options(qzr_hardening INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-fstack-protector-strong>)
target_link_options(qzr_hardening INTERFACE
    -fstack-protector-strong
    LINKER:--nxcompat LINKER:--dynamicbase LINKER:--high-entropy-va LINKER:--no-insert-timestamp)
target_compile_definitions(qzr_hardening INTERFACE
    $<$<OR:$<CONFIG:Debug>,$<BOOL:${QZR_UBSAN}>>:_GLIBCXX_ASSERTIONS>)

# Images name source files relative to the tree, so that builds in different folders are equal. Where lines are
# counted, the counters need the full names.
target_compile_options(qzr_hardening INTERFACE
    $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<NOT:$<BOOL:$<TARGET_PROPERTY:QZR_COUNTED>>>>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>)

# Trap mode needs no runtime library: the offending instruction ends the process.
if(QZR_UBSAN)
    target_compile_options(qzr_hardening INTERFACE
        $<$<COMPILE_LANGUAGE:CXX>:-fsanitize=undefined -fsanitize-undefined-trap-on-error>)
endif()

# qzr_count_runs(<target>): compiles the target with counters of executed lines and branches. The library and what
# compiles its headers in has them; everything else is built as in other presets. Nothing is inlined: a branch then
# belongs to one function and is counted under its own line. A counter is added to atomically, so that threads lose
# no count.
function(qzr_count_runs target)
    if(QZR_COVERAGE)
        set_target_properties(${target} PROPERTIES QZR_COUNTED ON)
        target_compile_options(${target} PRIVATE
            $<$<COMPILE_LANGUAGE:CXX>:--coverage -fprofile-update=atomic -fno-inline>)
    endif()
endfunction()
if(QZR_COVERAGE)
    target_link_options(qzr_hardening INTERFACE --coverage) # several programs are linked with the library's objects
endif()
