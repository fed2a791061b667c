#!/usr/bin/env bash
# The Debian package, as a user of a desktop gets it: built from the build folder, checked by
# lintian, installed on this machine with apt (which brings in what it depends on), then seen
# from the desktop's side: the project file type, its default application, the menu entry, a
# project opened through that entry on a private X server, and every file the running program
# maps belonging to a package it depends on. Finally purged, and nothing it installed is left.
# The machine may be reused: the package is purged on the way out whatever happens, and a copy
# left by an interrupted run is purged first.
# Usage: install-package.sh BUILD_FOLDER WITH_XVFB
set -euo pipefail
build=$1
with_xvfb=$2
here=$(cd "$(dirname "$0")" && pwd)

if [[ $(id -u) -ne 0 ]]; then
    echo "SKIPPED: installs a package on the machine, which needs root"
    exit 77
fi

export DEBIAN_FRONTEND=noninteractive
# Never waiting long: on another apt, or on an archive that does not answer.
apt_options=(-q -o DPkg::Lock::Timeout=60 -o Acquire::Retries=1
             -o Acquire::http::Timeout=20 -o Acquire::https::Timeout=20)

dir=$(mktemp -d)
chmod 755 "$dir" # apt reads the package as its own unprivileged user
installed_here=false
cleanup() {
    set +e
    if $installed_here && dpkg-query -W -f='${db:Status-Status}' kairon 2>/dev/null | grep -qv not-installed; then
        echo "purging kairon"
        timeout 180 apt-get purge -y "${apt_options[@]}" kairon > "$dir/purge-on-exit.log" 2>&1 \
            || cat "$dir/purge-on-exit.log"
    fi
    rm -rf "$dir"
}
trap cleanup EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM

fail() {
    echo "FAIL: $*"
    exit 1
}

is_installed() {
    [[ $(dpkg-query -W -f='${db:Status-Status}' kairon 2>/dev/null) == installed ]]
}

# The package, from what the build folder has built.
if ! cmake --build "$build" --target package > "$dir/build.log" 2>&1; then
    tail -n 40 "$dir/build.log"
    fail "the package target failed"
fi
deb=$(ls -t "$build"/kairon_*.deb 2>/dev/null | head -n 1)
[[ -n "$deb" ]] || fail "no kairon_*.deb in $build"
cp "$deb" "$dir/"
deb=$dir/$(basename "$deb")
chmod 644 "$deb"
echo "package: $(basename "$deb")"

# lintian: no error. Its warnings are shown.
if ! lintian --fail-on error --tag-display-limit 0 "$deb" > "$dir/lintian.log" 2>&1; then
    cat "$dir/lintian.log"
    fail "lintian finds errors in the package"
fi
sed 's/^/lintian: /' "$dir/lintian.log"

if dpkg-query -W -f='${db:Status-Status}' kairon 2>/dev/null | grep -qv not-installed; then
    echo "kairon is on the machine already, from an earlier run: purging it first"
    timeout 180 apt-get purge -y "${apt_options[@]}" kairon > "$dir/purge-before.log" 2>&1 \
        || { cat "$dir/purge-before.log"; fail "cannot purge the kairon already installed"; }
fi

# Installed with what it depends on. Should the package lists be missing or stale, they are
# refreshed once; an archive out of reach is said as such.
installed_here=true
install_package() {
    timeout 300 apt-get install -y "${apt_options[@]}" "$deb" > "$dir/install.log" 2>&1
}
if ! install_package; then
    echo "apt-get install failed once; refreshing the package lists"
    if ! timeout 120 apt-get update "${apt_options[@]}" > "$dir/update.log" 2>&1; then
        cat "$dir/install.log" "$dir/update.log"
        fail "apt cannot reach the package archive (apt-get update failed, see above): the" \
             "package's dependencies cannot be installed"
    fi
    if ! install_package; then
        cat "$dir/install.log"
        if grep -q "Failed to fetch\|Could not resolve\|Temporary failure\|Unable to fetch" "$dir/install.log"; then
            fail "apt cannot reach the package archive to download the package's dependencies"
        fi
        fail "apt-get install of the package failed"
    fi
fi
is_installed || fail "kairon is not installed after apt-get install"
grep -E "^(Setting up|Processing triggers)" "$dir/install.log" | sed 's/^/apt: /'
dpkg -L kairon | sort > "$dir/files"

for file in /usr/bin/kairon /usr/share/applications/kairon.desktop \
            /usr/share/mime/packages/kairon.xml /usr/share/doc/kairon/copyright \
            /usr/share/icons/hicolor/scalable/apps/kairon.svg \
            /usr/share/icons/hicolor/48x48/apps/kairon.png \
            /usr/share/icons/hicolor/scalable/mimetypes/application-x-kairon-project.svg \
            /usr/share/icons/hicolor/48x48/mimetypes/application-x-kairon-project.png; do
    grep -qx "$file" "$dir/files" || fail "the package does not install $file"
done

# The desktop's view, with no desktop environment's own tools and nothing of a user's settings.
mkdir -p "$dir/home"
desktop_env=(env -u XDG_CURRENT_DESKTOP -u DESKTOP_SESSION -u KDE_FULL_SESSION
             -u GNOME_DESKTOP_SESSION_ID -u MATE_DESKTOP_SESSION_ID -u DBUS_SESSION_BUS_ADDRESS
             -u DISPLAY -u WAYLAND_DISPLAY -u XDG_DATA_DIRS -u XDG_CONFIG_DIRS
             HOME="$dir/home" XDG_CONFIG_HOME="$dir/home/.config"
             XDG_DATA_HOME="$dir/home/.local/share")
mkdir -p "$dir/show"
project=$dir/show/show.orvprjct
cat > "$project" <<'JSON'
{"name": "Soirée", "cues": [{"name": "Ouverture", "duration": 600}]}
JSON
chmod -R a+rX "$dir/show"

type=$("${desktop_env[@]}" xdg-mime query filetype "$project" || true)
[[ "$type" == application/x-kairon-project ]] \
    || fail "xdg-mime query filetype gives '$type', not application/x-kairon-project"
echo "xdg-mime: show.orvprjct is $type"
default=$("${desktop_env[@]}" xdg-mime query default application/x-kairon-project || true)
[[ "$default" == kairon.desktop ]] \
    || fail "xdg-mime query default application/x-kairon-project gives '$default', not kairon.desktop"
echo "xdg-mime: its default application is $default"

desktop-file-validate /usr/share/applications/kairon.desktop > "$dir/validate.log" 2>&1 \
    || { cat "$dir/validate.log"; fail "desktop-file-validate rejects the menu entry"; }
sed 's/^/desktop-file-validate: /' "$dir/validate.log"

# A double-click on the project, on a private X server.
"$with_xvfb" "$here/open-from-desktop.sh" "$project" "$dir" \
    || fail "the project did not open in the installed program"

# Every file the program mapped (libraries, plugins, drivers, typefaces, Qt's translations)
# comes from the package itself, a package it depends on, directly or not, or an essential
# package: on a clean system, apt brings in all it needs.
apt-cache depends --recurse --installed --no-recommends --no-suggests --no-conflicts \
    --no-breaks --no-replaces --no-enhances kairon 2>/dev/null \
    | grep -v '^ ' | tr -d '<>' | sed 's/:.*//' > "$dir/depended"
# The essential packages are on every Debian system: no package names them.
dpkg-query -W -f='${Package} ${Essential}\n' | awk '$2 == "yes" { print $1 }' > "$dir/essential"
sort -u "$dir/depended" "$dir/essential" > "$dir/closure"
# The name-service modules that this machine's /etc/nsswitch.conf names (libnss_mdns4_minimal
# when libnss-mdns is installed…) are the machine's choice, loaded by any program that resolves a
# host name: they are passed over, whichever package brought them.
services=$(sed -n 's/#.*//; s/^[a-z]*:\(.*\)/\1/p' /etc/nsswitch.conf 2>/dev/null \
    | tr -s ' \t' '\n' | grep -E '^[a-z0-9_]+$' | sort -u || true)
for service in $services; do
    sed -i "\\#/libnss_${service}\\.so[.0-9]*\$#d" "$dir/mapped"
done
mapfile -t mapped < "$dir/mapped"
# Debian 12 records some libraries under /lib, which is /usr/lib: both names are asked. A file
# no package owns was made on the machine (a cache, the locale archive) and is passed over.
dpkg -S "${mapped[@]}" "${mapped[@]/#\/usr\/lib\//\/lib\/}" 2>/dev/null \
    | grep -v '^diversion' | sort -u > "$dir/owners" || true
missing=()
while read -r line; do
    for owner in $(echo "${line%%: /*}" | tr ',' ' '); do
        grep -qx "${owner%%:*}" "$dir/closure" || missing+=("$line")
    done
done < "$dir/owners"
if ((${#missing[@]})); then
    printf '  %s\n' "${missing[@]}"
    fail "the program maps files of packages it does not depend on"
fi
echo "the $(wc -l < "$dir/mapped") files the program mapped all come from its dependencies"

# Purged: nothing it installed is left, but the folders other packages share.
installed_here=false
timeout 180 apt-get purge -y "${apt_options[@]}" kairon > "$dir/purge.log" 2>&1 \
    || { cat "$dir/purge.log"; fail "apt-get purge kairon failed"; }
! is_installed || fail "kairon is still installed after apt-get purge"
left=()
while read -r path; do
    if [[ -d "$path" && ! -L "$path" ]]; then
        dpkg -S "$path" > /dev/null 2>&1 || left+=("$path/")
    elif [[ -e "$path" || -L "$path" ]]; then
        left+=("$path")
    fi
done < "$dir/files"
if ((${#left[@]})); then
    printf '  %s\n' "${left[@]}"
    fail "the purge left files of the package behind"
fi
[[ ! -e /usr/share/mime/application/x-kairon-project.xml ]] \
    || fail "the purge left the project type in the shared MIME database"
type=$("${desktop_env[@]}" xdg-mime query filetype "$project" || true)
[[ "$type" != application/x-kairon-project ]] \
    || fail "xdg-mime still knows the project type after the purge"
echo "purged: the $(wc -l < "$dir/files") paths it installed are gone, shared folders aside"
