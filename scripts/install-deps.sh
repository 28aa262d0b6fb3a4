#!/usr/bin/env bash
# Installs the Debian packages this project builds and tests with, including
# the armhf multiarch libraries for the 32-bit ARM build. Installs only what is
# missing, then checks that everything is there.
set -u

packages=(
  cmake make g++ libgtest-dev libbenchmark-dev
  android-liblog-dev
  g++-arm-linux-gnueabihf qemu-user
  libc6:armhf libstdc++6:armhf libgtest-dev:armhf android-liblog-dev:armhf
  nlohmann-json3-dev libcli11-dev libstb-dev
  clang libclang-rt-14-dev
  chromium
  openjdk-17-jdk-headless junit5
)

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

installed() {
  dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q 'install ok installed'
}

missing=()
for p in "${packages[@]}"; do
  installed "$p" || missing+=("$p")
done

if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  if ! dpkg --print-foreign-architectures | grep -qx armhf; then
    as_root dpkg --add-architecture armhf
  fi
  # One mirror index can be mid-sync (seen for armhf security); the packages
  # still install from the others, so an update error is not fatal here.
  as_root apt-get update -q || echo "apt-get update reported an error; going on"
  DEBIAN_FRONTEND=noninteractive as_root apt-get install -y -q --no-install-recommends \
    "${missing[@]}" || echo "apt-get install reported an error; checking what is there"
fi

still_missing=()
for p in "${packages[@]}"; do
  installed "$p" || still_missing+=("$p")
done
if [ ${#still_missing[@]} -gt 0 ]; then
  echo "Could not install: ${still_missing[*]}" >&2
  exit 1
fi
echo "All build and test packages are installed."
