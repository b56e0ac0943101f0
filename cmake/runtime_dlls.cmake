# Stages the compiler's runtime DLLs in the folder of the built programs, so that the folder runs as it is and can
# be copied to another machine. All modules share these DLLs: exceptions cross modules only that way.
include(${CMAKE_CURRENT_LIST_DIR}/find_runtime_dlls.cmake)

function(qzr_stage_runtime_dlls folder)
    qzrcore_find_runtime_dlls(found)
    if(CMAKE_CROSSCOMPILING AND NOT found MATCHES "libstdc.*libgcc.*winpthread.*libssp")
        message(FATAL_ERROR "Runtime DLLs are missing, found were only: ${found}. Is the posix flavour of the compiler "
                            "installed?")
    endif()
    set(staged)
    foreach(path IN LISTS found)
        get_filename_component(name ${path} NAME)
        configure_file(${path} ${folder}/${name} COPYONLY)
        list(APPEND staged ${folder}/${name})
    endforeach()
    set(QZR_RUNTIME_DLLS ${staged} PARENT_SCOPE)
endfunction()
