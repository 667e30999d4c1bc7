#!/usr/bin/env bash
# Prints the share of test code: non-blank lines of the C/C++ files that git tracks under tests/
# and fuzz/, against all other tracked C/C++ lines. Fails above the limit (35 %); the aim is at
# most a third. --folders also prints the lines of each folder (two levels deep).
set -euo pipefail
cd "$(dirname "$0")/.."

limit_percent=35

# grep -c prints "file:count" per file, and does so whichever way xargs splits the list.
git ls-files -z -- '*.cpp' '*.h' '*.hpp' '*.cc' '*.c' |
  xargs -0 grep -c -v -H '^[[:space:]]*$' |
  awk -F: -v limit="$limit_percent" -v folders="${1:-}" '
    {
      n = split($1, part, "/")
      if (part[1] == "tests" || part[1] == "fuzz") test += $2; else other += $2
      lines[n > 2 ? part[1] "/" part[2] : part[1]] += $2
    }
    END {
      if (folders == "--folders") {
        for (f in lines) printf "%7d  %s\n", lines[f], f | "sort -k2"
        close("sort -k2")
      }
      share = 100 * test / other
      printf "test code: %d non-blank lines in tests/ and fuzz/, %d elsewhere: %.1f %% (limit %d %%)\n",
             test, other, share, limit
      exit (share > limit)
    }'
