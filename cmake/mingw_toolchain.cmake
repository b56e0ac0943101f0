# Cross-building 64-bit Windows programs with the distribution's mingw-w64 GCC. The posix flavour is named in
# full: the bare names may point at the win32 flavour, which has no std::thread.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(qzr_triplet x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${qzr_triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${qzr_triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${qzr_triplet}-windres)
set(CMAKE_AR ${qzr_triplet}-gcc-ar-posix CACHE FILEPATH "archiver")
set(CMAKE_RANLIB ${qzr_triplet}-gcc-ranlib-posix CACHE FILEPATH "index of archives")

set(CMAKE_FIND_ROOT_PATH /usr/${qzr_triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Built programs run under Wine, with a prefix and an environment of the build's own.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine_run)
