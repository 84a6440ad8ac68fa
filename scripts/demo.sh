#!/usr/bin/env bash
# Installs what is missing, builds, and runs the main job: the bundled
# example town from drawn lines to a designed sewer and water network
# (demo-out/town-network.dxf, .png and report.txt; another folder as $1).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh build
build/kestrana demo "${1:-demo-out}"
