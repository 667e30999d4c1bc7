#!/usr/bin/env bash
# The package as a host meets it: a shared Release build installed into a prefix with a space in
# its name, every public header compiled alone against it, the example host built with
# find_package(Vemba) and with pkg-config only and run against the local exchange, the example
# host's unit tests built against Vemba::Testing and run, then the Debian package made,
# installed with apt-get and removed again (when this user may).
#
#   scripts/check-package.sh [BUILD_DIR]      # default build/package
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
build=${1:-build/package}
jobs=${VEMBA_JOBS:-2}
work=$(mktemp -d /tmp/vemba-package-XXXXXX)
prefix="$work/vemba prefix"
exchange_pid=""
cleanup() {
  if [[ -n $exchange_pid ]]; then kill "$exchange_pid" 2>/dev/null || true; fi
  rm -rf "$work"
}
trap cleanup EXIT
step() { printf -- '-- %s\n' "$*"; }

step "build (shared, Release) in $build"
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=ON \
  -DVEMBA_BUILD_TESTS=OFF -DVEMBA_WERROR=OFF -DCMAKE_INSTALL_PREFIX=/usr >/dev/null
cmake --build "$build" -j "$jobs"

step "install into '$prefix'"
cmake --install "$build" --prefix "$prefix" >/dev/null
libdir=$(find "$prefix" -name 'libvemba.so.1' -printf '%h\n')
export PKG_CONFIG_PATH="$libdir/pkgconfig"
test "$(pkg-config --modversion vemba)" = "$(grep -Po 'project\(vemba VERSION \K[0-9.]+' CMakeLists.txt)"
readelf -d "$libdir/libvemba.so" | grep -q 'SONAME.*\[libvemba\.so\.1\]'

step "every public header compiles alone"
while IFS= read -r header; do
  relative=${header#"$prefix/include/"}
  package=vemba
  if [[ $relative == vemba/testing/* ]]; then package=vemba-testing; fi
  # pkg-config escapes the space in the prefix as a shell would read it.
  eval "flags=($(pkg-config --cflags "$package"))"
  if ! echo "#include <$relative>" |
    c++ -std=c++20 -fsyntax-only -Wall -Wextra -Werror "${flags[@]}" -x c++ -; then
    echo "$relative does not compile alone against the installed tree"
    exit 1
  fi
done < <(find "$prefix/include/vemba" -name '*.h' | sort)

step "a host linking both packages is refused"
eval "flags=($(pkg-config --cflags vemba vemba-testing))"
if echo '#include <vemba/Vemba.h>' |
  c++ -std=c++20 -fsyntax-only "${flags[@]}" -x c++ - 2>"$work/both.txt"; then
  echo "vemba and vemba-testing together compiled"
  exit 1
fi
grep -q 'link either vemba' "$work/both.txt"

step "the example host, with find_package(Vemba) and with pkg-config"
cmake -S examples/linux-host -B "$work/host-cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/host-cmake" >/dev/null
make -s -C examples/linux-host OUT="$work/host-pkg-config" >/dev/null

step "both run against the local exchange"
python3 tools/exchange/exchange.py --port 18443 --state-dir "$work/exchange" \
  --ready-file "$work/exchange/ready" --lifetime 600 --idle-timeout 120 >"$work/exchange.log" 2>&1 &
exchange_pid=$!
for _ in $(seq 100); do [[ -f $work/exchange/ready ]] && break; sleep 0.1; done
unit='exchange:bid?page=interstitial.html%3Fauto%3Dclick,close%26autoDelay%3D800'
for host in "$work/host-cmake/linux-host" "$work/host-pkg-config"; do
  SSL_CERT_FILE="$work/exchange/ca.pem" LD_LIBRARY_PATH="$libdir" GTK_A11Y=none NO_AT_BRIDGE=1 \
    timeout 120 xvfb-run -a -s "-noreset -screen 0 1280x900x24" "$host" "$unit" >"$work/run.txt" 2>&1 || true
  for expected in "interstitial shown" "granted 1 reward" "rewarded dismissed" "checkout completed"; do
    if ! grep -q "$expected" "$work/run.txt"; then
      echo "$host: no '$expected' in its output:"
      cat "$work/run.txt"
      exit 1
    fi
  done
done

step "a host's own unit tests against the installed Vemba::Testing"
cmake -S examples/host-tests -B "$work/host-tests" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/host-tests" >/dev/null
"$work/host-tests/host-tests" --gtest_brief=1

step "the Debian package"
(cd "$build" && cpack -G DEB >/dev/null)
deb=$(ls "$root/$build"/vemba_*.deb)
dpkg-deb -f "$deb" Depends | tr ',' '\n' | sed 's/^ *//' | sort
for needed in libgtk-4-1 libwebkitgtk-6.0-4 libcurl4 liburiparser1; do
  dpkg-deb -f "$deb" Depends | grep -q "$needed" || { echo "Depends lacks $needed"; exit 1; }
done
sudo_cmd=()
if [[ $(id -u) -ne 0 ]]; then
  if sudo -n true 2>/dev/null; then sudo_cmd=(sudo -n); else sudo_cmd=(false); fi
fi
if [[ ${sudo_cmd[0]:-} == false ]]; then
  echo "not root and no sudo: the package's install and removal are not checked"
elif dpkg-query -W -f='${Status}' vemba 2>/dev/null | grep -q 'ok installed'; then
  echo "a vemba package is installed already: its install and removal are not checked"
else
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq "$deb" >/dev/null
  PKG_CONFIG_PATH="" pkg-config --exists vemba
  status=0
  vemba-inspect >"$work/usage.txt" 2>&1 || status=$?
  [[ $status -eq 2 ]] && grep -q '^usage: vemba-inspect' "$work/usage.txt"
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get purge -y -qq vemba >/dev/null
  hash -r  # forget where vemba-inspect was found
  if PKG_CONFIG_PATH="" pkg-config --exists vemba || command -v vemba-inspect >/dev/null; then
    echo "the package left files behind"
    exit 1
  fi
  echo "installed with apt-get and removed cleanly"
fi
echo "package checked"
