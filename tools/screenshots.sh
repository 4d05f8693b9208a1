#!/bin/bash
# Goes through the wizard by the keyboard alone, on a throwaway Windows machine with a display of its own, and takes the
# pictures in docs/images. Each wait has a bound; a window that doesn't come ends the script.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/prerequisites.sh imagemagick xdotool fonts-wine
. tools/machine.sh

wizard='^(Lumacap Setup|Please read .*)$'
box='^Lumacap 8$'
browser='^Browse for Folder$'
images=$PWD/docs/images
target="drive_c/Program Files/Lumacap 8"

fail() {
    echo "screenshots.sh: $1" >&2
    exit 1
}

# usage: await MESSAGE COMMAND...   until the command succeeds; 20 seconds at most
await() {
    local message=$1
    shift
    for _ in $(seq 200); do
        "$@" && return 0
        sleep 0.1
    done
    fail "$message"
}

# Sets $window to the topmost of the windows of that title.
find_window() { window=$(xdotool search --onlyvisible --name "$1" 2>/dev/null | tail -1) && [ -n "$window" ]; }
no_window() { ! find_window "$1"; }

press() { xdotool key --delay 100 "$@"; }

# True if the window looks like itself a moment ago, and unlike the last picture of a window of its title.
is_new_and_still() {
    find_window "$1" || return 1
    mv -f "$machine_dir/now.png" "$machine_dir/before.png" 2>/dev/null || return 1
    import -silent -window "$window" "$machine_dir/now.png" 2>/dev/null || return 1
    cmp -s "$machine_dir/now.png" "$machine_dir/before.png" && ! cmp -s "$machine_dir/now.png" "$machine_dir/last$1.png"
}

# usage: picture NAME TITLE   waits for what the last keys lead to, and takes its picture
picture() {
    : >"$machine_dir/now.png"
    await "no picture of $1" is_new_and_still "$2"
    cp "$machine_dir/now.png" "$machine_dir/last$2.png"
    [ "$1" = - ] || convert "$machine_dir/now.png" -strip -define png:exclude-chunks=date "$images/$1.png"
}

# Answers the box by a key and waits until it has gone.
answer() {
    press "$2"
    await "the box $1 stays" no_window "$1"
}

open_setup() {
    (cd "$WINEPREFIX/drive_c/Package" && exec "$wine_program" 'C:\Package\setup.exe' "$@") >/dev/null 2>&1 </dev/null &
    setup=$!
    rm -f "$machine_dir"/last*
}

# Without a window manager a program's first window isn't drawn as the active one: it gets the focus anew.
activate() {
    await "no window $1" find_window "$1"
    xdotool windowfocus --sync "$(xdotool search --maxdepth 0 --name '.*' | head -1)"
    xdotool mousemove --window "$window" 100 10 click 1 mousemove 1023 767
    press Tab shift+Tab # a click hides the mark of the focus, a key shows it
}

# The product's own first run is the last thing that an install starts.
await_product() { await 'the product was not started' test -s "$machine_dir/product.txt"; }
end_setup() {
    press Return
    wait "$setup" || fail 'the setup failed'
    machine_wait_idle
    rm -f "$machine_dir/product.txt"
}

first_install() {
    open_setup
    activate "$wizard"
    picture welcome "$wizard"
    press Return
    picture agreement "$wizard"
    press Return
    picture folder "$wizard"
    press Return
    picture group "$wizard"
    press Tab Tab X Y Return # past Cancel to the name, which Tab selects
    picture box-group "$box"
    answer "$box" Return
    press Home shift+End
    xdotool type 'Lumacap 8'
    press Return
    picture ready "$wizard"
    press Escape
    picture box-cancel "$box"
    answer "$box" Return
    press Return
    await_product
    picture report "$wizard"
    end_setup
}

portable_install() {
    open_setup
    activate "$box"
    picture box-version "$box"
    answer "$box" Return
    picture - "$wizard"
    press Return
    picture - "$wizard"
    press Return
    picture folder-repeated "$wizard"
    press Tab Tab Down
    picture folder-portable "$wizard"
    press Return
    picture box-portable "$box"
    answer "$box" Return
    press Tab Return
    picture - "$browser"
    press Left Left Left Left Down # from the installed product up to the drive, and on to the next one
    picture browse "$browser"
    answer "$browser" Return
    picture - "$wizard"
    press alt+n
    picture - "$wizard"
    press Return
    await 'no portable product' test -s "$machine_dir/stick/Lumacap 8/LumUnInst.log"
    picture report-portable "$wizard"
    end_setup
}

# A folder that can't make way takes the place of a file in use: its successor waits for the next boot.
restart_install() {
    for name in capff.json capff.json.old capff.json.old2; do
        rm -f "$WINEPREFIX/$target/$name"
        mkdir "$WINEPREFIX/$target/$name"
    done
    open_setup -sconf
    await_product
    activate "$wizard"
    picture report-restart "$wizard"
}

machine_start screenshots
trap machine_stop EXIT
machine_use_fonts
mkdir -p "$images"
echo 'Taking the pictures in docs/images (about 20 seconds)'
cp -r build/package "$WINEPREFIX/drive_c/Package"
# A stick for the portable installation, with a file of its owner's: under Wine, an empty one could be removed itself.
mkdir "$machine_dir/stick"
echo >"$machine_dir/stick/letter.txt"
ln -s "$machine_dir/stick" "$WINEPREFIX/dosdevices/e:"
machine_run reg add 'HKLM\Software\Wine\Drives' /v e: /d floppy /f >/dev/null
# No web browser of the host's opens.
machine_run reg add 'HKCR\http\shell\open\command' /ve /d 'cmd.exe /c rem' /f >/dev/null
export LUMACAP_REPORT="Z:$machine_dir/product.txt"
first_install
portable_install
restart_install
ls "$images"
