#!/usr/bin/env bash
# Creates the Wine prefix once, quietly, before the Windows test run (the
# first start of Wine otherwise does it inside the first test).
set -eu
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
prefix="${WINEPREFIX:-$HOME/.wine}"
[ -f "$prefix/system.reg" ] && exit 0
wineboot --init >/dev/null 2>&1 || wine cmd /c exit >/dev/null 2>&1 || true
wineserver -w 2>/dev/null || true
