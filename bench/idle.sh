#!/usr/bin/env bash
# What the program costs while nobody uses it: time from its start until it is ready, resident memory right after, and
# wake-ups and CPU time over a minute with the panel hidden. Starts it on a private X server with a window manager.
#
# Usage: bench/idle.sh [program] [seconds]; the release build and 60 when not given.
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
program=${1:-$here/build/release/bin/ferrowyn}
seconds=${2:-60}
work=$(mktemp -d)
server='' manager='' subject=''

finish() {
    for process in $subject $manager $server; do
        kill "$process" 2>"$work/kill" || true
    done
    wait 2>"$work/wait" || true
    rm -rf "$work"
}
trap finish EXIT

mkfifo "$work/display"
Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp 3>"$work/display" 2>"$work/server" &
server=$!
read -r number <"$work/display"
export DISPLAY=:$number HOME=$work XDG_CONFIG_HOME=$work/config XDG_CACHE_HOME=$work/cache XDG_RUNTIME_DIR=$work
unset WAYLAND_DISPLAY XDG_SESSION_TYPE
openbox 2>"$work/manager" &
manager=$!
until xprop -root _NET_SUPPORTING_WM_CHECK 2>"$work/xprop" | grep -q 'window id'; do :; done

# The first start fills the caches of the system, as the second start of a day finds them.
milliseconds() { echo $(($(date +%s%N) / 1000000)); }
start() {
    rm -f "$work/log"
    mkfifo "$work/log"
    began=$(milliseconds)
    "$program" --log-level=default 2>"$work/log" &
    subject=$!
    exec 4<"$work/log"
    while read -r line <&4; do
        [[ $line == *"Services active"* ]] && break
    done
    ready=$(($(milliseconds) - began))
}
stop() {
    kill "$subject"
    wait "$subject" || true
    exec 4<&-
}

starts=()
for turn in 1 2 3 4 5; do
    start
    starts+=("$ready")
    stop
done
median=$(printf '%s\n' "${starts[@]}" | sort -n | sed -n 3p)
start
sleep 2 # what the first list and the first frame need is no idling
resident=$(ps -o rss= -p "$subject" | tr -d ' ')

# Each voluntary switch of a thread is one time that it went to sleep, so one time that it was woken. Counted a thread,
# as one that ends in the meantime takes its count along.
declare -A before
switches() { awk '/^voluntary/ { print $2 }' "$1/status"; }
ticks() { awk '{ print $14 + $15 }' /proc/"$subject"/stat; }
for task in /proc/"$subject"/task/*; do
    before[$task]=$(switches "$task")
done
ticksBefore=$(ticks)
sleep "$seconds"
wakeUps=0
threads=''
for task in /proc/"$subject"/task/*; do
    woken=$(($(switches "$task") - ${before[$task]:-0}))
    wakeUps=$((wakeUps + woken))
    threads+=$(printf '  %-32s %10s' "$(cat "$task/comm")" "$woken")$'\n'
done
cpu=$((($(ticks) - ticksBefore) * 1000 / $(getconf CLK_TCK)))

# The timers of two, two, three and five seconds; the tap's thread has nothing to wake for.
goal=$((seconds / 2 + seconds / 2 + seconds / 3 + seconds / 5))
printf '%-34s %10s %10s\n' 'what' 'measured' 'goal'
printf '%-34s %10s %10s\n' 'start to "Services active", ms' "$median" '< 150'
printf '%-34s %10s %10s\n' 'resident, MB' "$(awk "BEGIN { printf \"%.1f\", $resident / 1024 }")" '< 45'
printf '%-34s %10s %10s\n' "wake-ups in $seconds s" "$wakeUps" "<= $goal"
printf '%-34s %10s\n' "CPU time in $seconds s, ms" "$cpu"
printf 'by thread:\n%s' "$threads"
