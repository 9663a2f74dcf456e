# A Wine prefix for tests, without a display, made on first use in about eight seconds.
#
#     . scripts/lib/wine-env.sh PREFIX           # prepares it and points wine at it
#     . scripts/lib/wine-env.sh --stop PREFIX    # ends its processes and no others
#
# An empty PREFIX means build/wine-prefix in the repository; never the caller's own prefix, since
# tests register the component in it.
# Prefixes that nobody stops end their processes half a minute after the last program.

_wine_env_action=start
if [ "${1:-}" = --stop ]; then
    _wine_env_action=stop
    shift
fi
_wine_env_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
export WINEPREFIX=${1:-$_wine_env_root/build/wine-prefix}
export WINEARCH=win64
export WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES='mscoree,mshtml='  # or it offers to install them
unset DISPLAY

# Debian keeps the server out of the path when only the 64-bit Wine is installed.
_wine_env_server=$(command -v wineserver || echo /usr/lib/wine/wineserver64)

# A server or a service that inherits a test runner's pipe keeps the runner waiting, so everything
# that stays is started here, with its input and output cut off.
_wine_env_quietly() {
    "$@" </dev/null >/dev/null 2>&1
}

_wine_env_create() {
    mkdir -p "$WINEPREFIX"
    _wine_env_quietly wineboot --init || return
    _wine_env_quietly wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f || return
    _wine_env_quietly wine reg add 'HKCU\Software\Wine\WineDbg' \
        /v ShowCrashDialog /t REG_DWORD /d 0 /f || return
    # The debugger that Wine starts for a program that crashes may end it with the exit status 0.
    _wine_env_quietly wine reg add \
        'HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug' \
        /v Debugger /d 'cmd /c exit %ld %ld' /f || return
    "$_wine_env_server" -w || return
    touch "$WINEPREFIX/.ready"
}

_wine_env_start() {
    # One at a time: parallel tests may all come here first.
    mkdir -p "$(dirname "$WINEPREFIX")"
    exec 9>"$WINEPREFIX.lock"
    flock 9
    if [ ! -e "$WINEPREFIX/.ready" ] && ! _wine_env_create 9>&-; then
        echo "wine-env: can't make the Wine prefix $WINEPREFIX" >&2
        exec 9>&-
        return 1
    fi
    _wine_env_quietly "$_wine_env_server" -p30 9>&- || true  # fails when it runs already
    _wine_env_quietly wine cmd /c exit 9>&- || true
    exec 9>&-
    export QUORVANE_WINE_READY=$WINEPREFIX
}

if [ $_wine_env_action = stop ]; then
    _wine_env_quietly "$_wine_env_server" -k || true
    unset QUORVANE_WINE_READY
elif [ "${QUORVANE_WINE_READY:-}" != "$WINEPREFIX" ]; then
    _wine_env_start
fi
