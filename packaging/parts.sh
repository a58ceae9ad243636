# The parts of a release, one function each: from the committed tree into $out. $work is scratch, $version the number.
# Each runs in a shell that ends at the first failure.

# The Debian packages that part $1 is made with.
packages_for() {
    case $1 in
        debian) echo "${build_packages[@]}" debhelper dpkg-dev libchafa-dev libgegl-dev ;;
        windows) echo "${build_packages[@]}" zip g++-mingw-w64-i686-win32 g++-mingw-w64-i686-posix binutils-mingw-w64-i686 ;;
        python) echo "${build_packages[@]}" python3-dev pybind11-dev python3-setuptools python3-wheel python3-build \
            python3-venv python3-numpy python3-pil ;;
        npm | site) echo "${build_packages[@]}" zip emscripten; command -v npm >/dev/null || echo npm ;;
    esac
}

# The committed tree as a tar archive whose names begin with $1, with the same modes for everybody.
archived() { git -c tar.umask=0022 archive --format=tar --prefix="$1" HEAD; }

# The committed tree as folder $1.
exported() {
    rm -rf "$1"
    mkdir -p "$1"
    archived "" | tar -x -C "$1"
}

# A compiler cache where there is one. Release builds have neither assertions nor debugging information, and so nothing of
# the folder that they are compiled in.
launcher() { ! command -v ccache >/dev/null || echo "-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"; }

# Packs folder $2 of $1 as a zip file with the commit's time and in one order.
zipped() {
    find "$1/$2" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +
    (cd "$1" && find "$2" -type f | sort | zip -q -X -9 -@ "$out/$2.zip")
}

make_source() {
    archived "krlimage-$version/" | gzip -n -9 >"$out/krlimage-$version.tar.gz"
}

make_debian() {
    local tree=$work/debian/krlimage-$version
    exported "$tree"
    cp -r "$tree/packaging/debian" "$tree/debian"
    "$tree/packaging/debian-changelog" "$tree/CHANGELOG.md" >"$tree/debian/changelog"
    cd "$tree"
    # No records of this machine, and no packages of debugging symbols. The compiler cache is that of the home folder, which
    # debhelper replaces by another.
    local options
    options=$(launcher)
    DEB_BUILD_OPTIONS="noautodbgsym parallel=$(nproc)" KRL_CMAKE_OPTIONS=${options:+"'${options/=ccache/=env;HOME=$HOME;ccache}'"} \
        dpkg-buildpackage --build=binary --no-sign -d
    mv "$work"/debian/*.deb "$out"
}

make_windows() {
    local tree=$work/windows/tree folder=krlimage-$version-windows
    local place=$work/windows/$folder
    exported "$tree"
    cmake/windows-libraries
    mkdir -p "$tree/build" "$place/examples"
    cp -r build/windows-libraries "$tree/build"
    cd "$tree"
    # Precompiled headers, used where there is no compiler cache, must make no difference.
    local preset options=(-DKRL_TESTS=OFF -DKRL_PRECOMPILED=OFF -DKRL_SAMPLES:STRING=pictures)
    options+=($(launcher))
    for preset in windows windows-programs; do cmake --preset $preset "${options[@]}"; done
    cmake --build build/windows --target krlImageXtra
    cmake --build build/windows-programs --target krlimage
    i686-w64-mingw32-strip build/windows-programs/player/krlimage.exe
    cp build/windows/src/krlImageXtra.x32 build/windows-programs/player/krlimage.exe LICENSE CHANGELOG.md \
        docs/methods.md "$place"
    mkdir "$place/pictures"
    cp -r docs/pictures/methods "$place/pictures"
    cp packaging/windows.md "$place/README.md"
    cp -r build/windows-libraries/licences "$place"
    local package
    for package in libcli11-dev nlohmann-json3-dev libxxhash-dev mingw-w64-common gcc-mingw-w64-base; do
        cp /usr/share/doc/$package/copyright "$place/licences/$package.txt"
    done
    cp examples/*.ls "$place/examples"
    zipped "$work/windows" "$folder"
}

make_python() {
    local tree=$work/python/tree
    exported "$tree"
    cd "$tree"
    /usr/bin/python3 -m build --no-isolation --wheel --outdir "$out" bindings/python
}

# The npm package in a tree that the page is made from, too.
built_npm() {
    local tree=$work/npm/tree
    [ ! -e "$tree/build/javascript/krlimage.tgz" ] || return 0
    exported "$tree"
    "$tree/bindings/javascript/build"
}

make_npm() {
    built_npm
    cp "$work/npm/tree/build/javascript/krlimage.tgz" "$out/krlimage-npm-$version.tgz"
}

make_site() {
    local folder=krlimage-$version-page
    built_npm
    "$work/npm/tree/site/build"
    mv "$work/npm/tree/build/site" "$work/$folder"
    zipped "$work" "$folder"
}
