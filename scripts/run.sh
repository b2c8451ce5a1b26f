#!/usr/bin/env bash
# Installs what is missing, builds and starts ZELKO MAT. Without a display it says
# so and runs a demonstration of zelko-mat-cli on the sample data instead.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/build.sh
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  exec build/app/zelko-mat "$@"
fi
echo "No display found (DISPLAY is not set): running the command-line demonstration instead."
exec bash scripts/demo.sh
