# qzr_warnings: what everything written here is compiled with; third-party sources are not linked to it.
#
# Left out on purpose: -Wnon-virtual-dtor (interfaces without a destructor slot are part of the binary contract;
# -Wdelete-non-virtual-dtor, within -Wall, catches the real mistake), -Wformat-nonliteral (formatting functions
# pass on the caller's format), -Wnull-dereference (misfires once inlining is on) and -Wconversion (narrow
# integer fields are part of stored records; the casts would hide more than they show).
add_library(qzr_warnings INTERFACE)
target_compile_options(qzr_warnings INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:
        -Wall -Wextra -Wpedantic -Werror
        -Wshadow -Woverloaded-virtual -Wcast-qual -Wold-style-cast
        -Wformat=2 -Wno-format-nonliteral
        -Wimplicit-fallthrough -Wduplicated-cond -Wlogical-op -Wextra-semi -Wvla -Wundef>)
