# Installs what is missing and builds, for ./run, ./test, ./torture, ./bench and scripts/coverage. Sourced, with the
# repository as the working directory.

# Prints the packages of the given uses.
packages_for() {
    local use name
    while read -r use name; do
        case " $* " in *" $use "*) printf '%s\n' "$name" ;; esac
    done < packages.txt
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        printf 'These packages are missing, and there is no sudo to install them with:\n%s\n' "$missing" >&2
        return 1
    fi
}

# Installs those packages of the given uses that are not installed. Says nothing when all are.
install_packages() {
    local wanted installed missing
    wanted=$(packages_for "$@" | sort -u)
    # shellcheck disable=SC2086
    # It fails where a package has never been heard of; that one is missing then.
    installed=$({ dpkg-query -W -f='${db:Status-Status} ${Package}\n' $wanted 2>/dev/null || true; } |
        sed -n 's/^installed //p' | sort -u)
    missing=$(comm -23 <(printf '%s\n' "$wanted") <(printf '%s\n' "$installed"))
    [ -z "$missing" ] && return 0
    printf 'Installing: %s\n' "$(printf '%s' "$missing" | tr '\n' ' ')"
    # shellcheck disable=SC2086
    set -- apt-get install -y --no-install-recommends -qq $missing
    as_root env DEBIAN_FRONTEND=noninteractive "$@" >/dev/null 2>&1 && return 0
    as_root apt-get update -qq && as_root env DEBIAN_FRONTEND=noninteractive "$@" >/dev/null
}

# Builds the given targets (all without any) in build/, configuring with the given -D options first when
# there are any or when nothing is configured yet.
build_targets() {
    local options=() targets=() word
    for word in "$@"; do
        case $word in -D*) options+=("$word") ;; *) targets+=(--target "$word") ;; esac
    done
    if [ ${#options[@]} -gt 0 ] || [ ! -f build/build.ninja ]; then
        cmake --preset default "${options[@]}" >build-configure.log 2>&1 || { cat build-configure.log >&2; return 1; }
    fi
    printf 'Building; build/build.log tells how far it is.\n'
    cmake --build build "${targets[@]}" >build/build.log 2>&1 || { tail -n 60 build/build.log >&2; return 1; }
}
