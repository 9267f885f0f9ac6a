#!/usr/bin/env bash
# Installs the Debian packages that the task named needs and that are missing. Sourced by ./demo and
# ./test:  prepare build | test | fuzz | solver
# Called as a program it installs the solver for this user:  tools/prepare.sh solver
prepare() {
  if [ "$1" = solver ]; then
    prepare_solver
    return
  fi
  local build=(g++ cmake ninja-build pkg-config libcli11-dev libedit-dev libcairo2-dev zlib1g-dev fonts-dejavu-core
    qt6-base-dev libqt6svg6-dev qt6-translations-l10n)
  local test=(libgtest-dev locales clang-format)
  local fuzz=(clang libclang-rt-dev)
  local deb=(dpkg-dev file)
  local wanted=("${build[@]}")
  [ "$1" = test ] && wanted+=("${test[@]}")
  [ "$1" = fuzz ] && wanted+=("${fuzz[@]}")
  [ "$1" = package ] && wanted+=("${deb[@]}")
  local missing=() package
  for package in "${wanted[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "installing: ${missing[*]}"
  local root=()
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
      echo "these Debian packages are missing and only root can install them: ${missing[*]}" >&2
      return 1
    fi
    root=(sudo)
  fi
  "${root[@]}" apt-get update -qq && DEBIAN_FRONTEND=noninteractive \
    "${root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# The solver, compiled for Node, where vessora looks for it (VESSORA_EPANET_JS names another place).
prepare_solver() {
  local folder=${XDG_DATA_HOME:-$HOME/.local/share}/vessora package=epanet-js@0.9.0
  if ! command -v npm >/dev/null || ! command -v node >/dev/null; then
    echo "Node is missing: install the Debian packages nodejs and npm, or put runepanet on the PATH" >&2
    return 1
  fi
  if [ -f "$folder/node_modules/epanet-js/package.json" ]; then
    echo "the solver is there: $folder/node_modules/epanet-js"
    return 0
  fi
  echo "installing: $package into $folder"
  mkdir -p "$folder" && npm install --prefix "$folder" --no-audit --no-fund --no-save --silent "$package" &&
    [ -f "$folder/node_modules/epanet-js/package.json" ]
}

if [ "${BASH_SOURCE[0]}" = "$0" ]; then
  if [ "$*" != solver ]; then
    echo "tools/prepare.sh solver" >&2
    exit 2
  fi
  prepare_solver
fi
