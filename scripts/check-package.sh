#!/usr/bin/env bash
# Builds the Debian package, checks it with lintian (no error, no warning
# that the package's lintian overrides do not explain) and proves that
# installing it gives a working queue: in a throw-away copy of this machine
# (an overlay of / in a private mount namespace, discarded at the end) the
# package is installed with dpkg -i, every manual page renders without a
# warning, a private spooler is started, a queue is made from the installed
# PPD with lpadmin, the sample card is printed with lp, and the captured job
# command stream is checked with the installed inspector.  Then the log's
# ownership survives a run by hand as root, logrotate rotates the log as
# the spooler's user, and purging keeps the presets without a dpkg warning.
# Nothing on the real system is changed.  Needs root (for the namespace and
# dpkg).
set -euo pipefail
cd "$(dirname "$0")/.."
if [ "$(id -u)" -ne 0 ]; then
  echo "check-package: skipped (needs root for dpkg and a private mount namespace)"
  exit 0
fi
bash scripts/install-deps.sh --full
build=build-pkg
cmake -S . -B "$build" -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j"$(nproc)" >/dev/null
# Only this build's package: no earlier one may be picked by mistake.
rm -f "$build"/rastertobrellian_*.deb
(cd "$build" && cpack -G DEB >/dev/null)
debs=("$PWD/$build"/rastertobrellian_*.deb)
[ ${#debs[@]} -eq 1 ] && [ -f "${debs[0]}" ] || { echo "check-package: expected one package, found: ${debs[*]}"; exit 1; }
deb="${debs[0]}"
echo "check-package: built $deb"
# lintian warns when it runs as root: run it as an ordinary user, on a
# copy of the package that user can read.
lint_dir=$(mktemp -d)
cp "$deb" "$lint_dir/"
chmod 755 "$lint_dir"; chmod 644 "$lint_dir"/*.deb
if ! runuser -u nobody -- lintian --fail-on error,warning --display-level '>=warning' "$lint_dir"/*.deb; then
  rm -rf "$lint_dir"
  echo "check-package: lintian reports errors or warnings"
  exit 1
fi
rm -rf "$lint_dir"
echo "check-package: lintian: no error, no warning"

root="$PWD/$build/pkgcheck"
rm -rf "$root"
mkdir -p "$root/upper" "$root/work" "$root/merged"
cp docs/samples/sample-card.pdf "$root/sample-card.pdf"
cp scripts/check-installed.sh "$root/check-installed.sh"
# A glabels badge of the shipped CR80 example (docs/badges, with its
# stand-in photos), for the badge job below (glabels keeps the templates it
# meets under HOME, so it gets a HOME of its own).
mkdir -p "$root/badge"
cp docs/badges/badge.glabels docs/badges/people.csv docs/badges/photo?.png "$root/badge/"
(cd "$root/badge" && HOME="$root/badge" glabels-3-batch -o "$root/badge.pdf" badge.glabels >/dev/null 2>&1)
test -s "$root/badge.pdf"

unshare --mount --propagation private bash -s "$root" "$deb" <<'INNER'
set -euo pipefail
root="$1"; deb="$2"
m="$root/merged"
mount -t overlay overlay -o "lowerdir=/,upperdir=$root/upper,workdir=$root/work" "$m"
mount --bind /proc "$m/proc"
mount --bind /dev "$m/dev"
mount -t tmpfs tmpfs "$m/tmp"
mount -t tmpfs tmpfs "$m/run"
cp "$deb" "$m/tmp/package.deb"
cp "$root/sample-card.pdf" "$m/tmp/sample-card.pdf"
cp "$root/check-installed.sh" "$m/tmp/check-installed.sh"
cp "$root/badge.pdf" "$m/tmp/badge.pdf"
chroot "$m" /bin/bash -s <<'CHROOT'
set -euo pipefail
trap 'echo "check-package: failed at line $LINENO of the check"; tail -n 30 /var/log/cups/error_log 2>/dev/null || true' ERR
# A machine that never had the driver: no earlier install, no presets.
rm -rf /etc/brellian /var/log/brellian /usr/lib/cups/filter/rastertobrellian /usr/share/ppd/brellian \
       /usr/lib/cups/filter/pdftobrellian /usr/lib/cups/filter/texttobrellian \
       /usr/lib/cups/backend/usbbr /usr/share/cups/drv/brellian.drv
dpkg -i /tmp/package.deb >/dev/null
test -x /usr/lib/cups/filter/rastertobrellian
test -x /usr/lib/cups/filter/pdftobrellian -a -x /usr/lib/cups/filter/texttobrellian
# The USB backend runs as root: owned by root, mode 0700.
test "$(stat -c '%U %a' /usr/lib/cups/backend/usbbr)" = "root 700"
# The installed backend has no stand-in hook: it always runs the spooler's usb backend.
cat > /tmp/usb-standin <<'EOF2'
#!/bin/sh
echo 'direct usb://Brellian/BR-1060?serial=X "B" "B" "MFG:Brellian;MDL:BR-1060;" ""'
EOF2
chmod 755 /tmp/usb-standin
test -z "$(BRELLIAN_USBBR_LOWER=/tmp/usb-standin /usr/lib/cups/backend/usbbr 2>/dev/null)"
test -f /usr/share/ppd/brellian/br1060.ppd
test "$(stat -c %U /var/log/brellian)" = lp
test -d /etc/brellian/settings -a -d /etc/brellian/uv -a -d /etc/brellian/lut
# The installed preset tools have no fault hook: asking for one changes nothing.
BRELLIAN_TOOL_FAULT=rename /usr/bin/brellian-settings --serial PKG01 create >/dev/null
test -f /etc/brellian/settings/brellian_br-1060_pkg01.dat

cat > /usr/lib/cups/backend/capture <<'EOF2'
#!/bin/sh
if [ $# -eq 0 ]; then echo 'direct capture "Unknown" "Capture to a file"'; exit 0; fi
out="${DEVICE_URI#capture:}"
if [ -n "$6" ]; then cat "$6" > "$out.part"; else cat > "$out.part"; fi
mv "$out.part" "$out"
EOF2
chmod 755 /usr/lib/cups/backend/capture
mkdir -p /tmp/out && chmod 1777 /tmp/out
cat > /etc/cups/cupsd.conf <<'EOF2'
Listen /tmp/cups.sock
LogLevel debug
WebInterface No
Browsing No
<Location />
  Order allow,deny
  Allow all
</Location>
<Policy default>
  <Limit All>
    Order deny,allow
  </Limit>
</Policy>
EOF2
grep -q '^FileDevice' /etc/cups/cups-files.conf || echo 'FileDevice Yes' >> /etc/cups/cups-files.conf
mkdir -p /run/cups /var/spool/cups/tmp
/usr/sbin/cupsd -f &
cupsd_pid=$!
trap 'kill $cupsd_pid 2>/dev/null; wait $cupsd_pid 2>/dev/null || true' EXIT
export CUPS_SERVER=/tmp/cups.sock
# The spooler may take a while to answer on a busy machine.
for i in $(seq 600); do lpstat -r 2>/dev/null | grep -q "is running" && break; sleep 0.1; done
lpstat -r | grep -q "is running"
# Each model is offered once, and a printer's device ID finds its PPD file.
# The models are those of the installed PPD files (one per model).
test -n "$(ls /usr/share/ppd/brellian/)"
for m in $(sed -n 's/^\*cupsModelNumber: *//p' /usr/share/ppd/brellian/*.ppd); do
  test "$(lpinfo -m | grep -c "Brellian BR-$m")" = 1
  lpinfo --device-id "MFG:Brellian;MDL:BR-$m;CLS:PRINTER;SERN:X;" -m | head -n 1 | grep -q "brellian/br$m.ppd "
done
lpadmin -p cards -E -v 'capture:/tmp/out/job.bin' -P /usr/share/ppd/brellian/br1060.ppd 2>&1 \
  | { grep -v 'drivers are deprecated' || true; }
lp -d cards -t 'Package check' -o frontRibbon=ColorK -o frontResin=Preset1 -o Duplex=DuplexNoTumble \
   /tmp/sample-card.pdf >/dev/null
for i in $(seq 600); do [ -z "$(lpstat -o)" ] && break; sleep 0.2; done
if [ ! -s /tmp/out/job.bin ]; then
  echo "check-package: no job output; spooler log:"; tail -n 40 /var/log/cups/error_log; exit 1
fi
/usr/bin/brellian-jobdump --quiet /tmp/out/job.bin
grep -q 'CMD: ICMD_ENDJOB' /var/log/brellian/rastertobrellian.log
echo "check-package: dpkg -i, lpadmin and lp gave a complete job; the filter logged to /var/log/brellian as $(stat -c %U /var/log/brellian/rastertobrellian.log)"

# The glabels badge with the colour mode as the only option: the employee
# number scans from the black panel in Monochrome and from the resin panel
# in ColorK, with the installed PPD's defaults.
for mode in Monochrome ColorK; do
  rm -rf /tmp/out/job.bin "/tmp/out/$mode"
  lp -d cards -t "Badge $mode" -o "frontRibbon=$mode" /tmp/badge.pdf >/dev/null
  for i in $(seq 600); do [ -z "$(lpstat -o)" ] && break; sleep 0.2; done
  /usr/bin/brellian-jobdump --quiet -p "/tmp/out/$mode" /tmp/out/job.bin >/dev/null
  zbarimg -q /tmp/out/$mode/side0-panel*-k.png | grep -qx 'CODE-128:BR-100421' ||
    { echo "check-package: the badge's bar code does not scan from the $mode black panel"; exit 1; }
done
echo "check-package: a glabels badge printed with frontRibbon=Monochrome or ColorK alone scans from its black panel"

# The installed printer application finds the installed filter and PPD files
# by itself: a PWG raster job on a file: device gives a complete job stream.
test -f /lib/systemd/system/brellian-printer-app.service
mkdir -p /tmp/app-out /tmp/app-spool
/usr/bin/brellian-printer-app server -o server-port=18632 -o listen-hostname=localhost \
  -o spool-directory=/tmp/app-spool -o log-file=/tmp/app.log -o log-level=debug -o server-options=no-tls &
app_pid=$!
trap 'kill $cupsd_pid $app_pid 2>/dev/null; wait $cupsd_pid $app_pid 2>/dev/null || true' EXIT
# Wait for the port itself: a client sub-command run before the server is up
# would start a private server of its own.
for i in $(seq 300); do (exec 3<>/dev/tcp/127.0.0.1/18632) 2>/dev/null && break; sleep 0.1; done
/usr/bin/brellian-printer-app add -d pkgcard -m brellian_1035 -v 'file:///tmp/app-out?ext=brj'
/usr/bin/brellian-rasterwrite --pwg -o /tmp/card.pwg pattern
/usr/bin/brellian-printer-app submit -d pkgcard /tmp/card.pwg >/dev/null
app_job() { find /tmp/app-out -name '*.brj' -size +0 | head -n 1; }
for i in $(seq 600); do [ -n "$(app_job)" ] && /usr/bin/brellian-jobdump --quiet "$(app_job)" >/dev/null 2>&1 && break; sleep 0.2; done
[ -n "$(app_job)" ] && /usr/bin/brellian-jobdump --quiet "$(app_job)" || { tail -n 30 /tmp/app.log; exit 1; }
echo "check-package: the installed brellian-printer-app printed a complete job through the installed filter"
kill $app_pid; wait $app_pid 2>/dev/null || true
trap 'kill $cupsd_pid 2>/dev/null; wait $cupsd_pid 2>/dev/null || true' EXIT
bash /tmp/check-installed.sh
CHROOT
INNER
rm -rf "$root"
