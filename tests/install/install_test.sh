#!/bin/sh
# Installs the build into a temporary prefix and checks what a Debian system expects of it: every
# program with its man page, the files the program reads, the desktop entry, icon and metainfo
# (validated), the logger's service when the logger is built, and a --version from each program.
# Usage: install_test.sh CMAKE BUILD_DIR
set -eu
cmake=$1
build=$2
prefix=$(realpath "$(mktemp -d)")
trap 'rm -rf "$prefix"' EXIT
"$cmake" --install "$build" --prefix "$prefix" >/dev/null

programs=$(cat "$build/dist/programs.txt")
expected="share/sondar/sondar.xml share/sondar/sondar.license share/sondar/cmd_demo_update
share/applications/com.arvex.sondar.desktop share/metainfo/com.arvex.sondar.metainfo.xml
share/icons/hicolor/scalable/apps/sondar.svg share/icons/hicolor/48x48/apps/sondar.png
share/icons/hicolor/256x256/apps/sondar.png share/doc/sondar/copyright"
for program in $programs; do
    expected="$expected bin/$program share/man/man1/$program.1.gz"
    if [ "$program" = sondar-logd ]; then
        expected="$expected lib/systemd/system/sondar-logd.service etc/default/sondar-logd"
    fi
done
echo "$programs" | grep -qx sondar || { echo "sondar is not among the programs: $programs"; exit 1; }

status=0
for file in $expected; do
    [ -f "$prefix/$file" ] || { echo "missing: $file"; status=1; }
done
for program in $programs; do
    [ -x "$prefix/bin/$program" ] || continue
    version=$(env -u DISPLAY "$prefix/bin/$program" --version) || { echo "$program --version failed"; status=1; }
    echo "$version" | grep -qx "$program [0-9][0-9.]*" || { echo "$program --version said: $version"; status=1; }
done
# The installed program reads the installed description file.
env -u DISPLAY "$prefix/bin/sondar" --help | grep -qx "Description file: $prefix/share/sondar/sondar.xml" ||
    { echo "sondar --help names another description file"; status=1; }
[ -x "$prefix/share/sondar/cmd_demo_update" ] || { echo "cmd_demo_update is not executable"; status=1; }
desktop-file-validate "$prefix/share/applications/com.arvex.sondar.desktop" || status=1
appstreamcli validate --no-net --pedantic "$prefix/share/metainfo/com.arvex.sondar.metainfo.xml" >/dev/null || status=1
exit $status
