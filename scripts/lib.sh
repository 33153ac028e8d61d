# Shared by the scripts: sourced first, it makes the root of the clone the current directory.
# shellcheck shell=bash
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# shellcheck disable=SC2034 # used by those that source this
fonts=(fonts-dejavu-core fonts-vlgothic)
# shellcheck disable=SC2034 # likewise
display_packages=(imagemagick xdotool xvfb "${fonts[@]}")

# The folders with the program's logic, as CMakeLists.txt lists them.
# shellcheck disable=SC2034 # likewise
read -ra logic_folders < <(sed -n 's/^set(logic_folders \(.*\))$/\1/p' CMakeLists.txt)

# Installs those of the named Debian packages that are missing. A machine that has them all needs
# neither network nor root; one without apt or sudo is only told what the scripts count on.
need() {
    local package missing=()
    if ! command -v apt-get >/dev/null; then
        echo "This is no Debian machine. Needed, under Debian's names: $*" >&2
        return
    fi
    for package; do
        dpkg-query -W -f='${Status}\n' "$package" 2>/dev/null | grep -q ' installed$' ||
            missing+=("$package")
    done
    ((${#missing[@]})) || return 0
    if ((EUID != 0)) && ! command -v sudo >/dev/null; then
        echo "Missing packages, to be installed by an administrator: ${missing[*]}" >&2
        return
    fi
    echo "Installing ${missing[*]}"
    as_root apt-get update -qq
    apt_install "${missing[@]}"
}

# step WHAT COMMAND...: says what is being done, and shows the command's output only if it fails.
step() {
    local what=$1 log
    shift
    log=$(mktemp)
    echo "$what"
    if ! "$@" >"$log" 2>&1; then
        cat "$log"
        rm -f "$log"
        die "$what: $*"
    fi
    rm -f "$log"
}

# Builds a preset. On a terminal the build's progress is one line.
build_preset() {
    step "Configuring $1" cmake --preset "$1" ${CI:+-DQUILLSTONE_WERROR=ON}
    if [[ -t 1 ]]; then
        cmake --build --preset "$@"
    else
        step "Building $*" cmake --build --preset "$@"
    fi
}

apt_install() {
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -qq -y --no-install-recommends \
        -o DPkg::Lock::Timeout=300 "$@" >/dev/null
}

# Runs a command that ends with the script, whatever ends that.
attached() {
    setpriv --pdeathsig KILL "$@" <&0 &
    wait $!
}

# Ends what runs in the background, but for the process $1, which ends by itself.
end_jobs() {
    local job
    for job in $(jobs -p); do
        [[ $job == "${1:-}" ]] || kill -KILL "$job" 2>/dev/null || true
    done
    wait 2>/dev/null
}

as_root() {
    if ((EUID == 0)); then "$@"; else sudo "$@"; fi
}

die() {
    echo "FAILED: $*" >&2
    exit 1
}
