# What run.sh and test.sh share: installing packages and building a preset. To be sourced from the
# top folder of the project.

say() { printf '%s\n' "-- $*" >&2; }

# has PACKAGE...: whether all these Debian packages are installed.
has() {
    local package
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || return 1
    done
}

# need PACKAGE...: installs the Debian packages that are missing.
need() {
    local missing=() package
    for package in "$@"; do
        has "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    say "installing ${missing[*]}"
    local admin=()
    [ "$(id -u)" -eq 0 ] || admin=(sudo)
    # The lists may be missing or old: a first failure fetches them.
    "${admin[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends \
        "${missing[@]}" >/dev/null 2>&1 && return
    "${admin[@]}" apt-get update >&2
    "${admin[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends \
        "${missing[@]}" >&2
}

# wish PACKAGE...: the same for packages that the build can do without.
wish() {
    (need "$@") || say "going on without $*"
}

# build FOLDER PRESET [CMAKE-OPTION...] [-- BUILD-OPTION...]: builds in build/FOLDER; prints the
# compiler's output only when it fails.
build() {
    local folder=$1 preset=$2 options=() log=build/$1.log
    shift 2
    while [ $# -gt 0 ] && [ "$1" != -- ]; do
        options+=("$1")
        shift
    done
    [ $# -eq 0 ] || shift
    mkdir -p build
    say "building $folder (build/$folder)"
    if ! { cmake --preset "$preset" -B "build/$folder" "${options[@]}" &&
        cmake --build "build/$folder" -j "$(nproc)" "$@"; } >"$log" 2>&1; then
        cat "$log" >&2
        exit 3
    fi
}
