# For the tests that run what documents show.

# The commands of document $1, a line each: the lines of its code blocks, and indented ones, in no other language. A
# line that ends in a backslash or a pipe goes on in the next.
commands_of() {
    awk '
        /^ *```/ { inside = !inside; isShell = /```(sh)?$/; blank = 0; next }
        inside { if (isShell) print; next }
        /^    [^ ]/ && blank { print; next }
        { blank = /^$/ }' "$1" |
        sed -e ':more' -e '/[\\|]$/{N;s/\\\n */ /;s/|\n */| /;b more' -e '}' | sed -E 's/^ *(\$ )?//; /^(#.*)?$/d'
}
