# shellcheck shell=bash
# A Windows of our own under Wine, programs in it, and what is seen of them. Sourced after lib.sh.

checks=0
failures=0

# expect WHAT COMMAND...: the command is true.
expect() {
    local what=$1
    shift
    checks=$((checks + 1))
    if "$@"; then
        say "  ok: $what"
    else
        failures=$((failures + 1))
        say "  FAILED: $what"
    fi
}

# exits CODE COMMAND...
exits() {
    local wanted=$1 code=0
    shift
    "$@" || code=$?
    [ "$code" -eq "$wanted" ] || { say "  (exit code $code)" && return 1; }
}

# until_true SECONDS COMMAND...
until_true() { wait_until "$1" $$ "${@:2}"; }

# Sets drive to drive C: of a new Windows that ends with the script, and user to who uses it.
start_wine() {
    # Without the two parts for which Wine would ask whether to download them.
    export WINEPREFIX=$scratch/wine WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
    # The programs in it have folders of its own.
    unset APPDATA XDG_DATA_HOME
    at_exit+=(end_wine)
    quietly timeout -k 5 180 wineboot -i || die "Wine did not start."
    drive=$WINEPREFIX/drive_c
    user=$(cd "$drive/users" && find . -mindepth 1 -maxdepth 1 -type d ! -name Public -printf '%f\n')
    [ -n "$user" ] || die "Wine has no user."
}

end_wine() { wineserver -k; }

# Nothing that is waited for takes longer than two minutes.
wine() { timeout -k 5 120 "$(type -P wine)" "$@"; }

# set_windows VERSION: win10 or win7.
set_windows() {
    quietly wine reg add 'HKCU\Software\Wine' /v Version /d "$1" /f
    timeout -k 5 60 wineserver -w || die "Wine's programs do not end."
}

# run_words PROGRAM WORD...: the words reach the program without quotes, blanks
# or not: so installers want what stands last.
run_words() {
    local words program=$1
    shift
    read -ra words <<<"$*"
    wine "$program" "${words[@]}" >/dev/null 2>&1
}

# C:\… of a path below drive C:.
windows_path() {
    # shellcheck disable=SC1003 # that is a backslash
    tr / '\\' <<<"C:${1#"$drive"}"
}

# Nothing when there is none.
registry_value() {
    wine reg query "$1" /v "$2" 2>/dev/null | tr -d '\r' | sed -nE "s/^ +$2 +REG_[A-Z]+ +//p"
}

# What names a window is a regular expression.
window_count() { xdotool search --onlyvisible --name "$1" 2>/dev/null | wc -l; }
has_window() { [ "$(window_count "$1")" -gt 0 ]; }
press() { xdotool key "$1"; }

gone() { ! kill -0 "$1" 2>/dev/null; }
