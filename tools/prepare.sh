#!/usr/bin/env bash
# Installs the Debian packages that the task named needs and that are missing. Sourced by ./demo and
# ./test:  prepare build | test | fuzz
prepare() {
  local build=(g++ cmake ninja-build pkg-config libcli11-dev libedit-dev libcairo2-dev zlib1g-dev fonts-dejavu-core)
  local test=(libgtest-dev locales clang-format)
  local fuzz=(clang libclang-rt-dev)
  local wanted=("${build[@]}")
  [ "$1" = test ] && wanted+=("${test[@]}")
  [ "$1" = fuzz ] && wanted+=("${fuzz[@]}")
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
