#!/usr/bin/env bash
# brellian-batch benchmark: the tool's own cost per card above the queue's
# own per-job time, and its peak memory by batch size.  A private spooler
# (run as root, listening on a socket of its own) has a raw queue whose
# backend throws the job away, so a job costs the queue only its own work.
# The queue's per-job time is measured on N jobs queued while the queue is
# stopped, from the moment it is started until the last is done; the
# tool's by printing an N-card batch (a CSV with two tracks per card) to
# the same queue.  The difference per card is what the tool
# adds: waiting for job states, the journal's flushes, its requests.
#
# Usage: bench/run-batch.sh [-b BUILD_DIR] [-n CARDS] [-p POLL_MS]
#   BUILD_DIR  a build with brellian-batch (default build-test)
#   CARDS      cards of the timed batch (default 200)
#   POLL_MS    the tool's --poll-interval (default 100; the tool's own default is 1000)
# Nothing here fails on a time.
. "$(dirname "$0")/lib.sh"
build=build-test
cards=200
poll=100
bench_options "b=build n=cards p=poll" "$@"
[ "$(id -u)" -eq 0 ] || { echo "run as root: the private spooler starts as root" >&2; exit 2; }
bench_build "$build" brellian-batch
tool="$PWD/$build/tools/brellian-batch"
work="$PWD/$build/bench/batch"
rm -rf "$work"
mkdir -p "$work"/{serverbin/backend,serverbin/filter,spool/tmp,cache,state,log,ppd}
chmod 1777 "$work/spool/tmp"
for f in /usr/lib/cups/filter/*; do ln -s "$f" "$work/serverbin/filter/"; done
for d in cgi-bin daemon driver monitor notifier; do ln -s "/usr/lib/cups/$d" "$work/serverbin/$d"; done
printf '#!/bin/sh\n[ $# -eq 0 ] && { echo "direct sink \\"Unknown\\" \\"Sink\\""; exit 0; }\ncat ${6:+"$6"} >/dev/null\nexit 0\n' \
  > "$work/serverbin/backend/sink"
chmod 755 "$work/serverbin/backend/sink"
sock="$work/cups.sock"
cat > "$work/cupsd.conf" <<CONF
Listen $sock
LogLevel warn
WebInterface No
Browsing No
MaxJobs 0
<Location />
  Order allow,deny
  Allow all
</Location>
CONF
cat > "$work/cups-files.conf" <<CONF
ServerRoot $work
ServerBin $work/serverbin
RequestRoot $work/spool
CacheDir $work/cache
StateDir $work/state
TempDir $work/spool/tmp
ErrorLog $work/log/error_log
AccessLog $work/log/access_log
PageLog $work/log/page_log
User lp
Group lp
SystemGroup root
CONF
cupsd -f -c "$work/cupsd.conf" -s "$work/cups-files.conf" >/dev/null 2>&1 &
cupsd_pid=$!
trap 'kill $cupsd_pid 2>/dev/null; wait $cupsd_pid 2>/dev/null || true' EXIT
export CUPS_SERVER="$sock"
for _ in $(seq 100); do lpstat -r 2>/dev/null | grep -q "is running" && break; sleep 0.1; done
lpadmin -p sink -E -v sink:/dev/null -m raw 2>/dev/null
printf '%%!PS\nshowpage\n' > "$work/card.ps"

wait_idle() { while [ -n "$(lpstat -o sink 2>/dev/null)" ]; do sleep 0.05; done; }
now() { date +%s.%N; }

# The queue alone: N jobs queued with lp while the queue is stopped, then
# timed from cupsenable until the last is done, so no client is in it.
wait_idle
cupsdisable sink
for i in $(seq "$cards"); do lp -d sink -t "lp $i" "$work/card.ps" >/dev/null; done
t0=$(now)
cupsenable sink
wait_idle
t1=$(now)
queue_ms=$(awk "BEGIN { print ($t1 - $t0) * 1000 / $cards }")

# 'run_batch N AHEAD' - Print an N-card batch; "wall_ms_per_card cpu_ms_per_card peak_kb".
run_batch() {
  local n=$1 ahead=$2 csv="$work/people-$1-$2.csv"
  { echo "track1,track2"; for i in $(seq "$n"); do printf 'CARD %05d HOLDER,4%05d=2612\n' "$i" "$i"; done; } > "$csv"
  rm -f "$csv.journal"
  wait_idle
  python3 - "$tool" "$n" "$csv" "$work/card.ps" "$poll" "$ahead" <<'PY'
import resource, subprocess, sys, time
tool, n, csv, doc, poll, ahead = sys.argv[1:]
t0 = time.monotonic()
r = subprocess.run([tool, "-d", "sink", "--csv", csv, "--cards", n, "--poll-interval", poll, "--ahead", ahead, doc],
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
wall = time.monotonic() - t0
u = resource.getrusage(resource.RUSAGE_CHILDREN)
if r.returncode != 0:
    sys.exit("brellian-batch ended with status %d" % r.returncode)
print("%.1f %.2f %d" % (wall * 1000 / int(n), (u.ru_utime + u.ru_stime) * 1000 / int(n), u.ru_maxrss))
PY
}

echo "brellian-batch, raw queue with a discarding backend, --poll-interval $poll ms"
printf 'queue alone (jobs queued beforehand): %.1f ms per job over %d jobs\n' "$queue_ms" "$cards"
printf '%-8s %-6s %12s %14s %14s %10s\n' cards ahead "ms/card" "above queue" "tool cpu ms" "peak KiB"
for ahead in 1 4; do
  read -r wall cpu rss < <(run_batch "$cards" "$ahead")
  printf '%-8s %-6s %12.1f %14.1f %14.2f %10d\n' "$cards" "$ahead" "$wall" "$(awk "BEGIN { print $wall - $queue_ms }")" "$cpu" "$rss"
done
for n in 20 2000; do
  read -r wall cpu rss < <(run_batch "$n" 4)
  printf '%-8s %-6s %12.1f %14.1f %14.2f %10d\n' "$n" 4 "$wall" "$(awk "BEGIN { print $wall - $queue_ms }")" "$cpu" "$rss"
done
