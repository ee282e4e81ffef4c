#!/usr/bin/env bash
# Checks of an installed package, run by check-package.sh inside its
# throw-away copy of the machine after the first job: every manual page of
# the package renders without a warning and every program has one; the log
# file stays the spooler's after a run by hand as root; a run by hand as the
# spooler's user works; logrotate rotates the log as that user; purging
# keeps the presets below /etc/brellian without a dpkg warning and removes
# the log; installing again finds the presets in place.
set -euo pipefail
trap 'echo "check-installed: failed at line $LINENO"' ERR
pkg=rastertobrellian
log=/var/log/brellian/rastertobrellian.log

# Manual pages: one per program, each rendering without a warning.
mapfile -t files < <(dpkg -L "$pkg")
pages=0
for f in "${files[@]}"; do
  case "$f" in
    /usr/share/man/man*/*.gz)
      warnings=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -l "$f" 2>&1 >/dev/null)
      [ -z "$warnings" ] || { echo "check-installed: $f: $warnings"; exit 1; }
      pages=$((pages + 1)) ;;
    /usr/bin/*) test -f "/usr/share/man/man1/$(basename "$f").1.gz" || { echo "check-installed: no page for $f"; exit 1; } ;;
    /usr/lib/cups/filter/*|/usr/lib/cups/backend/*)
      [ -d "$f" ] || test -f "/usr/share/man/man8/$(basename "$f").8.gz" || { echo "check-installed: no page for $f"; exit 1; } ;;
  esac
done
echo "check-installed: $pages manual pages render with man --warnings without a warning"

# The package made the log file for the spooler's user; a run by hand as
# root (here with missing arguments) appends to it and leaves it the user's.
test "$(stat -c '%U:%G %a' "$log")" = "lp:lp 644"
test "$(stat -c '%U:%G %a' /var/log/brellian)" = "lp:lp 750"
if /usr/lib/cups/filter/rastertobrellian >/dev/null 2>&1; then echo "check-installed: no arguments accepted"; exit 1; fi
test "$(stat -c %U "$log")" = lp
# A run by hand as the spooler's user, as the manual page shows it.
/usr/bin/brellian-samplecard --dpi 300 /tmp/out/card.ras >/dev/null
chmod 644 /tmp/out/card.ras
runuser -u lp -- env PPD=/usr/share/ppd/brellian/br1030.ppd DEVICE_URI='usbbr://Brellian/BR-1030?serial=BYHAND' \
  /usr/lib/cups/filter/rastertobrellian 7 me "By hand" 1 "frontRibbon=ColorK" /tmp/out/card.ras \
  > /tmp/out/byhand.bin 2>/dev/null
/usr/bin/brellian-jobdump --quiet /tmp/out/byhand.bin >/dev/null
grep -q 'BYHAND' "$log"

# Rotation as the spooler's user: the old log moves aside, a new one is
# made for that user, and the next job of the spooler logs into it.
logrotate -f -s /tmp/logrotate.state /etc/logrotate.d/rastertobrellian
test -s "$log.1"
test "$(stat -c '%U:%G %a' "$log")" = "lp:lp 644"
test ! -s "$log"
rm -f /tmp/out/job.bin
lp -d cards -t 'After rotation' /tmp/sample-card.pdf >/dev/null
for i in $(seq 600); do [ -z "$(lpstat -o)" ] && break; sleep 0.2; done
test -s /tmp/out/job.bin
grep -q 'CMD: ICMD_ENDJOB' "$log"
echo "check-installed: the log stays lp's after a run as root; logrotate rotated it and the next job logged"

# Purge: presets stay, the log goes, dpkg has nothing to warn about.
before=$(cd /etc/brellian && find . | sort)
[ -n "$(ls /etc/brellian/settings)" ]
lpadmin -x cards
purge=$(dpkg --purge "$pkg" 2>&1)
if printf '%s\n' "$purge" | grep -i 'warning'; then echo "check-installed: dpkg warned on purge"; exit 1; fi
test "$(cd /etc/brellian && find . | sort)" = "$before"
test ! -e /var/log/brellian
test ! -e /etc/logrotate.d/rastertobrellian
dpkg -i /tmp/package.deb >/dev/null
test "$(cd /etc/brellian && find . | sort)" = "$before"
test "$(stat -c '%U:%G %a' "$log")" = "lp:lp 644"
echo "check-installed: purge kept /etc/brellian ($(printf '%s\n' "$before" | wc -l) entries) without a warning and removed the log; reinstalling found the presets"
