#!/usr/bin/env bash
# The main job until the demo application exists: starts the local ad exchange on loopback,
# loads one interstitial and one rewarded ad against it with the real Linux backend, and prints
# every host callback as one JSON line.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
state=$(mktemp -d)
exchange_pid=""
cleanup() {
  # Stops only the exchange this script started, by its PID.
  if [[ -n $exchange_pid ]]; then kill "$exchange_pid" 2>/dev/null || true; wait "$exchange_pid" 2>/dev/null || true; fi
  rm -rf "$state"
}
trap cleanup EXIT
echo "building vemba-inspect (release)..."
if ! { cmake --preset release && cmake --build --preset release -j "${VEMBA_JOBS:-2}" --target vemba-inspect; } >"$state/build.log" 2>&1; then
  cat "$state/build.log"
  echo "the build failed"
  exit 1
fi

python3 tools/exchange/exchange.py --port 18443 --state-dir "$state" \
  --ready-file "$state/ready" --lifetime 120 --parent-pid $$ >"$state/exchange.out" 2>&1 &
exchange_pid=$!
for _ in $(seq 1 100); do
  [[ -s $state/ready ]] && break
  sleep 0.1
done
[[ -s $state/ready ]] || { cat "$state/exchange.out"; echo "the exchange did not start"; exit 1; }

export SSL_CERT_FILE=$state/ca.pem
inspect=build/release/tools/inspect/vemba-inspect
echo "# interstitial"
"$inspect" load --ad-unit demo-interstitial --format interstitial --api-key demo-key --timeout 20
echo "# rewarded"
"$inspect" load --ad-unit demo-rewarded --format rewarded --bid-floor 0.5 --api-key demo-key --timeout 20
echo "# a unit the exchange has no bid for"
"$inspect" load --ad-unit exchange:nobid --api-key demo-key --timeout 20
