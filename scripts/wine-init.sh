#!/usr/bin/env bash
# Creates the Wine prefix once, quietly, before the Windows test run (the
# first start of Wine otherwise does it inside the first test), then starts
# a wine server that stays up for a minute after its last client: with the
# default of three seconds, a test starting just as the server shuts down
# fails with "recvmsg: Connection reset by peer".
set -eu
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
prefix="${WINEPREFIX:-$HOME/.wine}"
if [ ! -f "$prefix/system.reg" ]; then
    wineboot --init >/dev/null 2>&1 || wine cmd /c exit >/dev/null 2>&1 || true
    wineserver -w 2>/dev/null || true
fi
wineserver -p60 2>/dev/null || true
