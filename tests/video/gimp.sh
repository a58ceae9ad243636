# Debian's GIMP in batch mode, without a display, with our module in the user's folder of GEGL plug-ins.

export GIMP2_DIRECTORY=$scratch/gimp
mkdir -p "$GIMP2_DIRECTORY/plug-ins/krl-test" "$scratch/data/gegl-0.4/plug-ins"
cp "$bin/bindings/gegl/gegl-0.4/krlimage.so" "$scratch/data/gegl-0.4/plug-ins"
# No plug-ins but the three that this takes: GIMP asks each one at its first start.
for plugin in script-fu file-png; do
    ln -s "$(pkg-config --variable=gimplibdir gimp-2.0)/plug-ins/$plugin" "$GIMP2_DIRECTORY/plug-ins"
done
echo '(plug-in-path "${gimp_dir}/plug-ins")' >"$GIMP2_DIRECTORY/gimprc"
cc tests/video/gimp-plugin.c -o "$GIMP2_DIRECTORY/plug-ins/krl-test/krl-test" $(pkg-config --cflags --libs gimp-2.0 gegl-0.4)

# Opens the picture, applies operations in turn and saves the result as the raw frame "made".
gimp_runs() {
    local load="(car (gimp-file-load RUN-NONINTERACTIVE \"$scratch/in.png\" \"in.png\"))" script operation
    script="(let* ((image $load) (layer (car (gimp-image-get-active-layer image))))"
    for operation in "$@"; do script+=" (krl-test-apply RUN-NONINTERACTIVE layer \"$operation\")"; done
    # The last number keeps the colours of transparent pixels.
    script+=" (file-png-save2 RUN-NONINTERACTIVE image layer \"$scratch/gimp.png\" \"gimp.png\" 0 9 0 0 0 0 0 0 1))"
    env -u GEGL_PATH -u DISPLAY XDG_DATA_HOME="$scratch/data" timeout 240 gimp-console -i -d -f -b "$script" \
        -b "(gimp-quit 0)" </dev/null
    ffmpeg -v error -y -i "$scratch/gimp.png" -f rawvideo -pix_fmt bgra "$scratch/made"
}

gimp_three() {
    gimp_runs krl:hueShift krl:twirl krl:vignette >"$scratch/gimp-log" 2>&1
    cat "$scratch/gimp-log"
    grep -q "^$(wc -l <"$scratch/methods") operations$" "$scratch/gimp-log"
    grep -q '^pixel-distance, relative-coordinate, no unit$' "$scratch/gimp-log"
    judged hueShift <"$scratch/frame" | judged twirl | judged vignette >"$scratch/wanted"
    same_frames "$scratch/made" "$scratch/wanted" $((width * height * 4))
}

part "GIMP, three operations" gimp_three
