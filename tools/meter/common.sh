# Functions for the commands of ./meter: steps and their logs, packages, builds. Sourced by bash.
set -euo pipefail

# shellcheck disable=SC2034 # for commands that take a path
caller_folder=$PWD
repository=$(dirname -- "$(dirname -- "$(dirname -- "$(realpath -- "${BASH_SOURCE[0]}")")")")
cd -- "$repository"
# Ordinary users often have no sbin on their PATH.
PATH=$PATH:/usr/local/sbin:/usr/sbin:/sbin

log_folder=$repository/build/log
step=0
steps=0

# expect_steps NUMBER: how often the command will call begin
expect_steps() {
    steps=$1
}

die() {
    printf 'meter: %s\n' "$*" >&2
    exit 1
}

# begin TITLE: announces the next step
begin() {
    step=$((step + 1))
    printf '[%d/%d] %s\n' "$step" "$steps" "$*"
}

# logged NAME COMMAND...: the command's output goes to build/log/NAME.log; on a
# failure the step, the log and its tail are shown
logged() {
    local name=$1 log=$log_folder/$1.log
    shift
    mkdir -p "$log_folder"
    if ! "$@" >"$log" 2>&1; then
        printf '\nmeter: the step "%s" failed; its log is %s and ends with:\n\n' "$name" "$log" >&2
        tail -n 40 "$log" >&2
        exit 1
    fi
}

# --- packages

# wanted_packages [GROUP...]: what every command needs, and those groups
wanted_packages() {
    sed -e 's/#.*//' simulator/packages.txt |
        awk -v groups=" build run test $* " 'NF && index(groups, " " $1 " ") { print $2 }' | sort -u
}

# install_packages [GROUP...]
install_packages() {
    begin "packages"
    command -v dpkg-query >/dev/null ||
        die "this is not a Debian system: install what simulator/packages.txt lists by hand."
    local wanted missing
    mapfile -t wanted < <(wanted_packages "$@")
    mapfile -t missing < <(comm -23 <(printf '%s\n' "${wanted[@]}" | sort) \
        <(dpkg-query -W -f '${db:Status-Abbrev} ${Package}\n' "${wanted[@]}" 2>/dev/null |
            awk '$1 == "ii" { print $2 }' | sort))
    [ ${#missing[@]} -gt 0 ] || return 0
    echo "      missing: ${missing[*]}"
    local -a root=()
    if [ "$(id -u)" != 0 ]; then
        command -v sudo >/dev/null ||
            die "as root, run: apt-get install ${missing[*]}   (there is no sudo here)"
        root=(sudo)
        sudo -v || die "as root, run: apt-get install ${missing[*]}"
    fi
    echo "      apt-get update"
    # The update may fail for a source that has none of these packages, so only the installation
    # must succeed.
    (logged packages-update "${root[@]}" apt-get update) ||
        echo "      goes on with the package lists that are there"
    echo "      apt-get install"
    logged packages-install "${root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y --no-install-recommends "${missing[@]}"
}

# --- build

configure() {
    local preset=$1
    begin "configure ($preset)"
    # What is compiled with precompiled headers is stored only with these two permissions.
    ! command -v ccache >/dev/null ||
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_SLOPPINESS=pch_defines,time_macros
    # ninja configures again by itself when a CMake file changes, but not for the presets.
    [ "build/$preset/build.ninja" -nt CMakePresets.json ] || logged "configure-$preset" cmake --preset "$preset"
}

build() {
    local preset=$1 log=$log_folder/build-$1.log
    begin "build ($preset)"
    mkdir -p "$log_folder"
    # The count of finished steps on a terminal; every line is in the log.
    local status=0
    if [ -t 1 ]; then
        cmake --build "build/$preset" -j "$(nproc)" 2>&1 | tee "$log" |
            awk '/^\[[0-9]+\/[0-9]+\]/ { printf "\r      %s   ", $1; fflush(); shown = 1 }
                 END { if (shown) print "" }' || status=1
    else
        cmake --build "build/$preset" -j "$(nproc)" >"$log" 2>&1 || status=1
    fi
    if [ $status != 0 ]; then
        printf '\nmeter: the step "build (%s)" failed; its log is %s and ends with:\n\n' "$preset" "$log" >&2
        grep -nE -m 5 'error|FAILED' "$log" >&2 || true
        tail -n 40 "$log" >&2
        exit 1
    fi
}

# prepare PRESET [GROUP...]: installs, with those groups of packages, configures and builds
prepare() {
    install_packages "${@:2}"
    configure "$1"
    build "$1"
}

# --- tests

# without_time_limit: Qt Test would stop a test function after five minutes; long forms take longer
without_time_limit() {
    export QTEST_FUNCTION_TIMEOUT=$((24 * 60 * 60 * 1000))
}
