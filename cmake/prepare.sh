# Shared by ./run and ./test: installs missing packages, configures a preset and builds it.
# Silent unless something takes long or fails; on a terminal, builds show how far they are.

build_packages=(cmake ninja-build g++ pkg-config libvips-dev libpng-dev libjpeg-dev libcli11-dev nlohmann-json3-dev libxxhash-dev)
test_packages=(libgtest-dev)
build_options=()  # added to those of a preset

# Installs those of the given Debian packages that are missing.
install_missing() {
    local missing=() package
    for package in "$@"; do
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    local as_root=()
    [ "$(id -u)" = 0 ] || as_root=(sudo)
    echo "installing ${missing[*]} ..." >&2
    local log
    log=$(mktemp)
    if ! { "${as_root[@]}" apt-get update && DEBIAN_FRONTEND=noninteractive \
        "${as_root[@]}" apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
        tail -n 20 "$log" >&2
        echo "could not install ${missing[*]}" >&2
        exit 1
    fi
    rm -f "$log"
}

# The seconds $1 in words: 75 s, 4 min.
duration() { if [ "$1" -lt 100 ]; then echo "$1 s"; else echo "$((($1 + 30) / 60)) min"; fi; }

# Copies the output of the build of $1 to file $2, and shows on a terminal the step that it is at.
show_progress() {
    local line begin=$SECONDS
    while IFS= read -r line; do
        printf '%s\n' "$line" >&3
        if ! [ -t 2 ] || ! [[ $line =~ ^\[([1-9][0-9]*)/([0-9]+)\] ]]; then continue; fi
        printf '\r\033[Kbuilding %s: step %s of %s, %s' "$1" "${BASH_REMATCH[@]:1}" "$(duration $((SECONDS - begin)))" >&2
    done 3>"$2"
    [ ! -t 2 ] || printf '\r\033[K' >&2
}

# Configures preset $1 and builds the given targets, or all if none is given.
build_preset() {
    local preset=$1 log=build/$1.log options=("${build_options[@]}")
    shift
    mkdir -p build
    command -v ccache >/dev/null && options+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    [ -t 2 ] || [ -e "build/$preset/build.ninja" ] || echo "building $preset ..." >&2
    local begin=$SECONDS
    if ! (
        set -o pipefail
        { cmake --preset "$preset" "${options[@]}" && cmake --build "build/$preset" ${1:+--target "$@"}; } 2>&1 |
            show_progress "$preset" "$log"
    ); then
        tail -n 40 "$log" >&2
        echo "the build of $preset failed; the full log is $log" >&2
        exit 1
    fi
    ! grep -q '^\[[1-9][0-9]*/' "$log" || echo "built $preset in $(duration $((SECONDS - begin)))" >&2
}
