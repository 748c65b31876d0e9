# shellcheck shell=bash
# Functions of the scripts. Sourced by them, never run.
set -euo pipefail

source_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)

# Builds are next to the tree, as in the presets. MENSOR_BUILD_ROOT moves them.
build_root=${MENSOR_BUILD_ROOT:-$source_dir-build}
if ! mkdir -p "$build_root/logs" 2>/dev/null; then
    build_root=${XDG_CACHE_HOME:-$HOME/.cache}/mensor-build/$(cksum <<<"$source_dir" | cut -d' ' -f1)
    mkdir -p "$build_root/logs"
fi

# build PRESET DIRECTORY LOG [CMAKE OPTION...]: configures and builds. All output goes to the log.
build() {
    local preset=$1 directory=$2 log=$3
    shift 3
    # Lets the compiler cache reuse objects that were compiled with a precompiled header, and lets it take the names
    # of the included files from the compiler. Otherwise it runs the preprocessor once more for each new object.
    if command -v ccache >/dev/null; then
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_SLOPPINESS=pch_defines,time_macros CCACHE_DEPEND=1
    fi
    (cd "$source_dir" && cmake --preset "$preset" -B "$directory" "$@" \
        && cmake --build "$directory" --parallel "$(nproc)" "${build_options[@]}") >"$log" 2>&1
}
build_options=()
