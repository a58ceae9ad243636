# Debian's ffmpeg with our frei0r modules.

# Runs the clip through the filters $1 into $2.
ffmpeg_filter() {
    ffmpeg -v error -y -f rawvideo -pix_fmt bgra -s "$size" -r 25 -i "$scratch/clip" -vf "$1" \
        -f rawvideo -pix_fmt bgra "$2"
}

# Filters $1 give what the judge makes of the call that follows.
ffmpeg_gives() {
    ffmpeg_filter "$1" "$scratch/made"
    shift
    judged "$@" <"$scratch/clip" >"$scratch/wanted"
    same_frames "$scratch/made" "$scratch/wanted" $clip_bytes
}

ffmpeg_source() {
    ffmpeg -v error -y -f lavfi -i "frei0r_src=size=$size:framerate=25:filter_name=krl_$1:filter_params=0" -frames:v $frames \
        -f rawvideo -pix_fmt bgra "$scratch/made"
    judged "$1" <"$scratch/clip" >"$scratch/wanted"
    same_frames "$scratch/made" "$scratch/wanted" $clip_bytes
}

ffmpeg_chain() {
    ffmpeg_filter frei0r=krl_brightness,frei0r=krl_twirl,frei0r=krl_hueShift "$scratch/made"
    judged brightness <"$scratch/clip" | judged twirl | judged hueShift >"$scratch/wanted"
    same_frames "$scratch/made" "$scratch/wanted" $clip_bytes
}

ffmpeg_eight_at_once() {
    local graph="split=8" outputs=() i
    for i in 1 2 3 4 5 6 7 8; do graph+="[in$i]"; done
    for i in 1 2 3 4 5 6 7 8; do
        graph+=";[in$i]frei0r=krl_fastGaussianBlur[out$i]"
        outputs+=(-map "[out$i]" -f rawvideo -pix_fmt bgra "$scratch/made$i")
    done
    ffmpeg -v error -y -f rawvideo -pix_fmt bgra -s "$size" -r 25 -i "$scratch/clip" \
        -filter_complex_threads 8 -filter_complex "$graph" "${outputs[@]}"
    judged fastGaussianBlur <"$scratch/clip" >"$scratch/wanted"
    for i in 1 2 3 4 5 6 7 8; do same_frames "$scratch/made$i" "$scratch/wanted" $clip_bytes; done
}

# A bad list is one line on standard error, and the frames pass unchanged.
ffmpeg_bad_list() {
    ffmpeg_filter "frei0r=filter_name=krl_multiColourise:filter_params='[0\\: rgb(1'" "$scratch/made" 2>"$scratch/complaints"
    cat "$scratch/complaints"
    [ "$(grep -c '^krl_multiColourise: colourValues: ' "$scratch/complaints")" = 1 ]
    same_frames "$scratch/made" "$scratch/clip" $clip_bytes
}

# What ffmpeg refuses ends with a message and a status.
ffmpeg_refuses() {
    ! ffmpeg_filter "$1" "$scratch/made" 2>"$scratch/complaints"
    cat "$scratch/complaints"
    grep -q "$2" "$scratch/complaints"
}

# A module without its library beside it.
ffmpeg_without_library() {
    mkdir -p "$scratch/alone/modules"
    cp "$modules/krl_invert.so" "$scratch/alone/modules"
    FREI0R_PATH=$scratch/alone/modules ffmpeg_refuses frei0r=krl_invert krl_invert
}

for method in $(methods_in_role filter); do
    part "ffmpeg, $method" ffmpeg_gives "frei0r=krl_$method" "$method"
done
for method in $(methods_in_role source); do part "ffmpeg, $method" ffmpeg_source "$method"; done
part "ffmpeg, numbers and choices" ffmpeg_gives 'frei0r=krl_brightness:0.8|1' brightness brightnessInt=153 'colourOrAlpha=#Alpha'
part "ffmpeg, a choice by its name" ffmpeg_gives 'frei0r=krl_brightness:0.8||Alpha' brightness brightnessInt=153 'colourOrAlpha=#Alpha'
part "ffmpeg, a colour and a switch" ffmpeg_gives 'frei0r=krl_vignette:1|0.2/0.4/1|1|0.5|0.5|0.5|0.5|0.1|1|y' \
    vignette 'shape=#rectangle' 'theColor=rgb(51, 102, 255)' transparency=255 scaleX=1.0 scaleY=1.0 offsetX=0 \
    offsetY=0 blur=20 'colourOrAlpha=#ALPHA' 'invert=#true'
part "ffmpeg, a place" ffmpeg_gives 'frei0r=krl_radialBlur:0.2|0.25/0.5' radialBlur radialLength=9 'radialPoint=point(28, 29)'
part "ffmpeg, a list" ffmpeg_gives \
    "frei0r=filter_name=krl_multiColourise:filter_params='[0\\: rgb(9, 8, 7), 100\\: rgb(250, 200, 30)]|1'" \
    multiColourise 'colourValues=[0: rgb(9, 8, 7), 100: rgb(250, 200, 30)]' strength=1.0
part "ffmpeg, a chain of three" ffmpeg_chain
part "ffmpeg, eight instances at once" ffmpeg_eight_at_once
part "ffmpeg, a bad list" ffmpeg_bad_list
part "ffmpeg, a number that is none" ffmpeg_refuses frei0r=krl_brightness:lots 'lots'
part "ffmpeg, no such module" ffmpeg_refuses frei0r=krl_nothing krl_nothing
part "ffmpeg, no library" ffmpeg_without_library
