# qzr_precompile(<target> <header>...): with QZR_PCH, the headers that many files of a target begin with are compiled
# once for all of them. A compiler cache gains more than this and loses by it: without QZR_PCH every file is compiled as
# it stands, which also tells of a missing include.
function(qzr_precompile target)
    if(QZR_PCH)
        target_precompile_headers(${target} PRIVATE ${ARGN})
    endif()
endfunction()
