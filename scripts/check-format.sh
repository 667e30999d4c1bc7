#!/usr/bin/env bash
# Fails when a tracked C++ file is not formatted as .clang-format says.
set -euo pipefail
cd "$(dirname "$0")/.."
formatter=$(command -v clang-format-14 || command -v clang-format)
git ls-files -z -- '*.h' '*.cpp' | xargs -0 -r "$formatter" --dry-run -Werror
echo "clang-format: clean"
