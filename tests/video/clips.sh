# A clip of 64 frames with every level of alpha, and one to lay over it. The height is no multiple of 8; the width
# is one of 16, because ffmpeg pads other rows in a way that frei0r modules cannot know of.
width=112 height=58 frames=64
size=${width}x$height clip_bytes=$((width * height * 4 * frames))

# Writes a raw clip of $1 from the source $2, of a frame more than the tests read.
make_clip() {
    ffmpeg -v error -y -f lavfi \
        -i "$2=size=$size:rate=25,format=rgba,geq=r='r(X,Y)':g='g(X,Y)':b='b(X,Y)':a='mod(X*5+N*7+Y,256)'" \
        -frames:v $((frames + 1)) -f rawvideo -pix_fmt bgra "$1"
}
make_clip "$scratch/long" testsrc2
make_clip "$scratch/long-over" mandelbrot
for clip in long long-over; do head -c $clip_bytes "$scratch/$clip" >"$scratch/clip${clip#long}"; done

# The raw clip on standard input as the C interface makes it: METHOD [NAME=VALUE]...
judged() { "$expected" "$size" "$@"; }
