# Throwaway Windows machines, made with Wine. Source this file, then:
#   machine_start NAME   a fresh machine, cloned from a base made once; sets WINEPREFIX, DISPLAY and the rest
#   machine_start NAME shown   the same, on the display of the user
#   machine_run CMD...   runs a Windows program on it and gives its exit code
#   machine_use_fonts    gives it the fonts of Windows' dialogs; the package fonts-wine must be there
#   machine_wait_idle    waits until what the product and its setup started has ended
#   machine_stop         ends the machine's programs and its display, and removes it
# A machine and its display belong to the shell that started them; `trap machine_stop EXIT` keeps that promise.

machine_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)/build/machines
wine_program=/usr/lib/wine/wine64
wine_server=/usr/lib/wine/wineserver64
[ -x "$wine_server" ] || wine_server=/usr/lib/wine/wineserver

# Without a UTF-8 locale Wine can't make files whose names go beyond ASCII.
export LC_ALL=C.UTF-8
export WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="

machine_make_base() (
    mkdir -p "$machine_root"
    exec 9>"$machine_root/base.lock"
    flock 9
    [ -f "$machine_root/base/made" ] && exit 0
    rm -rf "$machine_root/base"
    export WINEPREFIX=$machine_root/base
    "$wine_program" wineboot -i >"$machine_root/base.out" 2>&1 9>&-
    "$wine_server" -w
    # Desktop, Documents and the like are links into the host's home folder; a throwaway machine has its own.
    find "$WINEPREFIX/drive_c/users" -type l | while read -r link; do
        rm "$link"
        mkdir -p "$link"
    done
    touch "$WINEPREFIX/made"
)

machine_start() {
    machine_make_base || { echo "machine.sh: the base machine could not be made" >&2; return 1; }
    machine_dir=$machine_root/$1-$$
    rm -rf "$machine_dir"
    mkdir -p "$machine_dir"
    cp -al "$machine_root/base" "$machine_dir/prefix"
    # The registry is rewritten in place and must not be shared with the base.
    for hive in system user userdef; do
        rm "$machine_dir/prefix/$hive.reg"
        cp "$machine_root/base/$hive.reg" "$machine_dir/prefix/$hive.reg"
    done
    export WINEPREFIX=$machine_dir/prefix
    [ "${2:-}" = shown ] || machine_display_start
    "$wine_server" -p
}

machine_display_start() {
    # No window manager runs on this display. One that is waited for costs two seconds for each window that goes.
    printf '\n[Software\\\\Wine\\\\X11 Driver]\n"Managed"="N"\n' >>"$WINEPREFIX/user.reg"
    Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$machine_dir/display" >/dev/null 2>&1 &
    machine_xvfb=$!
    for _ in $(seq 100); do
        [ -s "$machine_dir/display" ] && break
        sleep 0.1
    done
    DISPLAY=:$(cat "$machine_dir/display")
    export DISPLAY
}

# The dialogs' own font and the caption's, in the measures that Windows has.
machine_use_fonts() {
    cp /usr/share/wine/fonts/{marlett.ttf,tahoma.ttf,tahomabd.ttf,sserife.fon} "$WINEPREFIX/drive_c/windows/Fonts"
}

# Standard output goes to a file and is shown afterwards: Windows' own services inherit it, and a pipe would stay open.
machine_run() {
    local code=0
    "$wine_program" "$@" >"$machine_dir/stdout" 2>"$machine_dir/stderr" </dev/null || code=$?
    tr -d '\r' <"$machine_dir/stdout"
    return $code
}

machine_stop() {
    [ -n "${machine_dir:-}" ] || return 0
    "$wine_server" -k 2>/dev/null || true
    "$wine_server" -w 2>/dev/null || true
    machine_end_unborn
    [ -n "${machine_xvfb:-}" ] && kill "$machine_xvfb" 2>/dev/null && wait "$machine_xvfb" 2>/dev/null
    rm -rf "$machine_dir"
    machine_dir=
    return 0
}

# A program whose starter was killed before it was complete is unknown to the machine, and would wait for ever.
machine_end_unborn() {
    local environment process
    for environment in /proc/[0-9]*/environ; do
        process=${environment//[!0-9]/}
        if [[ $(readlink "/proc/$process/exe") == "${wine_program%/*}"/* ]] &&
            tr '\0' '\n' <"$environment" | grep -qxF "WINEPREFIX=$WINEPREFIX"; then
            kill -9 "$process" || true
        fi
    done 2>/dev/null
}

# Waits until the programs of the product and of its setup that still run on the machine have ended: 30 seconds at most.
machine_wait_idle() {
    for _ in $(seq 300); do
        machine_is_idle && return 0
        sleep 0.1
    done
    echo 'machine.sh: a program of the product did not end' >&2
    return 1
}

machine_is_idle() {
    local process
    for process in $(pgrep -f 'Lumacap8\.exe|LumUnInst\.exe|regsvr32|uni[0-9A-Fa-f]+\.tmp'); do
        if tr '\0' '\n' 2>/dev/null <"/proc/$process/environ" | grep -qxF "WINEPREFIX=$WINEPREFIX"; then
            return 1
        fi
    done 2>/dev/null
    return 0
}
