#!/usr/bin/env bash
# Run by script/soak-packages as root in a bare Debian 12 root, from a folder with the packages (new),
# those of a version before (old) and shells.py: installs, uses, upgrades, removes and purges them as
# a person would, and checks that what is theirs stays as it is.
set -euo pipefail
trap 'echo "in-root.sh: failed at line $LINENO: $BASH_COMMAND" >&2' ERR
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8

say() { printf -- '-- %s\n' "$*"; }
fail() { echo "in-root.sh: $*" >&2; exit 1; }
install() { apt-get -q -y -o Dpkg::Use-Pty=0 install --no-install-recommends "$@" > apt.log 2>&1 || { tail -n 20 apt.log; fail "apt-get install $*"; }; }
as_someone() { su someone -c "cd; $1"; }
# What someone owns, name and content; the programs' logs are for them to write.
belongings() { (cd /home/someone && find . ! -path './.local/state/*' -printf '%y %p %l\n' | sort && find . -type f ! -path './.local/state/*' -print0 | sort -z | xargs -0 sha256sum); }
leftovers() { find /usr /etc /var/lib /opt -xdev \( -name '*sweepctl*' -o -name '*sweepwright*' \) ! -path '/var/lib/apt/*' -print; }

apt-get -q update > apt.log 2>&1 || { tail apt.log; fail "apt-get update"; }
useradd -m -s /bin/bash someone

say "sweepctl alone brings no Qt and works at once"
install ./new/sweepctl_*.deb
[[ -z "$(dpkg-query -W 'libqt6*' 2> /dev/null || true)" ]] || fail "sweepctl brought Qt"
as_someone "sweepctl --version" | grep -E '^sweepctl [0-9.]+ \([0-9a-f]{12}, [0-9-]{10}\)$'
as_someone "sweepctl --help" | grep -q '^sweepctl - '
as_someone "sweepctl scan" | grep -q .
[[ "$(as_someone "sweepctl language zh-Hans > /dev/null; sweepctl text 'Tab Home'")" != "Tab Home" ]] || fail "the texts were not found"
apt-get -q -y purge sweepctl > apt.log 2>&1

say "the version before, with what a person keeps"
install ./old/sweepctl_*.deb ./old/sweepwright_*.deb
as_someone "sweepctl sample-device phone > /dev/null
    sweepctl --device-root phone whitelist paths add /var/mobile/Media > /dev/null
    sweepctl --device-root phone clean cache --yes > /dev/null
    sweepctl --device-root phone history" | grep -q .
[[ -e /usr/share/sweepwright/of-the-version-before ]] || fail "the version before is not what it should be"
before="$(belongings)"

say "upgrade over it"
install ./new/sweepctl_*.deb ./new/sweepwright_*.deb
[[ ! -e /usr/share/sweepwright/of-the-version-before ]] || fail "the upgrade left a file of the version before"
for package in sweepctl sweepwright; do
    [[ "$(dpkg-query -W -f '${Version}' $package)" == "$(dpkg-deb -f new/${package}_*.deb Version)" ]] || fail "$package was not upgraded"
    [[ -z "$(dpkg -V $package)" ]] || fail "dpkg -V $package: $(dpkg -V $package)"
done
[[ "$(belongings)" == "$before" ]] || fail "the upgrade changed what someone owns"
as_someone "sweepctl --device-root phone whitelist paths" | grep -q /var/mobile/Media

say "the app opens a window"
install xvfb xauth
as_someone "sweepwright --version" | grep -E '^sweepwright [0-9.]+ \('
mkfifo said
chown someone said
timeout 120 su someone -c "cd; QSG_INFO=1 exec xvfb-run -a sweepwright --device-root phone" > said 2>&1 &
app=$!
drawn=
while IFS= read -r line; do
    echo "   $line"
    case "$line" in
        *'is not installed'* | *'qrc:'* | *'no window'*) fail "the app said: $line" ;;
        *qt.scenegraph*) drawn=yes; break ;;
    esac
done < said
kill "$app" 2> /dev/null || true
wait "$app" || true
[[ -n "$drawn" ]] || fail "the app drew nothing"

say "manual, completions, desktop entry and icons are where they are looked for"
install man-db bash-completion zsh fish python3 desktop-file-utils appstream
as_someone "man sweepctl" | grep -q 'whitelist paths add'
as_someone "man sweepwright" | grep -q -- --device-root
bash -c '. /usr/share/bash-completion/bash_completion; _completion_loader sweepctl || true; complete -p sweepctl' | grep -q _sweepctl
[[ "$(zsh -f -c 'autoload -Uz compinit; compinit -u -D; print $_comps[sweepctl]')" == _sweepctl ]] || fail "zsh knows no completion"
as_someone "fish -c 'complete -C \"sweepctl whitel\"'" | grep -q '^whitelist'
python3 shells.py /usr
desktop-file-validate /usr/share/applications/com.sweepwright.app.desktop
appstreamcli validate --no-net /usr/share/metainfo/com.sweepwright.app.metainfo.xml
for size in 16x16 48x48 256x256 scalable symbolic; do
    [[ -n "$(ls /usr/share/icons/hicolor/$size/apps/com.sweepwright.app*)" ]] || fail "no icon of $size"
done

say "remove, install again, purge"
as_someone true
before="$(belongings)"
apt-get -q -y remove sweepctl sweepwright > apt.log 2>&1
hash -r
if command -v sweepctl || command -v sweepwright; then fail "a program is left"; fi
[[ "$(belongings)" == "$before" ]] || fail "removal changed what someone owns"
install ./new/sweepctl_*.deb ./new/sweepwright_*.deb
as_someone "sweepctl --device-root phone scan" > /dev/null
apt-get -q -y purge sweepctl sweepwright > apt.log 2>&1
[[ "$(belongings)" == "$before" ]] || fail "the purge changed what someone owns"
[[ -z "$(leftovers)" ]] || fail "left behind: $(leftovers)"
say "all as it should be"
