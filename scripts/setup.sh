#!/usr/bin/env bash
# Installs the Debian packages kestrana needs to build and test, if missing.
set -euo pipefail
packages=(build-essential cmake pkg-config ccache libgtest-dev libgmock-dev
  libbenchmark-dev libpugixml-dev libgeos-dev python3-ezdxf librecad
  poppler-utils librsvg2-bin fonts-liberation2 clang-14 libfuzzer-14-dev libclang-rt-14-dev)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  $sudo apt-get update
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends "${missing[@]}"
fi
