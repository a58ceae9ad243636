# Debian's gegl with our module of operations.

export GEGL_PATH=$bin/bindings/gegl/gegl-0.4:$(pkg-config --variable=pluginsdir gegl-0.4)

# The first frame of raw clip $1 as picture $2.
first_frame() {
    ffmpeg -v error -y -f rawvideo -pix_fmt bgra -s "$size" -i "$1" -frames:v 1 -pix_fmt rgba "$2"
}
first_frame "$scratch/clip" "$scratch/in.png"
first_frame "$scratch/clip-over" "$scratch/over.png"
for clip in clip clip-over; do head -c $((width * height * 4)) "$scratch/$clip" >"$scratch/frame${clip#clip}"; done

# Runs a chain of operations on the picture into the raw frame "made".
gegl_runs() {
    rm -f "$scratch/made.png"
    gegl "$scratch/in.png" -- "$@" gegl:png-save path="$scratch/made.png" bitdepth=8 2>"$scratch/complaints"
    # GEGL counts its own caches as leaked where an operation works on whole pictures.
    ! grep -vE '^$|leaked|gegl_tile_cache_destroy' "$scratch/complaints"
    ffmpeg -v error -y -i "$scratch/made.png" -f rawvideo -pix_fmt bgra "$scratch/made"
}

gegl_gives() { gives gegl_runs "$scratch/frame" "$@"; }

gegl_lists_all() {
    diff <(awk '{ print "krl:" $1 }' "$scratch/methods" | sort) <(gegl --list-all 2>/dev/null | grep '^krl:' | sort)
    gegl --info krl:vignette >"$scratch/information" 2>/dev/null
    grep -q '^title  *Vignette$' "$scratch/information"
    grep -q '^transparency .*default: 200' "$scratch/information"
}

# A region alone has the bytes that it has in the whole picture.
gegl_region() {
    local crop=(gegl:crop x=33 y=17 width=41 height=23)
    gegl_runs "$@" "${crop[@]}"
    ffmpeg -v error -y -f rawvideo -pix_fmt bgra -s "$size" -i "$scratch/wanted" -vf crop=41:23:33:17:exact=1 \
        -f rawvideo -pix_fmt bgra "$scratch/region"
    same_frames "$scratch/made" "$scratch/region" $((41 * 23 * 4))
}

gegl_regions() {
    local method
    for method in twirl hueShift vignette levels; do
        judged "$method" <"$scratch/frame" >"$scratch/wanted"
        gegl_region "krl:$method"
    done
    judged composite --with "$scratch/frame-over" <"$scratch/frame" >"$scratch/wanted"
    gegl_region krl:composite "aux=[" gegl:load path="$scratch/over.png" "]"
}

gegl_bad_list() {
    gegl "$scratch/in.png" -- krl:multiColourise 'colourValues= [0: rgb(1' gegl:png-save \
        path="$scratch/made.png" bitdepth=8 2>"$scratch/complaints"
    cat "$scratch/complaints"
    [ "$(grep -c '^krl:multiColourise: colourValues: ' "$scratch/complaints")" = 1 ]
    ffmpeg -v error -y -i "$scratch/made.png" -f rawvideo -pix_fmt bgra "$scratch/made"
    cmp "$scratch/made" "$scratch/frame"
}

part "gegl, the list of operations" gegl_lists_all
for method in $(methods_in_role filter); do part "gegl, $method" gegl_gives "krl:$method" -- "$method"; done
for method in $(methods_in_role mixer); do
    part "gegl, $method" gegl_gives "krl:$method" "aux=[" gegl:load path="$scratch/over.png" "]" -- \
        "$method" --with "$scratch/frame-over"
done
for method in $(methods_in_role source); do
    part "gegl, $method" gegl_gives "krl:$method" width=$width height=$height -- "$method"
done
part "gegl, numbers and choices" gegl_gives krl:brightness brightnessInt=153 colourOrAlpha=Alpha -- \
    brightness brightnessInt=153 'colourOrAlpha=#Alpha'
part "gegl, a colour and a switch" gegl_gives krl:vignette 'theColor=#3366ff' invert=true scaleX=1.5 -- \
    vignette 'theColor=rgb(51, 102, 255)' 'invert=#true' scaleX=1.5
part "gegl, a place" gegl_gives krl:radialBlur radialPoint-x=0.25 -- radialBlur 'radialPoint=point(28, 29)'
part "gegl, a list" gegl_gives krl:multiColourise 'colourValues= [0: rgb(9, 8, 7), 100: rgb(250, 200, 30)] ' -- \
    multiColourise 'colourValues=[0: rgb(9, 8, 7), 100: rgb(250, 200, 30)]'
part "gegl, regions" gegl_regions
part "gegl, a bad list" gegl_bad_list
