#!/usr/bin/env bash
# Runs every fuzzer of a fuzz build for a fixed time over a copy of its seed corpus.
# usage: run-fuzzers.sh BUILD_DIR SECONDS
set -euo pipefail
build=${1:?build dir}
seconds=${2:?seconds}
root=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

found=0
for fuzzer in "$build"/fuzz/*_fuzzer; do
  [[ -x $fuzzer ]] || continue
  found=1
  name=$(basename "$fuzzer")
  mkdir -p "$work/$name"
  if [[ -d $root/fuzz/corpus/$name ]]; then
    cp -r "$root/fuzz/corpus/$name/." "$work/$name/"
  fi
  echo "-- $name"
  status=0
  # Every seed once and whole: some nest far deeper than any limit, and at their size they would
  # slow the fuzzing below fourfold, so the fuzzing that follows reads at most max_len bytes.
  if compgen -G "$work/$name/*" >/dev/null; then
    "$fuzzer" -timeout=10 -rss_limit_mb=2048 "$work/$name"/* >"$work/$name.log" 2>&1 || status=$?
  fi
  if [[ $status -eq 0 ]]; then
    "$fuzzer" -max_total_time="$seconds" -max_len=8192 -timeout=10 -rss_limit_mb=2048 \
      -print_final_stats=1 -artifact_prefix="$work/" "$work/$name" >>"$work/$name.log" 2>&1 ||
      status=$?
  fi
  grep -E '^(stat::number_of_executed_units|Done )' "$work/$name.log" || true
  if [[ $status -ne 0 ]]; then
    tail -n 60 "$work/$name.log"
    echo "$name failed (exit $status)"
    exit 1
  fi
done
[[ $found -eq 1 ]] || { echo "no fuzzers found in $build/fuzz"; exit 1; }
