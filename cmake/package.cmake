# What `cmake --install` lays down and `cpack` puts into an archive. Every path in it is relative to where it lies, so
# the installed tree can be moved.
#
# Components: runtime (what programs run with), tool, development (what they are built and debugged with),
# documentation.
include(CMakePackageConfigHelpers)
include(CheckCXXSymbolExists)

set(package_in ${PROJECT_SOURCE_DIR}/cmake/package)
set(package_out ${PROJECT_BINARY_DIR}/package)
set(package_cmake_dir lib/cmake/qzrcore)
set(package_gdb_dir share/qzrcore/gdb)
set(package_licence_dir share/licenses/qzrcore)
set(package_doc_dir share/doc/qzrcore)

install(TARGETS qzrcore EXPORT qzrcoreTargets
        RUNTIME DESTINATION bin COMPONENT runtime
        ARCHIVE DESTINATION lib COMPONENT development)
install(FILES ${QZR_RUNTIME_DLLS} DESTINATION bin COMPONENT runtime)
install(DIRECTORY include/ DESTINATION include/qzrcore COMPONENT development FILES_MATCHING PATTERN "*.h")

# --- for find_package and pkg-config ---------------------------------------------------------------------------

# Before 1.0 a new minor version may ask callers to change.
write_basic_package_version_file(${package_out}/qzrcoreConfigVersion.cmake
    COMPATIBILITY SameMinorVersion
    ARCH_INDEPENDENT) # another architecture is refused with its reason, below
set(package_runtime_dlls)
foreach(path IN LISTS QZR_RUNTIME_DLLS)
    get_filename_component(name ${path} NAME)
    list(APPEND package_runtime_dlls ${name})
endforeach()
configure_package_config_file(${package_in}/qzrcoreConfig.cmake.in ${package_out}/qzrcoreConfig.cmake
    INSTALL_DESTINATION ${package_cmake_dir}
    NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
# The platform has two C libraries; a compiler uses one of them.
check_cxx_symbol_exists(_UCRT cstdlib QZR_HAS_UCRT)
if(QZR_HAS_UCRT)
    set(QZR_UCRT 1)
else()
    set(QZR_UCRT 0)
endif()
configure_file(${package_in}/qzrcoreAbi.cpp.in ${package_out}/qzrcoreAbi.cpp @ONLY)
configure_file(${package_in}/qzrcore.pc.in ${package_out}/qzrcore.pc @ONLY)
install(FILES ${package_out}/qzrcoreConfig.cmake ${package_out}/qzrcoreConfigVersion.cmake
              ${package_in}/qzrcoreAbi.cmake ${package_out}/qzrcoreAbi.cpp
        DESTINATION ${package_cmake_dir} COMPONENT development)
install(FILES cmake/find_runtime_dlls.cmake
        DESTINATION ${package_cmake_dir} RENAME qzrcoreRuntimeDlls.cmake COMPONENT development)
install(EXPORT qzrcoreTargets NAMESPACE qzrcore:: DESTINATION ${package_cmake_dir} COMPONENT development)
install(FILES ${package_out}/qzrcore.pc DESTINATION lib/pkgconfig COMPONENT development)

# --- for gdb ---------------------------------------------------------------------------------------------------

install(FILES tools/gdb/qzrcore_printers.py DESTINATION ${package_gdb_dir} COMPONENT development)
# gdb loads a file of this name with the DLL.
install(FILES tools/gdb/autoload.py DESTINATION bin RENAME qzrcore.dll-gdb.py COMPONENT development)

# --- licences of the runtime DLLs, documentation ---------------------------------------------------------------

# The texts come from the distribution that the DLLs come from: package_licence(<installed name> <candidate>...).
function(package_licence name)
    foreach(path IN LISTS ARGN)
        if(EXISTS ${path})
            install(FILES ${path} DESTINATION ${package_licence_dir} RENAME ${name} COMPONENT runtime)
            return()
        endif()
    endforeach()
    message(WARNING "No licence text found for ${name}: add it before you pass on the runtime DLLs. Looked for: ${ARGN}")
endfunction()
get_filename_component(compiler_dir ${CMAKE_CXX_COMPILER} DIRECTORY)
set(msys2_licences ${compiler_dir}/../share/licenses)
package_licence(gcc-runtime.txt /usr/share/doc/gcc-mingw-w64-x86-64-posix-runtime/copyright
                                ${msys2_licences}/gcc-libs/COPYING.RUNTIME)
package_licence(gpl-3.txt /usr/share/common-licenses/GPL-3 ${msys2_licences}/gcc-libs/COPYING3)
package_licence(mingw-w64.txt /usr/share/doc/mingw-w64-x86-64-dev/copyright
                              ${msys2_licences}/libwinpthread/COPYING
                              ${msys2_licences}/libwinpthread-git/COPYING)
configure_file(${package_in}/runtime-dlls.md.in ${package_out}/runtime-dlls.md @ONLY)
install(FILES ${package_out}/runtime-dlls.md DESTINATION ${package_licence_dir} COMPONENT runtime)

# As in the tree, so that links between them hold.
install(FILES README.md DESTINATION ${package_doc_dir} COMPONENT documentation)
install(DIRECTORY docs examples DESTINATION ${package_doc_dir} COMPONENT documentation
        PATTERN Doxyfile EXCLUDE
        PATTERN CMakeLists.txt EXCLUDE)

# --- archive ---------------------------------------------------------------------------------------------------

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME qzrcore)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "The qzrcore library, its tool, and what programs are built with it")
set(CPACK_PACKAGE_FILE_NAME qzrcore-${PROJECT_VERSION}-win64)
set(CPACK_VERBATIM_VARIABLES TRUE)
include(CPack)
