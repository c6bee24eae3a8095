#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the benchmarks need,
# only those that are missing. Runs apt-get as root (or through sudo).
set -euo pipefail

packages=(
  make cmake ninja-build g++ gcc pkg-config python3 binutils
  googletest libgtest-dev libbenchmark-dev
  clang libclang-rt-14-dev
  g++-mingw-w64-x86-64-posix gcc-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 wine wine64
  libpcre2-dev libre2-dev libicu-dev
  libxxhash-dev
  libhyperscan-dev
  grep perl libc-bin ripgrep debianutils
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
