# The zip for Windows, unpacked and used under Wine.

install_missing unzip debootstrap binutils-mingw-w64-i686
tests/debian-root i386 build/wine-root wine32 wine
in_wine() { tests/windows/wine build/wine-root "$windows" "$@"; }

contents() {
    unzip -q "$release"/*-windows.zip -d "$scratch/zip"
    tests/windows/imports "$windows/krlImageXtra.x32" tests/windows/windows2000-functions.txt
    [ -s "$windows/LICENSE" ] && [ -s "$windows/examples/brighten.ls" ] && [ -s "$windows/licences/libpng1.6.txt" ]
    # No library that Windows lacks.
    i686-w64-mingw32-objdump -p "$windows/krlimage.exe" | sed -n 's/.*DLL Name: //p' >"$scratch/imported"
    grep -qi '^kernel32\.dll$' "$scratch/imported"
    fails grep -viE '^(advapi32|kernel32|msvcrt|ole32|shell32|user32)\.dll$' "$scratch/imported"
    # Every file that the pages lead to is there.
    local page link
    for page in README.md methods.md; do
        for link in $(grep -oE '\]\([^)#:]+[)#]' "$windows/$page" | tr -d '](#)'); do ls -d "$windows/$link"; done
    done
}

# The lines of the zip's page, with its plug-in in a script.
page_of_the_zip() {
    mkdir "$windows/holiday"
    cp examples/pictures/landscape.png "$windows"
    cp examples/pictures/portrait.png "$windows/holiday"
    in_wine krlimage.exe apply landscape.png -o photo.jpg
    local line words count=0
    while IFS= read -r line; do
        # Quotes are read alike here and there, and backslashes are plain there.
        eval "words=(${line//\\/\\\\})"
        in_wine krlimage.exe "${words[@]:1}"
        count=$((count + 1))
    done < <(grep '^krlimage ' "$windows/README.md")
    [ $count -gt 2 ]
    [ "$(head -c 2 "$windows/warm.jpg" | od -An -tx1)" = " ff d8" ]
    [ -s "$windows/graded/portrait.png" ]
    {
        echo 'on main'
        sed -n '/^ *```lingo$/,/^ *```$/p' "$windows/README.md" | sed '1d;$d'
        echo 'end'
    } >"$windows/page.ls"
    in_wine krlimage.exe run page.ls --cast . --xtra krlImageXtra.x32 | tr -d '\r' >"$scratch/said"
    [ "$(cat "$scratch/said")" = "-- [#error: 0]" ]
}

# The plug-in of the zip, in an example of the zip, gives the picture that the program gives by itself.
examples_of_the_zip() {
    in_wine krlimage.exe run examples/brighten.ls landscape.png bright.png --allow . --xtra krlImageXtra.x32
    in_wine krlimage.exe run examples/brighten.ls landscape.png expected.png --allow .
    in_wine krlimage.exe compare bright.png expected.png
    fails in_wine krlimage.exe compare bright.png landscape.png
}

windows=$scratch/zip/$(basename "$release"/*-windows.zip .zip)
part "Windows zip" contents
part "page of the zip" page_of_the_zip
part "examples of the zip" examples_of_the_zip
