# The modules where they are installed; ./test --packages tries those of the Debian package.

# Modules below prefix $1 find the library there, and give what they should.
modules_below() {
    local module
    module=$(find "$1" -name krl_invert.so)
    ldd "$module" | grep -q "libkrlimage.so.1 => $(readlink -f "$1")/"
    export FREI0R_PATH=${module%/*}
    ffmpeg_gives frei0r=krl_invert invert
}

installed_modules() {
    local component
    for component in library frei0r; do
        cmake --install "$bin" --prefix "$scratch/usr" --component $component
    done
    [ "$(ls "$scratch/usr/lib/frei0r-1" | wc -l)" = "$(wc -l <"$scratch/methods")" ]
    mv "$scratch/usr" "$scratch/moved"
    modules_below "$scratch/moved"
}

part "installed modules" installed_modules
