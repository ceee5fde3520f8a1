#!/usr/bin/env bash
# Renders the pictures of the graphic displays page through the library's PNG back end: the
# demo's home screen (docs/graphic-display.png) and its Output menu
# (docs/graphic-display-menu.png) as a 128x64 module with the built-in 6x8 font shows them,
# each pixel drawn 4x4. Run it from the repository after building the simulator:
#   cmake --build build/default --target frontpanel-sim && docs/render-pictures.sh
# An other simulator build can be given as the first argument.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
sim=${1:-$here/../build/default/tools/frontpanel-sim/frontpanel-sim}
if [[ ! -x $sim ]]; then
    echo "render-pictures.sh: no simulator at $sim; build the frontpanel-sim target first" >&2
    exit 1
fi

# The home screen appears after a second without a key; the key script's clock only moves
# with wait:, so the walk is the same on every run.
"$sim" --idle 1 --keys "enter down down enter back back wait:2" \
    --display "png:$here/graphic-display.png:x4" >/dev/null
# The Output menu with its second item selected.
"$sim" --keys "enter down" --display "png:$here/graphic-display-menu.png:x4" >/dev/null
echo "render-pictures.sh: wrote $here/graphic-display.png and $here/graphic-display-menu.png"
