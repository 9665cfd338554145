#!/usr/bin/env bash
# The rex, blockpage and components commands of the built tarnwick program,
# as a person writing block lists runs them: answers, exit statuses and the
# messages of every way a call can go wrong.
#   cli_test.sh PATH-TO-tarnwick
set -u
tarnwick=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export XDG_CONFIG_HOME=$scratch/config XDG_STATE_HOME=$scratch/state
export TARNWICK_LOCAL_MACHINE_SETTINGS=$scratch/machine/local-machine.reg TARNWICK_SITE=http://site.example
unset TARNWICK_PROGRAM_DIR
. "$(dirname "$0")/../common/expect.sh"

expect "test matches" 0 '^True$' "$tarnwick" rex test 'HTTP://Bad.Example/x' '^https?://bad\.example/' i
expect "test without i" 1 '^False$' "$tarnwick" rex test 'HTTP://Bad.Example/x' '^https?://bad\.example/'
expect "match groups" 0 $'=Hosted in \n[US]\n United States' \
  "$tarnwick" rex match 'Hosted in [US] United States' '(.*?)(\[[A-Z]{2}\])([^\[]*)' ig
expect "match nothing" 1 '^no match$' "$tarnwick" rex match abc '(x)'
expect "replace" 0 '=A/é' "$tarnwick" rex replace '%41%2f%E9' '\%([\da-f]{2})' 'chr(hex($1))' ige
expect "bad pattern" 1 'does not compile.*|False' "$tarnwick" rex test abc '(abc'
expect "bad expression" 2 "Replacement expression 'chr\\(': expected a value" \
  "$tarnwick" rex replace abc b 'chr(' e
expect "usage" 2 '^usage: tarnwick rex' "$tarnwick" rex test onlysubject
expect "blockpage" 0 '<a href="http://site.example/report_mistake">report it</a>' "$tarnwick" blockpage

# match: a block list's lines as one set; the first line that matches each URL.
printf '^https?://bank\\.example/\r\n\r\n(broken\r\nLOGIN\r\nbank\n' >"$scratch/list.dat"
urls=$'http://bank.example/x\nhttps://shop.example/Login?a=1\nhttps://other.example/'
expect "match first line" 1 $'=0\t^https?://bank\\.example/\n3\tLOGIN\n-1\t' \
  "$tarnwick" match "$scratch/list.dat" <<<"$urls"
expect "match case-sensitive" 1 $'=0\t^https?://bank\\.example/\n-1\t\n-1\t' \
  "$tarnwick" match --flags '' "$scratch/list.dat" <<<"$urls"
expect "match json" 1 '^\{"url":"https://shop.example/Login\?a=1","index":3,"pattern":"LOGIN"\}$' \
  "$tarnwick" match --json "$scratch/list.dat" <<<"$urls"
expect "match json none" 0 '^\{"url":"https://other.example/","index":-1,"pattern":null\}$' \
  "$tarnwick" match --json "$scratch/list.dat" <<<"https://other.example/"
expect "match stats" 0 '^patterns without a usable atom: 1$' \
  "$tarnwick" match --stats "$scratch/list.dat" <<<"https://other.example/"
expect "match stats time" 0 '^median time per URL: [0-9.]+ us$' \
  "$tarnwick" match --stats "$scratch/list.dat" <<<"https://other.example/"
expect "match no file" 2 "cannot read $scratch/none.dat" "$tarnwick" match "$scratch/none.dat" </dev/null
expect "match a folder" 2 "cannot read $scratch" "$tarnwick" match "$scratch" </dev/null
expect "match usage" 2 '^usage: tarnwick match' "$tarnwick" match </dev/null
expect "match flags value" 2 '^tarnwick: --flags needs a value' "$tarnwick" match "$scratch/list.dat" --flags </dev/null

program=$(dirname "$tarnwick")/../lib/tarnwick
rex=$(cd "$program" && pwd)/tarnwickrex.dll
expect "listed once created" 0 "^Tarnwick.Rex	$rex$" "$tarnwick" components
expect "unregister" 0 '^$' "$tarnwick" components unregister "$rex"
expect "listed unregistered" 0 '^Tarnwick.Rex	\(not registered\)$' "$tarnwick" components
mkdir -p "$scratch/empty"
expect "no component" 2 'regular-expression component could not be created' \
  env TARNWICK_PROGRAM_DIR="$scratch/empty" "$tarnwick" rex test a a
expect "register" 0 '^$' "$tarnwick" components register "$rex"
echo "plain text" >"$scratch/notalibrary.dll"
expect "register no library" 2 'is no component library' "$tarnwick" components register "$scratch/notalibrary.dll"
expect "components usage" 2 '^usage: tarnwick components' "$tarnwick" components list

summary
