#!/usr/bin/env bash
# Installs what the build needs on Debian 12, only when something is missing.
set -euo pipefail

packages=(cmake g++ make ninja-build pkg-config qt6-base-dev libqt6opengl6-dev qt6-charts-dev
          libjsoncpp-dev libgtest-dev libbenchmark-dev gnuplot-nox xvfb xauth fonts-dejavu-core
          clang libclang-rt-14-dev libeigen3-dev)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
