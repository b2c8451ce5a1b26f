#!/usr/bin/env bash
# Configures and builds everything into build/ (the application, the CLI, the tests).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZELKO_BUILD_BENCH=ON >/dev/null
cmake --build build -j "$(nproc)"
