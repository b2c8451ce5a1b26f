#!/usr/bin/env bash
# Installs what the build needs on Debian 12, only when something is missing.
set -euo pipefail

packages=(cmake g++ make ninja-build pkg-config qt6-base-dev libqt6opengl6-dev qt6-charts-dev
          libjsoncpp-dev libgtest-dev libbenchmark-dev gnuplot-nox xvfb xauth fonts-dejavu-core
          fonts-noto-cjk libgif-dev clang libclang-rt-14-dev libeigen3-dev locales)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

# The number tests run under a comma-decimal locale to prove the files never depend on it.
locale -a | grep -ix 'de_DE.utf-\?8' >/dev/null || $sudo localedef -i de_DE -f UTF-8 de_DE.UTF-8
