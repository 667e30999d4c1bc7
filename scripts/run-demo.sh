#!/usr/bin/env bash
# The main job: builds the demo host application (GTK 4) and starts it with its own local
# exchange on 127.0.0.1. With a display, the window opens for a person to use; without one (or
# with --script NAME), the scripted session plays by itself under a virtual display, prints its
# event log and says where its screenshots are.
#
#   scripts/run-demo.sh                 # interactive when there is a display
#   scripts/run-demo.sh --script all    # the scripted session (also: interstitial, rewarded,
#                                       # checkout-from-ad, checkout, recovery)
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
log=$(mktemp)
trap 'rm -f "$log"' EXIT
echo "building vemba-demo (release)..."
if ! { cmake --preset release && cmake --build --preset release -j "${VEMBA_JOBS:-2}" --target vemba-demo; } >"$log" 2>&1; then
  cat "$log"
  echo "the build failed"
  exit 1
fi
demo=build/release/demo/vemba-demo

script=""
if [[ ${1:-} == "--script" ]]; then
  script=${2:?"--script needs a name"}
elif [[ -z ${DISPLAY:-} && -z ${WAYLAND_DISPLAY:-} ]]; then
  script=all
fi

if [[ -z $script ]]; then
  exec "$demo"
fi
shots=$(mktemp -d /tmp/vemba-demo-screens-XXXXXX)
run=("$demo" --script "$script" --screenshots "$shots")
if [[ -z ${DISPLAY:-} && -z ${WAYLAND_DISPLAY:-} ]]; then
  # A virtual display has no accessibility bus: do not look for one (nor warn about it).
  export GTK_A11Y=none NO_AT_BRIDGE=1
  # -noreset: the server stays up between clients (see scripts/test.sh).
  run=(xvfb-run -a -s "-noreset -screen 0 1280x900x24" "${run[@]}")
fi
status=0
"${run[@]}" || status=$?
echo
echo "Screenshots of each step: $shots"
ls "$shots"
exit "$status"
