#!/usr/bin/env bash
# Start-to-first-paint of the application, five runs (needs a display: run under xvfb-run -a).
set -euo pipefail
program="${1:-build/bench/appstartup}"
for run in 1 2 3 4 5; do "$program"; done
