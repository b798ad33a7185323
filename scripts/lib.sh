# shellcheck shell=bash
# What the scripts share: where things are, what to install, how to build, a display, a clean end.

root_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# The one list of packages, by what needs them.
packages_for() {
    case $1 in
    building)
        echo cmake g++ git ninja-build pkg-config \
            qtbase5-dev qttools5-dev qttools5-dev-tools libqt5websockets5-dev libqt5svg5-dev qtwebengine5-dev \
            libavcodec-dev libavformat-dev libavutil-dev libswscale-dev libcpp-httplib-dev libsodium-dev
        ;;
    running) echo curl ffmpeg fonts-noto-cjk fping iproute2 qttranslations5-l10n ;;
    display) echo xauth xvfb ;;
    wayland) echo qtwayland5 ;;
    checking) echo clang-format clang-tidy g++-mingw-w64-x86-64-posix shellcheck ;;
    clang) echo clang libclang-rt-dev llvm ;;
    testing) echo lldb openssl ;;
    gallery) echo imagemagick ;;
    windows) echo autoconf automake dpkg-dev g++-mingw-w64-x86-64-posix libtool make xz-utils ;;
    installer) echo nsis ;;
    wine) echo procps python3 wine wine64 xdotool ;;
    packaging) echo appstream desktop-file-utils dpkg-dev file lintian ;;
    *) die "no packages are listed for $1" ;;
    esac
}

scratch=""
display_pid=""
at_exit=()
as_root=()

say() { printf '%s\n' "$*"; }

die() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

usage_error() {
    printf "%s: %s\nTry '%s --help'.\n" "$(basename "$0")" "$*" "$0" >&2
    exit 2
}

# The comment at the head of a script is its help.
show_help() { sed -n '2,/^[^#]/ { s/^# \{0,1\}//p }' "$0"; }

need_value() {
    if [ $# -lt 2 ] || [ -z "$2" ]; then
        usage_error "$1 needs a value."
    fi
}

# --- a clean end -------------------------------------------------------------------------------

clean_up() {
    local action
    for action in "${at_exit[@]}"; do
        "$action" || true
    done
    [ -z "$display_pid" ] || end_process "$display_pid"
    [ -z "$scratch" ] || rm -rf "$scratch"
}

# Makes $scratch, a folder that is gone when the script ends, whichever way it ends.
make_scratch() {
    scratch=$(mktemp -d)
    trap clean_up EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM HUP
}

end_process() {
    kill "$1" 2>/dev/null || return 0
    wait "$1" 2>/dev/null || true
}

# wait_until SECONDS PID COMMAND...: true as soon as the command is; false when the time is over or
# the process has ended.
wait_until() {
    local tries=$(($1 * 10)) pid=$2
    shift 2
    while ((tries-- > 0)); do
        "$@" && return 0
        kill -0 "$pid" 2>/dev/null || return 1
        sleep 0.1
    done
    return 1
}

# --- packages ----------------------------------------------------------------------------------

# Prints the packages for these purposes that are not installed.
missing_packages() {
    local have purpose
    have=$(dpkg-query -W -f '${Package} ${db:Status-Status}\n' 2>/dev/null |
        sed -n 's/ installed$//p')
    for purpose in "$@"; do
        packages_for "$purpose"
    done | tr ' ' '\n' | grep -vxF -e "$have" || true
}

# Sets as_root to the command that runs another one as root; false when there is none.
find_root() {
    as_root=()
    [ "$(id -u)" -ne 0 ] || return 0
    command -v sudo >/dev/null || return 1
    as_root=(sudo)
    if ! { : </dev/tty; } 2>/dev/null; then
        as_root=(sudo -n)
    fi
    "${as_root[@]}" -v 2>/dev/null || "${as_root[@]}" true 2>/dev/null
}

apt() {
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=300 \
        -o Dpkg::Use-Pty=0 "$@" </dev/null >>"$apt_log" 2>&1
}

fetch_and_install() { apt update && apt install -y --no-install-recommends "$@"; }

# install_for PURPOSE...: installs what is missing of their packages.
install_for() {
    local missing apt_log=$scratch/apt.log
    mapfile -t missing < <(missing_packages "$@")
    [ ${#missing[@]} -gt 0 ] || return 0
    command -v apt-get >/dev/null ||
        die "this machine has no apt-get; install what Debian calls: ${missing[*]}"
    find_root || die "these packages are missing and installing them needs root or sudo:
  apt-get install --no-install-recommends ${missing[*]}"
    say "Installing ${#missing[@]} packages; on a new machine this takes some minutes:"
    say "  ${missing[*]}"
    if ! fetch_and_install "${missing[@]}" && ! fetch_and_install "${missing[@]}"; then
        tail -n 25 "$apt_log" >&2
        die "could not install: ${missing[*]}"
    fi
}

# --- building ----------------------------------------------------------------------------------

# Where a preset builds; TARN_BUILD_DIR builds elsewhere.
build_dir() {
    case $1 in
    release) printf '%s\n' "${TARN_BUILD_DIR:-$root_dir/build}" ;;
    *) printf '%s\n' "${TARN_BUILD_DIR:-$root_dir/build}-$1" ;;
    esac
}

# Runs a command silently; shows what it printed only when it fails.
quietly() {
    "$@" >"$scratch/quiet.log" 2>&1 && return 0
    cat "$scratch/quiet.log" >&2
    return 1
}

# 95 -> "1 min 35 s"
minutes() {
    if (($1 < 60)); then
        echo "$1 s"
    else
        echo "$(($1 / 60)) min $(($1 % 60)) s"
    fi
}

# Sets weight to about how many tenths of a second a step takes on one processor, from its line.
weigh() {
    local unit
    weight=3
    case $1 in
    *Unity/unity_*.cxx.o)
        unit=$dir/${1##* }
        weight=$((15 + 4 * $(grep -c '^#include' "${unit%.o}" 2>/dev/null || echo 1)))
        ;;
    *mocs_compilation.cpp.o) weight=10 ;;
    *'Building CXX object'*) weight=18 ;;
    esac
}

# Reads what the build of $dir prints, and says now and then how far it is.
watch_build() {
    local line weight all=0 done=0 left next=$((SECONDS + 20)) start=$SECONDS
    while IFS= read -r line; do
        [[ $line != \[* ]] || { weigh "$line" && ((all += weight)); }
    done < <(ninja -C "$dir" -n "$@" 2>/dev/null)
    ((all < 100)) || say "  ${dir#"$root_dir"/}/build.log has the details; about $(
        minutes $((all / 10 / $(nproc) + 1)))"
    while IFS= read -r line; do
        printf '%s\n' "$line" >>"$dir/build.log"
        [[ $line == \[* ]] || continue
        weigh "$line"
        ((done += weight)) || true
        if ((SECONDS >= next && done < all)); then
            left=$(((SECONDS - start) * (all - done) / done))
            say "  $((done * 100 / all)) %, about $(minutes "$left") left"
            next=$((SECONDS + 20))
        fi
    done
    ((SECONDS - start < 5)) || say "  built in $(minutes $((SECONDS - start)))"
}

# compile TARGET...: builds in $dir.
compile() {
    : >"$dir/build.log"
    NINJA_STATUS='[%f/%t] ' cmake --build "$dir" --target "$@" 2>&1 | watch_build "$@" ||
        { sed -n '/^FAILED/,$p' "$dir/build.log" | head -n 80 >&2 && return 1; }
}

# build PRESET TARGETS [CMAKE_OPTION...]: one build at a time in a folder. TARGETS are words in one argument.
build() {
    local preset=$1 targets turn dir
    read -ra targets <<<"$2"
    shift 2
    dir=$(build_dir "$preset")
    mkdir -p "$dir" 2>/dev/null || true
    [ -w "$dir" ] ||
        die "$dir belongs to another user; remove it or set TARN_BUILD_DIR to a folder of yours."
    exec {turn}>"$dir/lock"
    flock -n "$turn" || { say "Waiting for another build in $dir" && flock "$turn"; }
    say "Building in $dir"
    (cd "$root_dir" && quietly cmake --preset "$preset" -B "$dir" "$@") ||
        die "the configuration failed."
    compile "${targets[@]}" || die "the build failed."
    exec {turn}>&-
}

# --- display and user data ---------------------------------------------------------------------

# has_display NUMBER: whether the server of this script serves it.
has_display() {
    local socket=/tmp/.X11-unix/X$1
    # Who may not make that folder is served by the system's name for it.
    { [ -S "$socket" ] || grep -q "@$socket\$" /proc/net/unix; } &&
        [ "$(tr -d ' ' <"/tmp/.X$1-lock" 2>/dev/null)" = "$display_pid" ]
}

# start_display SIZE: a virtual display of its own, ended with the script. The number is chosen here:
# left to the server, one in a network of its own would not see who has that number already, and
# take the socket away from them.
start_display() {
    local number
    echo "no display number is free" >"$scratch/xvfb.log"
    for number in {90..189}; do
        [ ! -e "/tmp/.X11-unix/X$number" ] || continue
        Xvfb ":$number" -screen 0 "$1x24" -dpi 96 -nolisten tcp -noreset >"$scratch/xvfb.log" 2>&1 &
        display_pid=$!
        # Somebody else may have been quicker.
        ! wait_until 30 "$display_pid" has_display "$number" || break
        end_process "$display_pid"
        display_pid=""
    done
    if [ -z "$display_pid" ]; then
        cat "$scratch/xvfb.log" >&2
        die "the virtual display did not start."
    fi
    export DISPLAY=":$number" QT_QPA_PLATFORM=xcb
    unset WAYLAND_DISPLAY XAUTHORITY
}

# Nothing that the programs write lands in the user's own folders.
use_private_home() {
    mkdir -m 700 "$scratch/home" "$scratch/data" "$scratch/runtime"
    export HOME=$scratch/home APPDATA=$scratch/data
    export XDG_DATA_HOME=$scratch/data XDG_RUNTIME_DIR=$scratch/runtime
    export XDG_CONFIG_HOME=$scratch/home/.config XDG_CACHE_HOME=$scratch/home/.cache
}

# --- rights ------------------------------------------------------------------------------------

# The virtual boxes' web pages are on port 80 of loopback addresses.
may_bind_web_port() {
    local net_bind_service=10 effective
    (($(cat /proc/sys/net/ipv4/ip_unprivileged_port_start 2>/dev/null || echo 1024) > 80)) ||
        return 0
    effective=$(sed -n 's/^CapEff:\s*//p' /proc/self/status)
    ((16#$effective >> net_bind_service & 1))
}

# A display of this machine is reached through a file, any other one through the network.
is_display_here() { [[ -z ${DISPLAY:-} || $DISPLAY == :* || $DISPLAY == unix:* ]]; }

# Sets own_network to what stands before a command to give it a network of its own, with loopback
# up, and as_user to what then makes it user $1 of group $2, with the right to serve on port 80.
# False when the system allows no such network.
find_own_network() {
    local rights=--inh-caps=-all,+net_bind_service
    as_user=(setpriv "$rights" "--ambient-caps=${rights#*=}")
    if [ "$(id -u)" -ne 0 ]; then
        own_network=(unshare --user --map-current-user --keep-caps --net)
        ! "${own_network[@]}" ip link set lo up 2>/dev/null || return 0
        find_root || return 1
    fi
    own_network=("${as_root[@]}" unshare --net)
    if [ "$1" -eq 0 ]; then
        as_user=()
    else
        as_user=(setpriv --reuid "$1" --regid "$2" --init-groups "${as_user[@]:1}")
    fi
    "${own_network[@]}" ip link set lo up 2>/dev/null
}

# run_in_network KIND ARGUMENT...: goes on as this script with these arguments, in the place that
# own_network and as_user name.
run_in_network() {
    local name kept=() kind=$1
    shift
    for name in HOME PATH LANG TERM CI DISPLAY WAYLAND_DISPLAY XAUTHORITY XDG_RUNTIME_DIR \
        XDG_SESSION_TYPE DBUS_SESSION_BUS_ADDRESS TARN_BUILD_DIR TARN_WINDOWS_KIT \
        TARN_HTTPLIB_DIR; do
        [ -z "${!name+set}" ] || kept+=("$name=${!name}")
    done
    clean_up
    # shellcheck disable=SC2016 # the inner shell expands it
    exec "${own_network[@]}" bash -c '[ "$1" = shared ] || ip link set lo up; shift; exec "$@"' _ \
        "$kind" "${as_user[@]}" env "${kept[@]}" TARN_NETWORK="$kind" bash "$0" "$@"
}

# enter_network ARGUMENT...: the boxes of two runs would take each other's addresses. Each run gets a
# network of its own, where the system allows that, and the right to port 80; where it does not,
# runs take turns. Goes on as the same script with the same arguments.
enter_network() {
    [ -z "${TARN_NETWORK:-}" ] || return 0
    if is_display_here && find_own_network "$(id -u)" "$(id -g)"; then
        run_in_network own "$@"
    fi
    ! may_bind_web_port || return 0
    find_root ||
        die "the virtual boxes serve web pages on port 80 of loopback addresses, and this user may
not. Run this as root or as a user of sudo, or allow it once with
  sysctl net.ipv4.ip_unprivileged_port_start=80"
    say "Continuing with the right to serve on port 80."
    own_network=("${as_root[@]}")
    as_user=(setpriv --reuid "$(id -u)" --regid "$(id -g)" --init-groups
        --inh-caps +net_bind_service --ambient-caps +net_bind_service)
    run_in_network shared "$@"
}

# In a network that others use too, only one run at a time has the boxes' addresses.
take_turn() {
    local turn lock=/tmp/tarn-hub-boxes.lock
    [ "${TARN_NETWORK:-}" != own ] || return 0
    [ -e "$lock" ] || (umask 0 && : >"$lock") 2>/dev/null || true
    # Only read, so that it may belong to another user; held until the script ends.
    exec {turn}<"$lock"
    flock -n "$turn" || {
        say "Waiting for the end of another demo or test run, which has the boxes' addresses."
        flock "$turn"
    }
}

# The web engine's sandbox refuses root, and needs what many containers do not give. The program
# then does without the engine; demo and tests show only our own pages to it.
allow_web_engine() {
    if [ "$(id -u)" -eq 0 ] || ! unshare --user --net --pid --fork true 2>/dev/null; then
        say "The browser engine gets no sandbox here; it goes without, as it sees only our own pages."
        export QTWEBENGINE_DISABLE_SANDBOX=1
    fi
}

# Debian gives fping the right to send pings; some containers take it away again.
need_ping() {
    quietly fping -c 1 -q 127.0.0.1 ||
        die "fping may not send pings here. In a container, start that with the capability NET_RAW."
}

make_scratch
