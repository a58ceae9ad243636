# The commands of docs/video.md that need ffmpeg, melt or gegl, as they stand there, with what `cmake --install` puts
# into the home folder.

. tests/documents/commands.sh

furnish_videos() {
    local component page=$PWD/docs/video.md
    for component in library frei0r gegl; do
        cmake --install "$bin" --prefix "$scratch/home/.local" --component $component
    done
    mkdir -p "$scratch/video/frames" "$scratch/video/in" "$scratch/video/over"
    commands_of "$page" >"$scratch/commands"
    cp examples/pictures/landscape.png "$scratch/video/in.png"
    cp examples/pictures/logo.png "$scratch/video"
    cp examples/pictures/landscape.png "$scratch/video/in/0001.png"
    cp examples/pictures/logo.png "$scratch/video/over/0001.png"
    cd "$scratch/video"
    ffmpeg -v error -f lavfi -i testsrc2=size=1920x1080:rate=25 -frames:v 4 in.mp4
    ffmpeg -v error -f lavfi -i mandelbrot=size=1920x1080:rate=25 -frames:v 4 logo.mov
}

# Runs a command after those that set variables. What it prints or writes is left in the file "made".
makes_something() {
    local library
    library=$(dirname "$(find "$scratch/home/.local" -path '*gegl-0.4/krlimage.so')")
    rm -f out.mp4 out.png project.mlt made
    touch begin
    timeout 60 env -u MLT_FREI0R_PLUGIN_PATH HOME="$scratch/home" PATH="$bin/player:$PATH" \
        GEGL_PATH="$library:$(pkg-config --variable=pluginsdir gegl-0.4)" \
        bash -c "set -o pipefail; $(grep '^export' "$scratch/commands"); $1" </dev/null >printed || [[ $1 = melt* ]] || return 1
    if [[ $1 = *-query* || $1 = *--info* ]]; then
        grep -v '^#' printed >made # which says that there is no such effect
    else
        find . -newer begin -type f ! -name printed -exec cp {} made \;
    fi
    [ -s made ]
}

documented() {
    cd "$scratch/video"
    makes_something "$1"
}

# melt is tried again where it ends, or waits for ever, before it begins. It passes over effects that it does not find, so
# it must not make the same without ours.
documented_for_melt() {
    cd "$scratch/video"
    makes_something "$1" || makes_something "$1" || makes_something "$1"
    mv made with
    local without=${1//frei0r.krl_/frei0r.no_}
    makes_something "$without" || makes_something "$without" || makes_something "$without" || true
    ! cmp with made 2>&1 || return 1
}

part "docs/video.md, its files" furnish_videos
while IFS= read -r command; do
    case $command in
        export*) ;;
        melt*) part "docs/video.md: $command" documented_for_melt "$command" ;;
        *) part "docs/video.md: $command" documented "$command" ;;
    esac
done <"$scratch/commands"
