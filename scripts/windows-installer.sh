# shellcheck shell=bash
# Makes the installer for Windows from a build in $dir. Sourced after windows.sh.

# The licences of what is shipped, as this system's packages have them.
copy_licences() {
    local to=$1 docs=/usr/share/doc name from
    for name in GPL-3 LGPL-2.1 LGPL-3; do
        cp "/usr/share/common-licenses/$name" "$to/$(tr '[:upper:]' '[:lower:]' <<<"$name").txt"
    done
    while read -r name from; do
        cp -L "$docs/$from/copyright" "$to/$name.txt" || die "there is no licence of $from."
    done <<'LIST'
qt libqt5core5a
qt-translations qttranslations5-l10n
ffmpeg libavcodec-dev
curl curl
gcc gcc-mingw-w64-base
mingw-w64 mingw-w64-x86-64-dev
nsis nsis
libsodium libsodium-dev
LIST
    cp "$root_dir/packaging/linux/copyright" "$to/tarn-hub-parts.txt"
    cp "$root_dir/packaging/windows/third-party.txt" "$to/third-party.txt"
}

# Qt says a few words itself.
copy_qt_texts() {
    local from
    from=$(pkg-config --variable=prefix Qt5Core)/share/qt5/translations
    mkdir -p "$1"
    cp "$from"/qtbase_{zh_CN,ko}.qm "$1/" || die "there are no translations of Qt in $from."
}

# make_tree TREE: what an installation consists of, without the symbols that only debuggers read.
make_tree() {
    local tree=$1
    rm -rf "$tree"
    quietly cmake --install "$dir" --prefix "$tree" --component program || die "no tree was made."
    copy_licences "$tree/licences"
    copy_qt_texts "$tree/translations"
    find "$tree" \( -name '*.exe' -o -name '*.dll' \) -exec x86_64-w64-mingw32-strip --strip-unneeded {} +
    # As Windows' own editor likes them.
    find "$tree" -name '*.txt' -exec sed -i 's/\r$//; s/$/\r/' {} +
}

# The folders of a tree, those inside first.
tree_folders() { find "$1" -mindepth 1 -depth -type d -printf '%P\n'; }

# write_manifest TREE VERSION: the list that the next version goes by.
write_manifest() {
    local list=$scratch/installed.txt
    {
        printf 'Tarn Hub %s\n' "$2"
        printf -- '-\tUninstall.exe\n'
        find "$1" -type f -printf '%s\t%P\n' | sort -t $'\t' -k 2 | tr / '\\'
    } >"$list"
    mv "$list" "$1/installed.txt"
}

# write_files TREE: NSIS's commands that unpack it.
write_files() {
    local folder
    for folder in . $(tree_folders "$1" | sort); do
        # shellcheck disable=SC2016 # NSIS expands it
        printf 'SetOutPath "$INSTDIR\\new.tmp%s"\n' "$([ "$folder" = . ] || tr / '\\' <<<"\\$folder")"
        find "$1/$folder" -maxdepth 1 -type f -printf 'File "%p"\n' | sort
    done
}

# write_removal TREE: those that remove just its files.
write_removal() {
    # shellcheck disable=SC2016
    find "$1" -type f -printf 'Delete "$INSTDIR\\%P"\n' | sort | tr / '\\'
    # shellcheck disable=SC2016
    tree_folders "$1" | sed 's/.*/RMDir "$INSTDIR\\&"/' | tr / '\\'
}

# The version that the build of $dir has.
built_version() { sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$dir/CMakeCache.txt"; }

# make_installer [FOLDER]: sets installer to the file. What is in the folder is installed, too.
make_installer() {
    local work=$dir/installer tree=$dir/installer/tree version
    version=$(built_version)
    [ -n "$version" ] || die "the build in $dir does not tell its version."
    installer=$dir/tarn-hub-$version-setup.exe
    make_tree "$tree"
    [ $# -eq 0 ] || cp -r "$1/." "$tree"
    write_manifest "$tree" "$version"
    write_files "$tree" >"$work/files.nsh"
    write_removal "$tree" >"$work/removal.nsh"
    sed 's/\r$//' "$tree/licences/tarn-hub.txt" "$tree/licences/third-party.txt" >"$work/licence.txt"
    x86_64-w64-mingw32-strip -o "$work/helper-small.exe" "$work/helper.exe"
    quietly makensis -V2 -WX -NOCONFIG -INPUTCHARSET UTF8 \
        -DVERSION="$version" -DOUTPUT="$installer" -DFILES="$work/files.nsh" \
        -DREMOVAL="$work/removal.nsh" -DHELPER_FILE="$work/helper-small.exe" \
        -DLICENCE="$work/licence.txt" -DICON="$root_dir/resources/icon/icon/TH.ico" \
        -DKIBIBYTES="$(du -sk "$tree" | cut -f 1)" \
        "$root_dir/packaging/windows/installer.nsi" || die "makensis made no installer."
}
