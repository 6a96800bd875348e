#!/usr/bin/env bash
# Installs the Debian packages the build and the tests need, when any is missing: as root
# directly, otherwise through sudo. Without either it names the missing packages and the
# command that installs them, and fails.
# `install-deps.sh bench` adds glpk-utils, whose glpsol the benchmark runs beside orva.
set -euo pipefail
packages=(build-essential cmake libglpk-dev nlohmann-json3-dev libgtest-dev libgmock-dev
          libamplsolver-dev clang libclang-rt-dev)
if [ "${1:-}" = bench ]; then packages+=(glpk-utils); fi
missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [ "$status" = "install ok installed" ] || missing+=("$p")
done
[ ${#missing[@]} -gt 0 ] || exit 0

if [ "$(id -u)" -eq 0 ]; then
  as_root() { DEBIAN_FRONTEND=noninteractive "$@"; }
elif command -v sudo >/dev/null; then
  as_root() { sudo DEBIAN_FRONTEND=noninteractive "$@"; }
else
  echo "install-deps: these Debian packages are missing: ${missing[*]}" >&2
  echo "install-deps: this user is not root and there is no sudo; as root, run" >&2
  echo "    apt-get update && apt-get install --no-install-recommends ${missing[*]}" >&2
  exit 1
fi
echo "Installing: ${missing[*]}"
as_root apt-get update -qq
as_root apt-get install -y -qq --no-install-recommends "${missing[@]}"
