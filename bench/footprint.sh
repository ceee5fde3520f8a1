#!/usr/bin/env bash
# Flash and RAM footprint on the host (x86_64) and on the instrument's processors (aarch64,
# armhf): the stripped size (text, data, bss) of every shared library and of the simulator in a
# Release (-O3) and a size-optimised MinSizeRel (-Os) build, and the resident and heap bytes
# per plain menu item of a 100,000-item menu (bench/menu_memory_probe; the ARM builds run
# under qemu-user). Prints Markdown tables for the README and fails when a target is missed:
#   toolkit + its two platform libraries <= 300 KiB text on armhf -Os;
#   resident bytes per plain menu item on armhf <= 200.
# Release ARM builds reuse build/cross-aarch64 and build/cross-armhf (the cross presets) when
# they are there; every other build goes to build/footprint/<target>-<flavour>, without tests.
# Every build has every optional part (the cross dependency script provides their libraries for
# the ARM targets), so that each library gets a row and the targets compare like for like.
#   bench/footprint.sh [--items N] [--help]
set -euo pipefail
cd "$(dirname "$0")/.."

items=100000
while [ $# -gt 0 ]; do
    case $1 in
    --items)
        if [ $# -lt 2 ] || ! [[ $2 =~ ^[1-9][0-9]*$ ]]; then
            echo "footprint.sh: --items needs a positive number" >&2
            exit 2
        fi
        items=$2
        shift 2
        ;;
    --help | -h)
        sed -n '2,14p' "$0" | sed 's/^# \{0,1\}//'
        exit 0
        ;;
    *)
        echo "footprint.sh: unknown argument '$1' (see --help)" >&2
        exit 2
        ;;
    esac
done

text_limit=$((300 * 1024))
resident_limit=200
targets=(x86_64 aarch64 armhf)
flavours=(release size)
declare -A build_type=([release]=Release [size]=MinSizeRel)
declare -A flavour_flags=([release]="-O3" [size]="-Os")
declare -A toolchain=([aarch64]=cmake/toolchains/aarch64-linux-gnu.cmake
    [armhf]=cmake/toolchains/arm-linux-gnueabihf.cmake)
declare -A binutils_prefix=([x86_64]="" [aarch64]=aarch64-linux-gnu- [armhf]=arm-linux-gnueabihf-)

build_dir() {  # target flavour -> build folder
    if [ "$2" = release ] && [ "$1" != x86_64 ] && [ -f "build/cross-$1/CMakeCache.txt" ]; then
        echo "build/cross-$1"
    else
        echo "build/footprint/$1-$2"
    fi
}

for target in "${targets[@]}"; do
    for flavour in "${flavours[@]}"; do
        dir=$(build_dir "$target" "$flavour")
        if [[ $dir == build/footprint/* ]]; then
            options=(-G Ninja -DCMAKE_BUILD_TYPE="${build_type[$flavour]}" -DYXFP_WERROR=ON
                -DYXFP_BUILD_TESTS=OFF -DYXFP_BUILD_TOOLS=ON -DYXFP_BUILD_MEMORY_PROBE=ON)
            if [ "$target" != x86_64 ]; then
                options+=(--toolchain "${toolchain[$target]}")
            fi
            echo "configuring $dir" >&2
            cmake -S . -B "$dir" "${options[@]}" > /dev/null
        fi
        echo "building $dir" >&2
        cmake --build "$dir" -j2 --target all > /dev/null
    done
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# stripped_size target file -> "text data bss" of the stripped file
stripped_size() {
    local prefix=${binutils_prefix[$1]}
    "${prefix}strip" --strip-all -o "$work/stripped" "$2"
    "${prefix}size" "$work/stripped" | awk 'NR == 2 { print $1, $2, $3 }'
}

libraries() {  # build folder -> the project's shared libraries (real files), by name
    find "$1" -name 'lib*.so.*.*' -type f -not -path '*/consumer/*' -not -path '*/examples/*' \
        -not -path '*/googletest/*' \
        -printf '%f\t%p\n' | sort
}

number() { sed -E ':a; s/([0-9])([0-9]{3})($|,)/\1,\2\3/; ta' <<< "$1"; }  # 1234567 -> 1,234,567

cache_value() {  # build folder, variable -> its value in the CMake cache
    sed -n "s/^$2:[A-Z]*=//p" "$1/CMakeCache.txt"
}

run_on_target() {  # target build-folder program args... (ARM programs under qemu-user)
    local target=$1 dir=$2
    shift 2
    if [ "$target" = x86_64 ]; then
        "$@"
    else
        "$(cache_value "$dir" YXFP_QEMU)" -L "$(cache_value "$dir" YXFP_CROSS_LIBRARY_ROOT)" "$@"
    fi
}

declare -A text_sum resident heap
echo "Stripped sizes in bytes, text / data / bss:"
echo
echo "| file | build | x86_64 | aarch64 | armhf |"
echo "|---|---|---|---|---|"
mapfile -t names < <(libraries "$(build_dir x86_64 release)" | cut -f1 | sed 's/\.so\..*/.so/')
names+=(frontpanel-sim)
for name in "${names[@]}"; do
    for flavour in "${flavours[@]}"; do
        row="| \`$name\` | ${flavour_flags[$flavour]} |"
        for target in "${targets[@]}"; do
            dir=$(build_dir "$target" "$flavour")
            if [ "$name" = frontpanel-sim ]; then
                file=$(find "$dir" -name frontpanel-sim -type f -not -path '*/consumer/*' \
                    -not -path '*/examples/*' | head -n 1)
            else
                file=$(libraries "$dir" | awk -F'\t' -v n="$name" 'index($1, n ".") == 1 { print $2 }')
            fi
            if [ -z "$file" ]; then
                row+=" - |"
                continue
            fi
            read -r text data bss < <(stripped_size "$target" "$file")
            row+=" $(number "$text") / $(number "$data") / $(number "$bss") |"
            case $name in
            libYxFrontPanelToolbox.so | libYxFrontPanelHW.so | libYxBase2System.so)
                text_sum[$target-$flavour]=$((${text_sum[$target-$flavour]:-0} + text))
                ;;
            esac
        done
        echo "$row"
    done
done
for flavour in "${flavours[@]}"; do
    row="| toolkit + its two platform libraries, text | ${flavour_flags[$flavour]} |"
    for target in "${targets[@]}"; do
        row+=" $(number "${text_sum[$target-$flavour]}") |"
    done
    echo "$row"
done

echo
echo "Memory of a menu of $(number "$items") plain items, bytes per item:"
echo
echo "| measure | build | x86_64 | aarch64 | armhf |"
echo "|---|---|---|---|---|"
for flavour in "${flavours[@]}"; do
    for target in "${targets[@]}"; do
        dir=$(build_dir "$target" "$flavour")
        output=$(run_on_target "$target" "$dir" "$dir/bench/menu_memory_probe" "$items")
        resident[$target-$flavour]=$(sed -n 's/resident bytes per item: //p' <<< "$output")
        heap[$target-$flavour]=$(sed -n 's/heap bytes per item: //p' <<< "$output")
    done
    for measure in resident heap; do
        row="| $measure | ${flavour_flags[$flavour]} |"
        for target in "${targets[@]}"; do
            if [ "$measure" = resident ]; then
                value=${resident[$target-$flavour]}
            else
                value=${heap[$target-$flavour]}
            fi
            row+=" $(printf '%.0f' "$value") |"
        done
        echo "$row"
    done
done

echo
failed=0
armhf_text=${text_sum[armhf-size]}
if [ "$armhf_text" -gt "$text_limit" ]; then
    echo "TARGET MISSED: toolkit + platform libraries text on armhf -Os is $(number "$armhf_text")" \
        "bytes, above $(number "$text_limit") (300 KiB)"
    failed=1
fi
armhf_resident=$(printf '%.0f' "${resident[armhf-release]}")
if [ "$armhf_resident" -gt "$resident_limit" ]; then
    echo "TARGET MISSED: $armhf_resident resident bytes per plain menu item on armhf," \
        "above $resident_limit"
    failed=1
fi
if [ $failed -eq 0 ]; then
    echo "targets met: armhf -Os text $(number "$armhf_text") <= $(number "$text_limit");" \
        "armhf $armhf_resident resident bytes per item <= $resident_limit"
fi
exit $failed
