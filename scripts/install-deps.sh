#!/usr/bin/env bash
# Installs the Debian packages the build needs, when they are missing.
# Usage: scripts/install-deps.sh [extra packages...]
set -euo pipefail
packages=(cmake make g++ binutils libgtest-dev libbenchmark-dev libpng-dev pkg-config ffmpeg frei0r-plugins-dev
          libavformat-dev libavcodec-dev libswscale-dev libavutil-dev "$@")
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq || true
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
