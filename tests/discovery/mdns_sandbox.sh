#!/bin/sh
# Runs a command beside a private mDNS daemon, so that discovery can be tested against the real
# thing without a packet reaching the machine's network:
#   - a network namespace that has only loopback, up and with multicast on;
#   - a D-Bus system bus of its own (the machine's bus, if any, is left alone);
#   - avahi-daemon in the namespace, allowed on lo alone, with a private /run.
# The command runs inside the namespace with DBUS_SYSTEM_BUS_ADDRESS set to the private bus and
# SONDAR_MDNS_SANDBOX set to the namespace's name. Whatever this script started is stopped by PID
# when it ends, however it ends.
#
#   mdns_sandbox.sh COMMAND [ARG...]
#
# Exit status: the command's; 77 (skip) where no namespace can be made, e.g. when not root.
set -u
PATH=$PATH:/usr/sbin:/sbin

skip() { echo "SKIP: $*" >&2; exit 77; }
fail() { echo "mdns_sandbox: $*" >&2; exit 1; }

[ $# -ge 1 ] || fail "usage: $0 COMMAND [ARG...]"
[ "$(id -u)" -eq 0 ] || skip "not root: a private network namespace for mDNS needs root"
command -v ip >/dev/null 2>&1 || skip "ip (iproute2) not found: no network namespaces"
for tool in avahi-daemon avahi-browse dbus-daemon; do
    command -v "$tool" >/dev/null 2>&1 || fail "$tool not found (scripts/install-deps installs it)"
done

ns=sondar-mdns-$$
dir=$(mktemp -d /tmp/sondar-mdns.XXXXXX) || fail "no temporary directory"
bus=unix:path=$dir/system_bus_socket
ns_made=
command_pid=

# The daemons write their PIDs into $dir/*.pid just before they start.
cleanup() {
    [ -n "$command_pid" ] && kill "$command_pid" 2>/dev/null
    for daemon in avahi dbus; do
        [ -s "$dir/$daemon.pid" ] && kill "$(cat "$dir/$daemon.pid")" 2>/dev/null
    done
    wait
    [ -n "$ns_made" ] && ip netns del "$ns"
    rm -rf "$dir"
}
trap cleanup EXIT
trap 'exit 130' INT TERM HUP

inside() { ip netns exec "$ns" env DBUS_SYSTEM_BUS_ADDRESS="$bus" SONDAR_MDNS_SANDBOX="$ns" "$@"; }

# Starts a daemon in the background inside the namespace: NAME SETUP COMMAND [ARG...]. SETUP is
# shell text run first in the daemon's own process; the daemon's PID goes to $dir/NAME.pid and
# its output to $dir/NAME.log.
start() {
    name=$1
    setup=$2
    shift 2
    inside sh -c "$setup"' && echo $$ >"$0" && exec "$@"' "$dir/$name.pid" "$@" >"$dir/$name.log" 2>&1 &
}

# Waits up to ten seconds for a command to succeed; fails with the given text and the log.
await() {
    what=$1
    shift
    i=0
    while ! "$@" >/dev/null 2>&1; do
        i=$((i + 1))
        if [ $i -ge 100 ]; then
            cat "$dir"/*.log >&2 2>/dev/null
            fail "$what"
        fi
        sleep 0.1
    done
}

ip netns add "$ns" 2>"$dir/netns.log" || skip "cannot make a network namespace: $(cat "$dir/netns.log")"
ns_made=1
inside ip link set lo up multicast on || fail "cannot bring up lo in $ns"
# The guarantee that mDNS stays private: nothing but lo in the namespace.
[ "$(inside ip -o link show | wc -l)" -eq 1 ] || fail "$ns has more interfaces than lo"

cat >"$dir/bus.conf" <<EOF
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <listen>$bus</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
  </policy>
</busconfig>
EOF
start dbus true dbus-daemon --config-file="$dir/bus.conf" --nofork --nopidfile
await "the private D-Bus did not start" test -S "$dir/system_bus_socket"

cat >"$dir/avahi-daemon.conf" <<EOF
[server]
host-name=sondar-sandbox
use-ipv4=yes
use-ipv6=yes
allow-interfaces=lo
enable-dbus=yes
[wide-area]
enable-wide-area=no
[publish]
publish-hinfo=no
publish-workstation=no
[reflector]
enable-reflector=no
EOF
# Not daemonized, so that its PID is known; /run of its own (the mount stays inside the namespace
# command's private mounts), so that its PID file and socket never meet those of a daemon the
# machine may run.
start avahi 'mount -t tmpfs tmpfs /run' avahi-daemon -f "$dir/avahi-daemon.conf" --no-drop-root --no-chroot
await "avahi-daemon did not come up in $ns" inside avahi-browse --terminate --all

# In the background, so that a signal to this script ends the command and the daemons at once.
ip netns exec "$ns" env DBUS_SYSTEM_BUS_ADDRESS="$bus" SONDAR_MDNS_SANDBOX="$ns" "$@" &
command_pid=$!
wait "$command_pid"
status=$?
command_pid=
exit $status
