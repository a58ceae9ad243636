# Debian's melt with our frei0r modules.

cat >"$scratch/profile" <<PROFILE
description=a small test clip
frame_rate_num=25
frame_rate_den=1
width=$width
height=$height
progressive=1
sample_aspect_num=1
sample_aspect_den=1
display_aspect_num=$width
display_aspect_den=$height
colorspace=709
PROFILE
for clip in long long-over; do
    ffmpeg -v error -y -f rawvideo -pix_fmt bgra -s "$size" -r 25 -i "$scratch/$clip" -c:v rawvideo \
        -pix_fmt rgba "$scratch/$clip.nut"
done

# Renders what the words say into the raw clip "made", on $threads threads.
threads=1
melt_renders() {
    local attempt status
    rm -f "$scratch/made.nut"
    # On a busy machine melt now and then ends, or waits for ever, before its consumer begins: the file is empty then.
    for attempt in 1 2 3; do
        status=0
        melt -silent -profile "$scratch/profile" "$@" -consumer "avformat:$scratch/made.nut" real_time=-$threads \
            mlt_image_format=rgba vcodec=rawvideo pix_fmt=rgba an=1 || status=$?
        [ ! -s "$scratch/made.nut" ] || break
    done
    [ $status = 0 ]
    ffmpeg -v error -y -i "$scratch/made.nut" -f rawvideo -pix_fmt bgra "$scratch/made"
}

melt_gives() { gives melt_renders "$scratch/clip" "$@"; }

melt_passes_frames() {
    melt_renders "$scratch/long.nut"
    same_frames "$scratch/made" "$scratch/clip" $clip_bytes
}

# The blend modes, each by its name.
melt_modes() {
    local mode
    for mode in $("$expected" choices composite blendMethod); do
        melt_gives "$scratch/long.nut" -track "$scratch/long-over.nut" -transition frei0r.krl_composite \
            blendMethodName="$mode" a_track=0 b_track=1 in=0 out=$frames -- \
            composite --with "$scratch/clip-over" blendMethod="#$mode"
    done
}

melt_chain() {
    melt_renders "$scratch/long.nut" -filter frei0r.krl_brightness -filter frei0r.krl_twirl -filter frei0r.krl_hueShift
    judged brightness <"$scratch/clip" | judged twirl | judged hueShift >"$scratch/wanted"
    same_frames "$scratch/made" "$scratch/wanted" $clip_bytes
}

melt_on_threads() {
    threads=4
    melt_chain
}

melt_bad_list() {
    melt_renders "$scratch/long.nut" -filter frei0r.krl_multiColourise 'colourValues=[0: rgb(1' 2>"$scratch/complaints"
    cat "$scratch/complaints"
    [ "$(grep -c '^krl_multiColourise: colourValues: ' "$scratch/complaints")" = 1 ]
    same_frames "$scratch/made" "$scratch/clip" $clip_bytes
}

# A project in a file, as editors write and read it.
melt_project() {
    melt -silent -profile "$scratch/profile" "$scratch/long.nut" -filter frei0r.krl_brightness brightnessInt=0.8 \
        -consumer "xml:$scratch/project.mlt"
    melt_gives "$scratch/project.mlt" -- brightness brightnessInt=153
}

melt_describes() {
    melt -query "filter=frei0r.krl_vignette" >"$scratch/description" 2>/dev/null
    cat "$scratch/description"
    grep -q 'transparency' "$scratch/description"
}

# With our descriptions among those of Debian's MLT it reads them, all of them whole.
melt_reads_descriptions() {
    local data=$scratch/mlt described service
    mkdir -p "$data/frei0r"
    ln -s /usr/share/mlt-7/* "$data" 2>/dev/null || true
    ln -s /usr/share/mlt-7/frei0r/* "$bin"/bindings/frei0r/share/mlt-7/frei0r/* "$data/frei0r"
    export MLT_DATA=$data
    for described in "$data"/frei0r/*_frei0r.krl_*.yml; do
        service=${described##*/}
        service=${service%.yml}
        [ "$step" = 1 ] || [[ $service = *_vignette || $service = *_composite ]] || continue
        melt -query "${service%%_*}=${service#*_}" >"$scratch/description" 2>/dev/null
        diff <(grep -E '^ *(- )?identifier:' "$described") <(grep -E '^ *(- )?identifier:' "$scratch/description")
    done
    melt -query transition=frei0r.krl_composite >"$scratch/description" 2>/dev/null
    grep -q 'title: Blend method' "$scratch/description"
    grep -q -- '- multiply' "$scratch/description"
    melt_gives "$scratch/long.nut" -filter frei0r.krl_vignette -- vignette
}

part "melt, frames as they are" melt_passes_frames
for method in $(methods_in_role filter); do
    part "melt, $method" melt_gives "$scratch/long.nut" -filter "frei0r.krl_$method" -- "$method"
done
for method in $(methods_in_role mixer); do
    part "melt, $method" melt_gives "$scratch/long.nut" -track "$scratch/long-over.nut" \
        -transition "frei0r.krl_$method" a_track=0 b_track=1 in=0 out=$frames -- \
        "$method" --with "$scratch/clip-over"
done
for method in $(methods_in_role source); do
    part "melt, $method" melt_gives "frei0r.krl_$method" out=$((frames - 1)) -- "$method"
done
part "melt, numbers and choices" melt_gives "$scratch/long.nut" -filter frei0r.krl_brightness brightnessInt=0.8 \
    colourOrAlphaName=Alpha -- brightness brightnessInt=153 'colourOrAlpha=#Alpha'
part "melt, a colour" melt_gives "$scratch/long.nut" -filter frei0r.krl_vignette 'theColor=#3366ff' -- \
    vignette 'theColor=rgb(51, 102, 255)'
part "melt, a list" melt_gives "$scratch/long.nut" -filter frei0r.krl_multiColourise \
    'colourValues=[0: rgb(9, 8, 7), 100: rgb(250, 200, 30)]' -- \
    multiColourise 'colourValues=[0: rgb(9, 8, 7), 100: rgb(250, 200, 30)]'
part "melt, every mode of composite" melt_modes
part "melt, a chain of three" melt_chain
part "melt, a chain on four threads" melt_on_threads
part "melt, a bad list" melt_bad_list
part "melt, a project" melt_project
part "melt, descriptions" melt_describes
part "melt, descriptions of ours" melt_reads_descriptions
