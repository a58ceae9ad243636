# The parts of a release, one function each: from the committed tree into $out. $work is scratch, $version the number.
# Each runs in a shell that ends at the first failure.

# The Debian packages that part $1 is made with.
packages_for() {
    case $1 in
        debian) echo "${build_packages[@]}" debhelper dpkg-dev libgegl-dev ;;
    esac
}

# The committed tree as folder $1.
exported() {
    rm -rf "$1"
    mkdir -p "$1"
    git archive HEAD | tar -x -C "$1"
}

# A compiler cache where there is one.
launcher() { ! command -v ccache >/dev/null || echo "-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"; }

make_source() {
    git archive --format=tar --prefix="krlimage-$version/" HEAD | gzip -n -9 >"$out/krlimage-$version.tar.gz"
}

make_debian() {
    local tree=$work/debian/krlimage-$version
    exported "$tree"
    cp -r "$tree/packaging/debian" "$tree/debian"
    "$tree/packaging/debian-changelog" "$tree/CHANGELOG.md" >"$tree/debian/changelog"
    cd "$tree"
    # No records of this machine, and no packages of debugging symbols.
    DEB_BUILD_OPTIONS="noautodbgsym parallel=$(nproc)" KRL_CMAKE_OPTIONS=$(launcher) \
        dpkg-buildpackage --build=binary --no-sign -d
    mv "$work"/debian/*.deb "$out"
}
