#!/usr/bin/env bash
# Runs clang-tidy (the checks in .clang-tidy) on the library's sources, src/ and platform/, with the
# compile commands of a configured build (default build/ci). Any finding fails. A second argument
# narrows the files (a regular expression over paths below the repository).
set -euo pipefail
cd "$(dirname "$0")/.."

build=${1:-build/ci}
files=${2:-(src|platform)/.*\.cpp}
jobs=${VEMBA_JOBS:-2}

test -f "$build/compile_commands.json" || { echo "no $build/compile_commands.json: configure first" >&2; exit 1; }
# Findings make the runner exit non-zero; they are judged from its output instead, colours removed.
run-clang-tidy-14 -clang-tidy-binary clang-tidy-14 -p "$build" -j "$jobs" -quiet \
  "$(pwd)/$files\$" 2>&1 | sed 's/\x1b\[[0-9;]*m//g' >"$build/tidy.log" || true
if grep -E "(warning|error): " "$build/tidy.log"; then
  echo "clang-tidy: findings above (whole output: $build/tidy.log)" >&2
  exit 1
fi
checked=$(grep -c "^clang-tidy-14 " "$build/tidy.log" || true)
if ((checked == 0)); then
  echo "clang-tidy: no file checked (whole output: $build/tidy.log)" >&2
  exit 1
fi
echo "clang-tidy: $checked files, no findings"
