#!/usr/bin/env bash
# The tarnwick program facing mistakes a person makes: an option without its
# value, and a settings file that cannot be read (which must never stop a
# command, nor be written over).
#   cli_errors_test.sh PATH-TO-tarnwick
set -u
exec </dev/null
tarnwick=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export XDG_CONFIG_HOME=$scratch/config XDG_STATE_HOME=$scratch/state
export TARNWICK_LOCAL_MACHINE_SETTINGS=$scratch/machine/local-machine.reg
export TARNWICK_PROGRAM_DIR=$scratch/program TARNWICK_SERVER=http://127.0.0.1:9
. "$(dirname "$0")/../common/expect.sh"

expect "check --server" 2 '^tarnwick: --server needs a value' "$tarnwick" check --server
expect "check --server before a flag" 2 '^tarnwick: --server needs a value' \
  "$tarnwick" check --server --json http://a.example/
expect "check --answer" 2 '^tarnwick: --answer needs a value' "$tarnwick" check --ctrl --answer
expect "check --post-data" 2 '^tarnwick: --post-data needs a value' "$tarnwick" check --post-data
expect "update --server" 2 '^tarnwick: --server needs a value' "$tarnwick" update --server
expect "fetch --post" 2 '^tarnwick: --post needs a value' "$tarnwick" fetch --post

# A settings file that is a directory, a link to a device, or too big: the
# command goes on with the defaults and says so in one line.
settings=$XDG_CONFIG_HOME/tarnwick/settings.reg
mkdir -p "$settings"
expect "options over a directory" 0 '^BarHeight = 30$' "$tarnwick" options
lines=$("$tarnwick" options 2>&1 >/dev/null)
expect "one line on standard error" 0 "^tarnwick: Cannot read $settings: it is a directory" echo "$lines"
expect "exactly one" 0 '^1$' echo "$(wc -l <<<"$lines")"
expect "set over a directory" 2 'could not write BarHeight' "$tarnwick" options set BarHeight 40
expect "directory kept" 0 '^$' ls -A "$settings"
rmdir "$settings"

ln -s /dev/zero "$settings"
expect "options over /dev/zero" 0 "it is not a regular file" timeout 10 "$tarnwick" options
expect "link kept" 0 '^/dev/zero$' readlink "$settings"
rm "$settings"

{ printf 'REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\Tarnwick\\Toolbar\\Settings]\n"BarHeight"="44"\n'
  head -c 1100000 /dev/zero | tr '\0' ';'; } >"$settings"
expect "options over a big file" 0 'it is larger than 1 MiB' "$tarnwick" options
expect "big file kept" 0 '^1100082 ' wc -c "$settings"

summary
