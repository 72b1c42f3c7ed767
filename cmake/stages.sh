# What the scripts of the project's root tell while they work. To be sourced.

stage() { # TEXT
    printf '== %s\n' "$1"
}

fail() { # TEXT
    printf '%s: %s\n' "${0##*/}" "$1" >&2
    exit 1
}

# rpmbuild and the scripts that it makes take such characters for their own.
check_path() { # FOLDER
    local unusable=$'[[:space:]"\'`$\\%;&|<>()]'
    [[ ! $1 =~ $unusable ]] ||
        fail "packages cannot be built below a folder with \"${BASH_REMATCH[0]}\" in its name; \
move this one: $1"
}

# Runs a command whose output matters only when it fails, and tells every ten seconds how far it is.
watched() ( # COMMAND...
    log=$(mktemp)
    SECONDS=0
    while sleep 10 </dev/null >/dev/null 2>&1; do
        printf '   %3d s  %s\n' $SECONDS "$(tail -n 1 "$log" | cut -c 1-80)"
    done &
    trap 'kill $!; rm -f "$log"' EXIT
    "$@" >"$log" 2>&1 || {
        cat "$log" >&2
        fail "failed: $*"
    }
)

# Configures and builds, and tells at the start how long it takes.
build_preset() { # PRESET [CMAKE BUILD ARGUMENT...]
    local preset=$1 steps minutes=
    shift
    cd "$root"
    # A newer compiler's warning is no reason not to run; in CI it is one to fail.
    watched cmake --preset "$preset" ${CI:+-DSEALKIT_WARNINGS_ARE_ERRORS=ON}
    steps=$(cmake --build --preset "$preset" "$@" -- -n | sed -n '$s|^\[[0-9]*/\([0-9]*\)\].*|\1|p')
    [ -n "$steps" ] || return 0
    # Each step takes about a second of one core.
    [ "$steps" -lt 30 ] || minutes=": about $((steps / $(nproc) / 60 + 1)) min on $(nproc) cores"
    printf '   %d steps%s\n' "$steps" "$minutes"
    if [ -t 1 ]; then
        cmake --build --preset "$preset" "$@" || fail 'the build failed'
    else
        watched stdbuf -oL cmake --build --preset "$preset" "$@"
    fi
}
