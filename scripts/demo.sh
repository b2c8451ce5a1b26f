#!/usr/bin/env bash
# A walk through zelko-mat-cli on the measured data shipped in tests/data/measured.
set -euo pipefail
cd "$(dirname "$0")/.."
cli=${ZELKO_CLI:-build/cli/zelko-mat-cli}
out=${ZELKO_DEMO_DIR:-$PWD/demo-output}
mkdir -p "$out"
echo "== A new steel material with the screens' steel presets"
"$cli" new -o "$out/steel.zmat" --title "AISI 1045" --elastic steel --thermal steel
echo "== Young's modulus of AISI 1045 (C 0.45, Mn 0.75, Si 0.25, P 0.02, S 0.02) by Tselikov"
"$cli" estimate-modulus --C 0.45 --Mn 0.75 --Si 0.25 --P 0.02 --S 0.02 "$out/steel.zmat" -o "$out/steel-tselikov.zmat"
echo "== The material as JSON"
"$cli" info "$out/steel-tselikov.zmat"
echo
echo "Files left in $out"
