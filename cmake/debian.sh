# A minimal Debian in a folder, for scripts that prove something on a fresh system. To be sourced,
# behind stages.sh; as root.

make_debian() { # RELEASE FOLDER
    local mirror script=/usr/share/debootstrap/scripts/$1
    [ -e "$script" ] || script=${script%/*}/sid # a release that debootstrap is older than
    command -v debootstrap >/dev/null || fail 'debootstrap is missing'
    mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Identifier: Packages' 'Origin: Debian' |
        grep -v security | head -n 1)
    watched debootstrap --variant=minbase "$1" "$2" "$mirror" "$script"
}

# Runs a shell line in the Debian, with a clean environment. MOUNTS is a line, too, that runs before,
# with the folder in $system. Nobody else sees the mounts, and all that was started ends with the line.
inside_debian() { # FOLDER USER LINE [MOUNTS]
    unshare --mount --pid --fork --kill-child --propagation private bash -euc '
        system=$1 user=$2 line=$3
        mount -t proc proc "$system/proc"
        mount -t devpts devpts "$system/dev/pts" -o newinstance,mode=620,ptmxmode=666
        mount -t tmpfs tmpfs "$system/dev/shm"
        eval "$4"
        home=/root
        [ "$user" = root ] || home=/home/$user
        exec chroot --userspec="$user" "$system" env -i HOME="$home" \
            PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
            bash -c "$line"' bash "$1" "$2" "$3" "${4:-}"
}
