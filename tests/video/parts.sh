# Counts what passes and what fails, and goes on after a failure.
passed=0 failed=0

# The programs that are tested, each bounded in time and without a keyboard.
ffmpeg() { timeout 60 ffmpeg -nostdin "$@"; }
melt() { timeout 30 melt "$@" </dev/null; }
gegl() { timeout 60 gegl "$@" </dev/null; }

# Runs one part of the tests, in a shell of its own that ends at the first failure, and shows what it printed.
part() {
    local name=$1
    shift
    # Not as a condition, in which the shell would pass over failures.
    (set -eu; "$@") >"$scratch/log" 2>&1 &
    if wait $!; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        echo "FAILED: $name"
        # Without what melt says at every start.
        grep -av -e LADSPA -e '^$' "$scratch/log" | tail -n 12
    fi
}

finish() {
    echo "$passed passed, $failed failed"
    [ "$failed" = 0 ] && [ "$passed" -gt 0 ]
}

# The names of the methods in role $1: all of them, or in the short form every twelfth and always the first.
methods_in_role() { awk -v role="$1" '$2 == role { print $1 }' "$scratch/methods" | awk -v step="$step" 'NR % step == 1 % step'; }

# Whether the frames of raw clip $1 are the first $3 bytes of raw clip $2, and no others.
same_frames() {
    [ "$(stat -c %s "$1")" = "$3" ] || { echo "$1 has $(stat -c %s "$1") bytes in place of $3"; return 1; }
    cmp -n "$3" "$1" "$2"
}

# What maker $1 makes of the words before -- is what the judge makes of raw clip $2 by the call after it.
gives() {
    local maker=$1 clip=$2 words=()
    shift 2
    while [ "$1" != -- ]; do words+=("$1"); shift; done
    shift
    "$maker" "${words[@]}"
    judged "$@" <"$clip" >"$scratch/wanted"
    same_frames "$scratch/made" "$scratch/wanted" "$(stat -c %s "$clip")"
}
