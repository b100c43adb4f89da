#!/usr/bin/env bash
# The program of a build whose platform offers nothing: it starts, publishes samples without the figures that nobody
# can tell, answers on the bus and ends as asked.
# usage: empty_platform_test.sh BIN_DIR
set -euo pipefail
bin=$1

fail() { echo "FAIL: $*" >&2; exit 1; }

if [ -z "${PULSEBAR_TEST_HOME:-}" ]; then
    PULSEBAR_TEST_HOME=$(mktemp -d)
    export PULSEBAR_TEST_HOME
    trap 'rm -rf "$PULSEBAR_TEST_HOME"' EXIT
    export HOME=$PULSEBAR_TEST_HOME XDG_CONFIG_HOME=$PULSEBAR_TEST_HOME XDG_RUNTIME_DIR=$PULSEBAR_TEST_HOME
    chmod 700 "$PULSEBAR_TEST_HOME"
    mkdir "$HOME/Pulsebar"
    printf '[General]\nNotFirstLaunch=true\n' >"$HOME/Pulsebar/Pulsebar.conf"
    dbus-run-session -- bash "$0" "$bin"
    exit
fi

"$bin/pulsebar" 2>"$HOME/log" &
program=$!
trap 'kill "$program" 2>/dev/null || true' EXIT

sample=
for _ in $(seq 100); do
    sample=$("$bin/pulsebarctl" get informationDictionary 2>/dev/null) && break
    kill -0 "$program" 2>/dev/null || fail "the program ended: $(cat "$HOME/log")"
    sleep 0.1
done
[ -n "$sample" ] || fail "no sample within ten seconds: $(cat "$HOME/log")"

python3 - "$sample" <<'X' || fail "the sample holds what nobody told: $sample"
import json
import sys

sample = json.loads(sys.argv[1])
assert isinstance(sample, dict)
unknown = {"CPUUsage", "CPUUsageCoreAverage", "DiskStatistics", "NetworkInMinuteStats", "FanMove"}
assert not unknown & sample.keys(), unknown & sample.keys()
for key in ("NetStatistics", "BatteryStats", "CPUTemparatures"):
    assert not sample.get(key), key
X

"$bin/pulsebarctl" title >/dev/null || fail "no answer for the title"
"$bin/pulsebarctl" quit || fail "did not take the request to quit"
trap - EXIT
wait "$program" || fail "ended with exit status $?: $(cat "$HOME/log")"
echo "the program runs on nothing"
