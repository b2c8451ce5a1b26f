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
echo "== Swift law fitted to the AISI 1045 tensile test (lucasguesserts/mechanical_testing, MIT)"
"$cli" fit-cold "$out/steel-tselikov.zmat" --curve tests/data/measured/tensile-steel-1045.csv --input load \
  --diameter 10 --gauge-length 75 --law swift --start 220 -o "$out/steel-swift.zmat" --export "$out/steel-swift.z3dlib"
echo "== Voce General law on the AISI 4130 test"
"$cli" fit-cold "$out/steel-tselikov.zmat" --curve tests/data/measured/tensile-steel-4130.csv --input load \
  --diameter 10 --gauge-length 75 --law voce --start 150 -o "$out/steel-4130.zmat"
echo "== Hensel-Spittel and Zener-Hollomon fitted to Gleeble hot compression (Tize Mha et al. 2023, CC BY-SA 4.0)"
"$cli" new -o "$out/hot.zmat" --title "Medium carbon steel" --elastic steel --thermal steel
"$cli" fit-hot "$out/hot.zmat" --curves tests/data/measured/hot-compression-medium-carbon-steel.csv --type 17 \
  -o "$out/hot-17.zmat" --export "$out/hot-17.z3dlib"
"$cli" fit-hot "$out/hot.zmat" --curves tests/data/measured/hot-compression-medium-carbon-steel.csv --type 50 \
  -o "$out/hot-50.zmat" | tail -n 3
echo "== Processing map at the sixth sample strain"
ZELKO_TEMP="$out" "$cli" processing-map "$out/hot-50.zmat" --strain-index 5 --contour-step 5 --png "$out/processing-map.png"
echo "== The material as JSON"
"$cli" info "$out/steel-swift.zmat" | head -40
echo
echo "Files left in $out"
