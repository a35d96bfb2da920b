#!/usr/bin/env bash
# Run by script/soak-packages as root in a bare Debian 12 root, from a folder with the packages (new):
# installs sweepctl and connects to a phone, which is a real sshd on this computer that lets nobody leave the folder of a made-up device.
set -euo pipefail
trap 'echo "connect.sh: failed at line $LINENO: $BASH_COMMAND" >&2' ERR
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8

say() { printf -- '-- %s\n' "$*"; }
fail() { echo "connect.sh: $*" >&2; exit 1; }
phone=/srv/phone
address=someone@127.0.0.1:2222
apt-get -q update > apt.log 2>&1 || { tail apt.log; fail "apt-get update"; }
apt-get -q -y install --no-install-recommends ./new/sweepctl_*.deb procps > apt.log 2>&1 || { tail apt.log; fail "apt-get install"; }
id -u someone > /dev/null 2>&1 || useradd -m -s /bin/bash someone
install -d -m 700 -o someone -g someone /run/user/1000
# as_someone COMMAND: as a person who is logged in; "ifuse" is a stand-in, for there is no cable here.
as_someone() { su someone -c "export XDG_RUNTIME_DIR=/run/user/1000 PATH=\$HOME/stand-ins:\$PATH; cd; $1"; }
mounts() { grep -c ' /run/user/1000/sweepwright/' /proc/self/mountinfo || true; }
# expect STATUS TEXT COMMAND: how a call must end, and what it must say.
expect() {
    local status=0 said
    said="$(as_someone "$3" 2>&1)" || status=$?
    [[ "$status" -eq "$1" && "$said" == *"$2"* ]] || fail "$3: status $status, said: $said"
}

say "without the programs that mount, it says what to install"
expect 1 "sshfs is missing, which mounts the device; on Debian: sudo apt install sshfs" "sweepctl connect $address"
expect 1 "sudo apt install ifuse" "sweepctl connect usb"
expect 2 'is neither "usb" nor [USER@]HOST[:PORT]' "sweepctl connect -- -oProxyCommand=true"
apt-get -q -y install --no-install-recommends sshfs openssh-server > apt.log 2>&1 || { tail apt.log; fail "apt-get install"; }

say "a phone: a real sshd"
[[ -e /etc/mtab ]] || ln -s /proc/self/mounts /etc/mtab
as_someone "sweepctl sample-device phone > /dev/null"
usermod -p "*" someone  # no password, but not locked either
mkdir -p "$phone" /run/sshd
cp -a /home/someone/phone/. "$phone"
chown root:root "$phone"
chmod 755 "$phone"
as_someone "mkdir -p .ssh stand-ins && ssh-keygen -q -t ed25519 -N '' -f .ssh/id_ed25519 && cp .ssh/id_ed25519.pub .ssh/authorized_keys
    printf '#!/bin/sh\n[ \"\$1\" = --root ] && exec sshfs -p 2222 someone@127.0.0.1:/ \"\$2\"\n' > stand-ins/ifuse && chmod +x stand-ins/ifuse"
cat > sshd.conf << END
Port 2222
ListenAddress 127.0.0.1
PasswordAuthentication no
PidFile /run/phone.pid
Subsystem sftp internal-sftp
ForceCommand internal-sftp
ChrootDirectory $phone
END
/usr/sbin/sshd -f "$PWD/sshd.conf"
trap 'kill "$(cat /run/phone.pid)"' EXIT

say "a host that ssh does not know is not connected to"
expect 1 "sshfs ended with status 1; see what ssh says: ssh -p 2222 someone@127.0.0.1" "sweepctl connect $address"
as_someone "ssh -o BatchMode=yes -p 2222 someone@127.0.0.1 2>&1 || true" | grep -q 'Host key verification failed'
[[ "$(mounts)" -eq 0 ]] || fail "something was mounted"
as_someone "ssh-keyscan -p 2222 127.0.0.1 2> /dev/null >> .ssh/known_hosts"

say "connect, look, clean"
expect 0 "$address is connected" "sweepctl connect $address"
[[ "$(mounts)" -eq 1 ]] || fail "nothing was mounted"
expect 0 "$address" "sweepctl devices"
expect 0 "$address is connected" "sweepctl connect $address"
[[ "$(mounts)" -eq 1 ]] || fail "it was mounted twice"
[[ "$(as_someone 'sweepctl scan')" == "$(sweepctl --device-root $phone scan)" ]] || fail "a scan of the connected device is another"
as_someone "sweepctl clean downloads --yes" | grep -q .
[[ "$(sweepctl --device-root $phone size downloads)" == "0 B" ]] || fail "the device was not cleaned"
[[ ! -e /home/someone/.local/share/sweepwright/sample-device ]] || fail "a sample device was made"
[[ "$(as_someone 'sweepctl complete disconnect some')" == "$address"* ]] || fail "the name is not completed"

say "one that answers no more is told, and cleared"
kill -9 "$(pgrep -u someone -x sshfs)"
expect 3 "is connected but answers no more" "sweepctl scan"
expect 0 "answered no more and was unmounted" "sweepctl devices"
[[ "$(mounts)" -eq 0 ]] || fail "it is still mounted"
as_someone "sweepctl connect $address > /dev/null"
kill -9 "$(pgrep -u someone -x sshfs)"
expect 0 "$address is connected" "sweepctl connect $address"

say "two devices, and the end of both"
expect 0 "usb is connected" "sweepctl connect usb"
expect 0 "usb" "sweepctl devices"
expect 2 "no device other is connected" "sweepctl disconnect other"
expect 0 "usb is disconnected" "sweepctl disconnect"
expect 0 "$address is disconnected" "sweepctl disconnect $address"
[[ "$(mounts)" -eq 0 ]] || fail "something is still mounted"
expect 2 "no device is connected" "sweepctl disconnect"
[[ -z "$(ls /run/user/1000/sweepwright/devices)" ]] || fail "folders are left"
say "all as it should be"
