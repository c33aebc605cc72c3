#!/bin/sh
# Installs a build and lets a separate CMake project find and link it, as a user would:
# check_install.sh BUILD_FOLDER CONSUMER_SOURCE_FOLDER CMAKE [CMAKE_ARGUMENT...]
set -eu
build=$1 consumer=$2 cmake=$3
shift 3
work=$build/install-check
rm -rf "$work"
"$cmake" --install "$build" --prefix "$work/prefix" >/dev/null
"$cmake" -S "$consumer" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" "$@" >/dev/null
"$cmake" --build "$work/build" >/dev/null
"$cmake" --build "$work/build" --target run_consumer
