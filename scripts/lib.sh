# Functions shared by the scripts of this folder; source it, do not run it.
#
# A caller has `set -euo pipefail` on. Everything made here goes below build/ in the repository.

QZR_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
QZR_JOBS=${QZR_JOBS:-$(nproc)}
QZR_DISPLAY_PREFIX=$QZR_ROOT/build/wineprefix-display # of scripts/with_display

say() { printf '%s\n' "$*"; }
die() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# answer_help "$@": with --help, shows the comment at the head of the script and ends it.
answer_help() {
    case ${1:-} in
    -h | --help)
        sed -n '2,/^[^#]/{/^#/s/^# \{0,1\}//p}' "$0"
        exit 0
        ;;
    esac
}

# bootstrap GROUP...: see scripts/bootstrap.
bootstrap() { "$QZR_ROOT/scripts/bootstrap" "$@"; }

# configure_and_build PRESET [TARGET...]; configure_options go to CMake as they are.
configure_options=()
configure_and_build() {
    local preset=$1
    shift
    (
        cd "$QZR_ROOT"
        cmake --preset "$preset" -DQZR_TESTS=ON "${configure_options[@]}" >"$(log_file "configure-$preset")" 2>&1 ||
            { cat "$(log_file "configure-$preset")"; exit 1; }
        cmake --build --preset "$preset" -j "$QZR_JOBS" ${1:+--target "$@"}
    ) || die "building preset $preset failed"
}

# log_file NAME: a path below build/ for the output of a step.
log_file() {
    mkdir -p "$QZR_ROOT/build/log"
    printf '%s\n' "$QZR_ROOT/build/log/$1.log"
}

# --- Wine -----------------------------------------------------------------------------------------------------

# The distribution keeps the 64-bit loader and its server outside PATH.
find_wine() {
    local dir
    for dir in /usr/lib/wine /opt/wine-stable/bin; do
        if [ -x "$dir/wine64" ]; then
            QZR_WINE=$dir/wine64
            QZR_WINESERVER=$dir/wineserver64
            [ -x "$QZR_WINESERVER" ] || QZR_WINESERVER=$dir/wineserver
            return
        fi
    done
    QZR_WINE=$(command -v wine64 || command -v wine) || die "Wine is missing: run scripts/bootstrap test"
    QZR_WINESERVER=$(command -v wineserver) || die "wineserver is missing: run scripts/bootstrap test"
}

# The environment of every program run here; the locale decides the ANSI code page.
wine_environment() {
    find_wine
    export WINEPREFIX=${QZR_WINEPREFIX:-$QZR_ROOT/build/wineprefix}
    export WINESERVER=$QZR_WINESERVER
    export WINEARCH=win64
    export WINEDEBUG=${WINEDEBUG:--all}
    export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-'mscoree,mshtml=;winedbg.exe=d'}
    export LC_ALL=C
    unset LANG LANGUAGE
}

server_runs() { [ -d "$WINEPREFIX" ] && "$QZR_WINESERVER" -k0 >/dev/null 2>&1; }

# A server that was started without a display never shows a window later, so the display comes first. It ends
# with the server.
start_display() {
    rm -f "$WINEPREFIX/display"
    if [ -n "${DISPLAY:-}" ]; then
        printf '%s\n' "$DISPLAY" >"$WINEPREFIX/display"
        return
    fi
    command -v Xvfb >/dev/null || return 0
    local fifo=$WINEPREFIX/display.fifo number pid
    rm -f "$fifo" && mkfifo "$fifo"
    setsid Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -noreset \
        3<>"$fifo" 9>&- </dev/null >/dev/null 2>&1 &
    pid=$!
    read -r -t 20 number <>"$fifo" || { kill "$pid"; die "Xvfb does not start"; }
    rm -f "$fifo"
    printf ':%s\n' "$number" >"$WINEPREFIX/display"
    printf '%s\n' "$pid" >"$WINEPREFIX/display.pid"
}

# Starts the prefix's server, which ends five minutes after its last program, and the services behind it. Their
# output goes nowhere: otherwise they would hold the pipes of the first program open.
start_server() {
    start_display
    use_display
    "$QZR_WINESERVER" -p300 9>&- </dev/null >/dev/null 2>&1
    timeout 60 "$QZR_WINE" wineboot 9>&- </dev/null >/dev/null 2>&1 || die "Wine does not start"
    if [ -f "$WINEPREFIX/display.pid" ]; then
        local pid
        pid=$(cat "$WINEPREFIX/display.pid")
        rm -f "$WINEPREFIX/display.pid"
        setsid bash -c '"$1" -w; kill "$2"' end-display "$QZR_WINESERVER" "$pid" \
            9>&- </dev/null >/dev/null 2>&1 &
    fi
}

use_display() {
    unset DISPLAY
    if [ -s "$WINEPREFIX/display" ]; then
        DISPLAY=$(cat "$WINEPREFIX/display")
        export DISPLAY
    fi
}

set_registry() { "$QZR_WINE" reg add "$1" /v "$2" /t "$3" /d "$4" /f 9>&- </dev/null >/dev/null 2>&1; }

# A new prefix. A crash asks nobody: with Auto 0 it would open a message box, with 1 it starts the
# debugger, which the environment above switches off. Windows wait for no window manager.
make_prefix() {
    local outer_display=${DISPLAY:-}
    mkdir -p "$WINEPREFIX"
    start_server
    timeout 120 "$QZR_WINE" wineboot -i 9>&- </dev/null >"$(log_file wineprefix)" 2>&1 ||
        die "the Wine prefix cannot be made, see $(log_file wineprefix)"
    set_registry 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug' Auto REG_SZ 1
    set_registry 'HKCU\Software\Wine\WineDbg' ShowCrashDialog REG_DWORD 0
    set_registry 'HKCU\Software\Wine\X11 Driver' Managed REG_SZ N
    # The services that were started while the prefix was made may not answer: every first window would wait ten
    # seconds for them.
    "$QZR_WINESERVER" -k || true
    "$QZR_WINESERVER" -w || true
    DISPLAY=$outer_display # the display that was started here ends with its server
    start_server
    touch "$WINEPREFIX/.complete"
}

# Makes the prefix once per build tree and starts its server when none runs; parallel callers wait for the first.
ensure_wine_prefix() {
    wine_environment
    if [ -f "$WINEPREFIX/.complete" ] && server_runs; then
        use_display
        return
    fi
    mkdir -p "$(dirname "$WINEPREFIX")"
    {
        flock 9
        if [ ! -f "$WINEPREFIX/.complete" ]; then
            make_prefix
        elif ! server_runs; then
            start_server
        fi
    } 9>"$WINEPREFIX.lock"
    use_display
}

# Ends the programs, the server and the display of the build's own prefix.
stop_wine() {
    wine_environment
    if server_runs; then
        "$QZR_WINESERVER" -k || true
        "$QZR_WINESERVER" -w || true
    fi
}

# wine_run PROGRAM [ARGUMENT...]
wine_run() { "$QZR_ROOT/scripts/wine_run" "$@"; }
