# shellcheck shell=bash
# Roots with a bare Debian 12, to try in them what a person with nothing else installed would do;
# sourced behind common.sh by scripts that run as root.

# bare_roots FOLDER: makes the bare root that fresh copies, in FOLDER/base, unless it is there.
bare_roots() {
    [[ "$(id -u)" -eq 0 ]] || die "only root may make a root folder"
    place="$(realpath -m "$1")"
    base="$place/base"
    mkdir -p "$place"
    # What debootstrap made is kept: it is the same the next time. The mirror is this machine's own.
    if [[ -e "$base/.made" ]]; then return; fi
    rm -rf "$base"
    local mirror
    mirror="$(sed -nE 's/^(deb|URIs:) +(\[[^]]*\] +)?([^ ]+).*/\3/p' /etc/apt/sources.list /etc/apt/sources.list.d/* 2> /dev/null |
        head -n 1)"
    debootstrap --variant=minbase --include=ca-certificates bookworm "$base" "$mirror" > "$place/debootstrap.log" 2>&1 ||
        { tail -n 5 "$place/debootstrap.log"; die "debootstrap failed"; }
    touch "$base/.made"
}

# leave_roots: unmounts all that is mounted in a root, by fresh or by what was tried there.
leave_roots() {
    local folder
    # Without a place of ours, every mount would lie below it.
    [[ -n "${place:-}" ]] || return 0
    while IFS= read -r folder; do umount "$folder" || true; done \
        < <(awk -v below="$place/" 'index($5, below) == 1 { print $5 }' /proc/self/mountinfo | sort -r)
}
# Whoever is ended midway leaves nothing mounted either.
trap leave_roots EXIT

# fresh NAME: a copy of the bare root. The one before is left.
fresh() {
    local to="$place/$1"
    leave_roots
    rm -rf --one-file-system "$to"
    cp -a --reflink=auto "$base" "$to"
    cp -a /etc/apt/. "$to/etc/apt/"
    cp /etc/resolv.conf /etc/hosts "$to/etc/"
    mount -t proc proc "$to/proc"
    mount --rbind /dev "$to/dev"
    mount --make-rslave "$to/dev"
}

# open_fuse NAME: lets everyone in that root mount with FUSE, whatever this computer allows.
open_fuse() {
    mknod -m 666 "$place/$1/opt/fuse" c 10 229
    mount --bind "$place/$1/opt/fuse" "$place/$1/dev/fuse"
}

# within NAME FOLDER COMMAND: runs a command line in that root and folder, with nothing inherited.
within() {
    chroot "$place/$1" env -i PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
        HOME=/root TERM=dumb http_proxy="${http_proxy:-}" https_proxy="${https_proxy:-}" \
        sh -c "cd $2 && $3" < /dev/null
}
