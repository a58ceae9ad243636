# Our own command line between two ffmpeg.

krlimage() { timeout 60 "$bin/player/krlimage" "$@"; }

# Frames in a pipe, as a film is graded.
pipe_gives() {
    ffmpeg -v error -f rawvideo -pix_fmt bgra -s "$size" -r 25 -i "$scratch/clip" -f rawvideo -pix_fmt rgba - |
        krlimage apply - -o - --raw "$size:rgba" hueShift 'vignette(blur: 20)' |
        ffmpeg -v error -y -f rawvideo -pix_fmt rgba -s "$size" -r 25 -i - -f rawvideo -pix_fmt bgra "$scratch/made"
    judged hueShift <"$scratch/clip" | judged vignette blur=20 >"$scratch/wanted"
    same_frames "$scratch/made" "$scratch/wanted" $clip_bytes
}

# Frames in files.
sequence_gives() {
    rm -rf "$scratch/frames" "$scratch/done"
    mkdir "$scratch/frames"
    ffmpeg -v error -f rawvideo -pix_fmt bgra -s "$size" -r 25 -i "$scratch/clip" -pix_fmt rgba "$scratch/frames/%03d.png"
    krlimage apply "$scratch/frames/%03d.png" -o "$scratch/done/%03d.png" hueShift
    ffmpeg -v error -y -i "$scratch/done/%03d.png" -f rawvideo -pix_fmt bgra "$scratch/made"
    judged hueShift <"$scratch/clip" >"$scratch/wanted"
    same_frames "$scratch/made" "$scratch/wanted" $clip_bytes
}

part "a pipe" pipe_gives
part "a sequence" sequence_gives

# Fields, with ffmpeg as the judge of their order: the clip's frames are moments of which each gives one field.
interlaced_gives() {
    local moments=$scratch/clip fields=(-vf tinterlace=interleave_top -f rawvideo -pix_fmt gray)
    local rows=(-f rawvideo -pix_fmt gray -s "$((width * 4))x$height" -r 50)
    rm -rf "$scratch/frames" "$scratch/done"
    mkdir "$scratch/frames"
    # Rows of bytes, since ffmpeg interlaces no RGB.
    ffmpeg -v error "${rows[@]}" -i "$moments" "${fields[@]}" - |
        ffmpeg -v error -f rawvideo -pix_fmt bgra -s "$size" -r 25 -i - -vf format=rgb24 "$scratch/frames/%05d.png"
    PATH=$bin/player:$PATH examples/video/fields "$scratch/frames/%05d.png" "$scratch/done/%05d.png" hueShift
    ffmpeg -v error -y -i "$scratch/done/%05d.png" -f rawvideo -pix_fmt rgb24 "$scratch/made"
    judged hueShift <"$moments" | ffmpeg -v error "${rows[@]}" -i - "${fields[@]}" - |
        ffmpeg -v error -y -f rawvideo -pix_fmt bgra -s "$size" -r 25 -i - -f rawvideo -pix_fmt rgb24 "$scratch/wanted"
    same_frames "$scratch/made" "$scratch/wanted" $((clip_bytes * 3 / 8))
}
part "interlaced footage" interlaced_gives
