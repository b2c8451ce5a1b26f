#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test; then a short run of each fuzzer.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/build.sh
QT_QPA_PLATFORM=offscreen ctest --test-dir build --output-on-failure -j "$(nproc)"
if [ -f fuzz/run.sh ]; then
  bash fuzz/run.sh "${ZELKO_FUZZ_SECONDS:-20}"
fi
