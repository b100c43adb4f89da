#!/usr/bin/env bash
# scripts/bootstrap against pretended package tools: it asks for exactly what is missing, with fresh lists where the
# old ones do not know it, and where it may not install it says what to install and fails.
# usage: bootstrap_test.sh PATH_OF_BOOTSTRAP
# shellcheck disable=SC2016  # the pretended tools expand their own variables
set -euo pipefail
bootstrap=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() { echo "FAIL: $*" >&2; exit 1; }

tool() { # tool NAME: a pretended command; its script comes from stdin
    { echo '#!/bin/bash'; cat; } >"$work/bin/$1"
    chmod +x "$work/bin/$1"
}

# A tree with a list of its own, so that the test stands whatever the project needs.
mkdir -p "$work/tree/scripts" "$work/bin"
cp "$bootstrap" "$work/tree/scripts/bootstrap"
printf '# comment\nbuild alpha beta\ntest beta gamma\n' >"$work/tree/scripts/packages.txt"

export WORK=$work
tool dpkg-query <<<'for name; do grep -qx "$name" "$WORK/installed" && echo "installed $name"; done; exit 1'
tool apt-get <<'X'
case "$*" in
*--simulate*) ;;
*) echo "$*" >>"$WORK/log" ;;
esac
case "$*" in
*update*) touch "$WORK/lists" ;;
*install*) test -e "$WORK/lists" && test ! -e "$WORK/broken" ;;
esac
X
tool id <<<'echo "${PRETENDED_UID:-0}"'
tool sudo <<<'exit 1'
tool sleep <<<'exit 0'
export PATH="$work/bin:$PATH"

run() { : >"$work/log"; "$work/tree/scripts/bootstrap" "$@" >"$work/out" 2>&1; }

printf 'alpha\nbeta\ngamma\n' >"$work/installed"
run || fail "all installed, yet it failed"
[ ! -s "$work/log" ] || fail "all installed, yet it ran apt-get: $(cat "$work/log")"

printf 'beta\n' >"$work/installed"
touch "$work/lists"
run || fail "with good lists"
grep -q 'install -y --no-install-recommends alpha gamma$' "$work/log" || fail "asked for: $(cat "$work/log")"
! grep -q update "$work/log" || fail "fetched lists that were good"

rm "$work/lists"
run build || fail "with empty lists"
[ "$(grep -c update "$work/log")" = 1 ] || fail "did not fetch the lists once"
grep -q 'install -y --no-install-recommends alpha$' "$work/log" || fail "asked for: $(cat "$work/log")"

touch "$work/broken"
run && fail "said that packages which could not be installed are there"
grep -q 'could not install' "$work/out" || fail "kept quiet about it"

PRETENDED_UID=1000 run && fail "an ordinary user has nothing installed, yet it succeeded"
grep -q 'sudo apt-get update && sudo apt-get install --no-install-recommends alpha gamma' "$work/out" ||
    fail "did not say what to install: $(cat "$work/out")"
[ ! -s "$work/log" ] || fail "ran apt-get as an ordinary user"

run nonsense && fail "took a group that does not exist"
echo "bootstrap: all rules hold"
