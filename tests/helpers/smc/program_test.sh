#!/usr/bin/env bash
# pulsebar-smc over recorded machines: what it prints where, and how it ends.
# usage: program_test.sh PROGRAM MACHINES
set -uo pipefail
program=$1
machines=$2
out=$(mktemp)
errors=$(mktemp)
trap 'rm -f "$out" "$errors"' EXIT

fail() {
    echo "FAIL: $*" >&2
    cat "$out" "$errors" >&2
    exit 1
}

# expect STATUS MACHINE ARGUMENT...
expect() {
    local wanted=$1 machine=$2
    shift 2
    PULSEBAR_SYSROOT=$machines/$machine "$program" "$@" >"$out" 2>"$errors"
    local status=$?
    [ "$status" -eq "$wanted" ] || fail "pulsebar-smc $* on $machine ended with $status"
}

expect 0 desktop -l
grep -Eq '^  #KEY  \[ui32\]  [0-9]+ \(bytes( [0-9a-f]{2}){4}\)$' "$out" || fail "no #KEY"
grep -Eq '^  Tcp0  \[sp78\]  \(bytes( [0-9a-f]{2}){2}\)$' "$out" || fail "no Tcp0"
grep -Eq '^  Tcp0  k10temp T(die|ctl): [0-9]+\.[0-9]{2} C$' "$out" || fail "Tcp0 has no name"
[ ! -s "$errors" ] || fail "something is wrong with a list"

expect 0 desktop -f
grep -Eq '^Total fans in system: [1-9]$' "$out" || fail "no fans"

expect 0 desktop -k FNum -r
grep -Eq '^  FNum  \[ui8 \]  [1-9] \(bytes 0[1-9]\)$' "$out" || fail "no FNum"

expect 1 desktop -k none -r
{ [ ! -s "$out" ] && grep -q 'no key none' "$errors"; } || fail "a key out of nothing"

expect 1 bare -l
{ [ ! -s "$out" ] && grep -qx 'Error: no SMC found' "$errors"; } || fail "sensors out of nothing"

expect 0 bare -h
[ "$(head -n 1 "$out")" = "Apple System Management Control (SMC) tool 0.01" ] || fail "no help"
expect 0 bare -v
grep -Eqx 'pulsebar-smc [0-9.]+' "$out" || fail "no version"
for arguments in "" "-x" "-r" "-l -f" "-k Tcp0 -w 1"; do
    # shellcheck disable=SC2086  # several arguments
    expect 2 desktop $arguments
    { [ ! -s "$out" ] && grep -q 'list all keys' "$errors"; } || fail "no usage for '$arguments'"
done

PULSEBAR_SYSROOT=$machines/desktop "$program" -l >/dev/full 2>"$errors"
{ [ $? -eq 1 ] && [ -s "$errors" ]; } || fail "a full disk is not noticed"
echo "pulsebar-smc does what it should"
