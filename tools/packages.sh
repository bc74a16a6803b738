# SPDX-License-Identifier: GPL-3.0-or-later
# Sourced by ./run and ./test: installs what Debian packages are missing.

# The charts' package finds nothing without libqt6opengl6-dev, and does not ask for it.
build_packages="cmake ninja-build g++ qt6-base-dev qt6-charts-dev libqt6opengl6-dev qt6-serialport-dev qt6-serialbus-dev libmodbus-dev libcli11-dev nlohmann-json3-dev"
test_packages="libgtest-dev libgmock-dev libbenchmark-dev clang clang-format clang-tidy libclang-rt-14-dev socat mbpoll xvfb xauth"

require_packages() {
  missing=""
  for package in "$@"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing="$missing $package"
  done
  [ -n "$missing" ] || return 0
  echo "Installing:$missing"
  if [ "$(id -u)" = 0 ]; then
    as_root=""
  elif command -v sudo >/dev/null && sudo -n true 2>/dev/null; then
    as_root="sudo -n"
  else
    echo "These Debian packages are missing, and installing them takes root or sudo:$missing" >&2
    echo "Install them and start again:  apt-get install$missing" >&2
    exit 1
  fi
  export DEBIAN_FRONTEND=noninteractive
  # shellcheck disable=SC2086
  $as_root apt-get update -qq && $as_root apt-get install -y -qq --no-install-recommends $missing >/dev/null || {
    echo "apt-get could not install:$missing" >&2
    exit 1
  }
}
