#!/usr/bin/env bash
# Installs the Debian 12 packages the project needs to build, test and run, if any is missing.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config git
  nlohmann-json3-dev liburiparser-dev libcurl4-openssl-dev libglib2.0-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  clang-14 libclang-rt-14-dev clang-format-14 clang-tidy-14
  libgtk-4-dev libwebkitgtk-6.0-dev xvfb xauth libgl1-mesa-dri fonts-dejavu-core
  python3-gi gir1.2-gtk-4.0 gir1.2-webkit-6.0 xdotool
  python3 openssl ca-certificates locales
)

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "ok installed"; then
    missing+=("$package")
  fi
done

sudo_cmd=()
if [[ $(id -u) -ne 0 ]]; then
  sudo_cmd=(sudo)
fi

if ((${#missing[@]} > 0)); then
  echo "Installing missing packages: ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  "${sudo_cmd[@]}" apt-get update -qq
  "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

# The tests run numbers through a comma-decimal locale (German).
if ! locale -a 2>/dev/null | grep -qi '^de_DE\.utf-\?8$'; then
  "${sudo_cmd[@]}" localedef -i de_DE -f UTF-8 de_DE.UTF-8
fi
