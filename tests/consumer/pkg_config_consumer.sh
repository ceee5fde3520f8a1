#!/bin/sh
# Builds and runs the consumer with plain compiler calls and pkg-config, as a Makefile-based
# product build would. Arguments: install prefix, compiler, extra flags, source, output dir,
# then the emulator's command that runs the program when it was cross-compiled (optional).
set -eu
prefix=$1 compiler=$2 flags=$3 source=$4 out=$5
for libdir in "$prefix"/lib*/pkgconfig; do
    break  # the first match: lib or lib64, whichever the install used
done
shift 5
export PKG_CONFIG_PATH="$libdir"
mkdir -p "$out"
# shellcheck disable=SC2046,SC2086
"$compiler" $flags $(pkg-config --cflags yxfrontpanel-toolbox) "$source" \
    $(pkg-config --libs yxfrontpanel-toolbox) -o "$out/consumer"
LD_LIBRARY_PATH="$(pkg-config --variable=libdir yxfrontpanel-toolbox)" "$@" "$out/consumer"
