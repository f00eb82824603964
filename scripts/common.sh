# shellcheck shell=bash
# Shared by the scripts beside it; sourced, not run. Sourcing it makes every later error end the script.
set -euo pipefail

repository="$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)"
jobs="${QUILLPOST_JOBS:-$(nproc)}"

step() { printf '\n==> %s\n' "$*"; }

die() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

need() {
    command -v "$1" >/dev/null || die "$1 is missing. Debian has it: apt-get install $2"
}

# with_preset PRESET COMMAND…: runs a command in the repository as programs of that preset need it.
with_preset() {
    local preset="$1"
    shift
    # The thread sanitizer of g++ 12 cannot start where the kernel spreads addresses wider than it expects.
    if [[ $preset == tsan ]] && (($(cat /proc/sys/vm/mmap_rnd_bits 2>/dev/null || echo 0) > 28)) \
        && setarch -R true 2>/dev/null; then
        set -- setarch -R "$@"
    fi
    (cd "$repository" && "$@")
}

# build_preset PRESET [TARGET…]: configures once, then builds what is not up to date.
build_preset() {
    local preset="$1"
    shift
    local configure=()
    # Warnings stop the build where nobody reads them, not where somebody is in the middle of a change.
    [[ ${CI:-} == true || ${CI:-} == 1 ]] && configure+=(-DQUILLPOST_WARNINGS_AS_ERRORS=ON)
    if [[ ! -e $repository/build/$preset/build.ninja || ${#configure[@]} -gt 0 ]]; then
        step "Configuring the $preset preset"
        with_preset "$preset" cmake --preset "$preset" "${configure[@]}"
    fi
    local targets=()
    (($#)) && targets=(--target "$@")
    step "Building the $preset preset"
    with_preset "$preset" cmake --build --preset "$preset" --parallel "$jobs" "${targets[@]}"
}
