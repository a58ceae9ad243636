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

# Runs a command after those that set variables. It must print something if it asks, and otherwise write a file.
documented() {
    cd "$scratch/video"
    local attempt library
    library=$(dirname "$(find "$scratch/home/.local" -path '*gegl-0.4/krlimage.so')")
    # melt is tried again where it ends, or waits for ever, before it begins.
    for attempt in 1 2 3; do
        rm -f out.mp4 out.png project.mlt
        touch begin
        timeout 120 env -u MLT_FREI0R_PLUGIN_PATH HOME="$scratch/home" PATH="$bin/player:$PATH" \
            GEGL_PATH="$library:$(pkg-config --variable=pluginsdir gegl-0.4)" \
            bash -c "set -o pipefail; $(grep '^export' "$scratch/commands"); $1" </dev/null >printed || [[ $1 = melt* ]]
        if [[ $1 = *-query* || $1 = *--info* ]]; then
            grep -i vignette printed && return
        else
            find . -newer begin -type f -size +0 ! -name printed | grep . && return
        fi
        [[ $1 = melt* ]] || break
    done
    return 1
}

part "docs/video.md, its files" furnish_videos
while IFS= read -r command; do
    [[ $command = export* ]] || part "docs/video.md: $command" documented "$command"
done <"$scratch/commands"
