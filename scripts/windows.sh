# shellcheck shell=bash
# What the scripts for Windows share: the kit and the build. Sourced after lib.sh.

# use_kit DIR: sets kit_dir to the unpacked kit.
use_kit() {
    local given packed
    given=$(cd "$1" 2>/dev/null && pwd) || die "there is no kit in $1"
    kit_dir=$given
    [ ! -e "$given/qt5" ] || return 0
    packed=$given/kit.tar.xz
    [ -e "$packed" ] || die "there is neither kit.tar.xz nor qt5 in $1"
    kit_dir=$dir/kit
    if [ ! -e "$kit_dir/whole" ] || [ "$packed" -nt "$kit_dir/whole" ]; then
        rm -rf "$kit_dir"
        mkdir -p "$kit_dir"
        tar -C "$kit_dir" -xf "$packed" && touch "$kit_dir/whole"
    fi
}

# fetch_source PACKAGE FOLDER [TAR_OPTION...]: the source that Debian's package was made from.
fetch_source() {
    local package=$1 to=$2 apt=$dir/apt archive
    shift 2
    say "Fetching the source of $package"
    mkdir -p "$apt/lists/partial" "$apt/cache/archives/partial" "$apt/source" "$to"
    source_list >"$apt/sources.sources"
    (cd "$apt/source" && quietly apt_sources update &&
        quietly apt_sources source --download-only "$package") ||
        die "could not fetch the source of $package."
    archive=$(find "$apt/source" -name "${package}_*.orig.tar.*" | head -n 1)
    tar -C "$to" --strip-components=1 -xf "$archive" "$@"
    rm -rf "$apt"
}

# The web library of the virtual boxes, in the form that needs no building: Debian packs it built for
# this system. Sets httplib to the folder with it.
fetch_httplib() {
    httplib=$dir/httplib
    [ -e "$httplib/httplib.h" ] || fetch_source cpp-httplib "$httplib" --wildcards '*/httplib.h'
}

# The library that checks signatures, static: Debian has none for Windows. Sets sodium to its folder.
build_sodium() {
    local source=$dir/sodium-source
    sodium=$dir/sodium
    [ ! -e "$sodium/lib/libsodium.a" ] || return 0
    rm -rf "$source"
    fetch_source libsodium "$source"
    say "Building libsodium for Windows"
    (cd "$source" && quietly ./autogen.sh -s &&
        quietly ./configure --host=x86_64-w64-mingw32 CC=x86_64-w64-mingw32-gcc-posix \
            --disable-shared --prefix="$sodium" &&
        quietly make -j "$(nproc)" install) || die "could not build libsodium."
    rm -rf "$source"
}

# This system's own package sources, for source packages.
source_list() {
    local file
    for file in /etc/apt/sources.list.d/*.sources; do
        [ ! -e "$file" ] || { sed 's/^Types:.*/Types: deb-src/' "$file" && echo; }
    done
    # In the newer form, too: one file holds one form only.
    sed -nE 's/^deb (\[[^]]*\] )?([^ ]+) ([^ ]+) (.*)/Types: deb-src\nURIs: \2\nSuites: \3\nComponents: \4\n/p' \
        /etc/apt/sources.list 2>/dev/null || true
}

apt_sources() {
    apt-get -q -o Dir::Etc::SourceList="$dir/apt/sources.sources" -o Dir::Etc::SourceParts=/dev/null \
        -o Dir::State::Lists="$dir/apt/lists" -o Dir::Cache="$dir/apt/cache" \
        -o APT::Sandbox::User= "$@"
}

# What lies beside the program besides Qt's libraries, separated as CMake wants it.
runtime_files() {
    local name files=("$kit_dir/curl/curl.exe") IFS=';'
    files+=("$kit_dir"/ffmpeg/bin/*.dll)
    for name in libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll; do
        files+=("$(find_compiler_file "$name")")
    done
    printf '%s\n' "${files[*]}"
}

find_compiler_file() {
    local path
    path=$(x86_64-w64-mingw32-g++-posix -print-file-name="$1")
    [ -e "$path" ] || path=/usr/x86_64-w64-mingw32/lib/$1
    [ -e "$path" ] || die "the compiler has no $1"
    readlink -f "$path"
}

# prepare_windows KIT [boxes]: what a build needs besides packages, from the network too.
prepare_windows() {
    dir=$(build_dir windows)
    mkdir -p "$dir"
    use_kit "$1"
    httplib=${TARN_HTTPLIB_DIR:-}
    [[ -n $httplib || ${2:-} != boxes ]] || fetch_httplib
    build_sodium
}

# build_windows TARGETS [CMAKE_OPTION...]: after prepare_windows.
build_windows() {
    local targets=$1
    shift
    build windows "$targets" -DTARN_WERROR=ON -DTARN_WINDOWS_KIT="$kit_dir" \
        -DTARN_SODIUM_DIR="$sodium" \
        -DTARN_RUNTIME_FILES="$(runtime_files)" -DTARN_HTTPLIB_DIR="$httplib" \
        -DQt5LinguistTools_DIR="$(linguist_tools)" "$@"
}

# Translations are packed by a tool of this system.
linguist_tools() {
    printf '%s/cmake/Qt5LinguistTools\n' "$(pkg-config --variable=libdir Qt5Core)"
}
