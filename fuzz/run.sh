#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each for SECONDS (default 30).
#   fuzz/run.sh [SECONDS] [TARGET...]
# Exits non-zero when a target finds a crash, a leak, a slow input or runs out of
# memory; the input is left in $BUILD/artifacts. Growing corpora stay in
# $BUILD/corpus-<target>; the hand-made seeds in fuzz/corpus/<target> are only read.
# Environment: BUILD (default <repo>/build-fuzz), CXX (default clang++).
set -euo pipefail

seconds="${1:-30}"
shift || true
repo="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${BUILD:-$repo/build-fuzz}"
generator=()
command -v ninja >/dev/null && generator=(-G Ninja)

CXX="${CXX:-clang++}" cmake -S "$repo" -B "$build" "${generator[@]}" -DZELKO_BUILD_FUZZ=ON \
    -DZELKO_BUILD_GUI=OFF -DZELKO_BUILD_TESTS=OFF -DZELKO_BUILD_BENCH=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null

targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    # Every target fuzz/CMakeLists.txt defines (cli_json_fuzz only once its sources exist).
    mapfile -t targets < <(cmake --build "$build" --target help | grep -oE '\b[a-z0-9_]+_fuzz\b' | sort -u)
    [ ${#targets[@]} -gt 0 ] || { echo "no fuzz targets in $build" >&2; exit 1; }
fi
# Only the fuzzers: the rest of the tree is not needed here.
cmake --build "$build" --parallel --target "${targets[@]}"

mkdir -p "$build/artifacts"
failed=()
for target in "${targets[@]}"; do
    name="${target%_fuzz}"
    corpus="$build/corpus-$name"
    mkdir -p "$corpus"
    seeds=()
    [ -d "$repo/fuzz/corpus/$name" ] && seeds=("$repo/fuzz/corpus/$name")
    echo "== $target: ${seconds}s"
    if ! "$build/fuzz/$target" "$corpus" "${seeds[@]}" -max_total_time="$seconds" -max_len=65536 \
        -rss_limit_mb=2048 -malloc_limit_mb=2048 -timeout=10 -print_final_stats=1 \
        -artifact_prefix="$build/artifacts/$name-" 2>"$build/$name.log"; then
        failed+=("$target")
        tail -n 60 "$build/$name.log"
    else
        grep -E '^#[0-9]+.*DONE|^stat::(number_of_executed_units|average_exec_per_sec|peak_rss_mb)' \
            "$build/$name.log" || true
    fi
done

if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzzing found problems in: ${failed[*]} (inputs in $build/artifacts)" >&2
    exit 1
fi
echo "fuzzing clean: ${targets[*]}"
