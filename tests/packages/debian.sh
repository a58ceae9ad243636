# The Debian packages in a fresh system, until nothing of them is left.

install_missing lintian debootstrap
there=$root/mnt/release  # the release and what it is tried on

# Runs a command in the fresh system.
inside() { chroot "$root" env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@" </dev/null; }

lint() { lintian --allow-root --fail-on error "$release"/*.deb; }

# The packages of the system, and every file with its size; packages' own records and caches change by themselves.
everything() {
    inside dpkg-query -W
    (cd "$root" && find . \( -path ./proc -o -path ./dev -o -path ./var/lib/dpkg -o -path ./var/lib/apt -o \
        -path ./var/cache -o -path ./var/log -o -path ./tmp -o -path ./root -o -path ./mnt \) -prune -o \
        \( -type f -o -type l -o -type d \) -printf '%p %y %s\n' | awk '$2 == "d" { print $1; next } { print }' | sort)
}

install_packages() {
    everything >"$scratch/before"
    rm -rf "$there"
    mkdir -p "$there"
    cp "$release"/*.deb examples/c/grade.c examples/pictures/landscape.png "$there"
    inside sh -c 'apt-get install -y --no-install-recommends /mnt/release/*.deb'
}

command_line() {
    [ "$(inside krlimage --version)" = "krlimage $(sed -n 's/^project(krlimage VERSION \([^ ]*\).*/\1/p' CMakeLists.txt)" ]
    inside krlimage apply /mnt/release/landscape.png -o /mnt/release/warm.jpg --look noir 'vignette(blur: 20%)'
    fails inside krlimage compare /mnt/release/landscape.png /mnt/release/warm.jpg
    inside krlimage gallery /mnt/release/landscape.png -o /mnt/release/gallery
    [ -s "$root/usr/share/man/man1/krlimage.1.gz" ]
    inside bash -n /usr/share/bash-completion/completions/krlimage
    [ -s "$root/usr/share/zsh/vendor-completions/_krlimage" ]
}

# A tree of the same version runs what is installed, and builds nothing.
bare_tree() {
    cp -r "$scratch"/source/* "$there/tree"
    timeout 60 chroot "$root" env -i HOME=/root PATH=/usr/bin:/bin /mnt/release/tree/run
    [ -s "$there/tree/out/landscape.png" ] && [ ! -e "$there/tree/build" ]
}

c_program() {
    inside sh -c 'gcc -std=c99 /mnt/release/grade.c $(pkg-config --cflags --libs krlimage) -o /mnt/release/grade'
    inside /mnt/release/grade /mnt/release/grade.ppm
    [ "$(head -c 2 "$there/grade.ppm")" = P6 ]
}

# The same picture by ffmpeg, by gegl and by the command line.
film_programs() {
    inside krlimage apply /mnt/release/landscape.png -o /mnt/release/inverted.pam 'invert(#RGB)'
    inside ffmpeg -nostdin -v error -y -i /mnt/release/landscape.png -vf 'format=bgra,frei0r=krl_invert' -pix_fmt rgba \
        -f rawvideo /mnt/release/by-ffmpeg
    tail -c "$(stat -c %s "$there/by-ffmpeg")" "$there/inverted.pam" | cmp - "$there/by-ffmpeg"
    fails inside ffmpeg -nostdin -v error -i /mnt/release/landscape.png -vf 'frei0r=krl_nothing' -f null -
    inside gegl /mnt/release/landscape.png -o /mnt/release/by-gegl.png -- krl:invert
    inside krlimage compare /mnt/release/by-gegl.png /mnt/release/inverted.pam
}

# Each frei0r module has its descriptions, where Kdenlive and melt look for them.
descriptions() {
    local modules
    modules=$(find "$root/usr/lib/frei0r-1" -name 'krl_*.so' | wc -l)
    [ "$modules" -gt 50 ]
    [ "$(find "$root/usr/share/mlt-7/frei0r" -name '*_frei0r.krl_*.yml' | wc -l)" = "$modules" ]
    [ -s "$root/usr/share/kdenlive/effects/frei0r_krl_vignette.xml" ]
    [ -s "$root/usr/share/kdenlive/transitions/frei0r_krl_composite.xml" ]
}

remove_packages() {
    inside sh -c 'apt-get purge -y --autoremove krlimage libkrlimage1 libkrlimage-dev krlimage-frei0r krlimage-gegl'
    everything >"$scratch/after"
    diff "$scratch/before" "$scratch/after"
}

part lintian lint
system=(gcc libc6-dev pkg-config ffmpeg gegl)
tests/debian-root "$(dpkg --print-architecture)" "$root" "${system[@]}"
mount -t proc proc "$root/proc"
mount --bind /dev "$root/dev"
rm "$root/.ready" # until nothing is left behind
part install install_packages
part "command line" command_line
! has source || part "bare tree" bare_tree
part "C program" c_program
part "film programs" film_programs
part descriptions descriptions
part remove remove_packages
[ "$failed" != 0 ] || echo "${system[*]}" >"$root/.ready"
