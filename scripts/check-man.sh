#!/usr/bin/env bash
# Checks the manual pages of a build: every page in DIR renders with
# "man --warnings" without a warning, and each PROGRAM given has a page in
# DIR whose synopsis is the usage line of the program's own --help.
# Usage: check-man.sh DIR [PROGRAM...]
# MANWIDTH (default 80) is the width the pages are rendered at.
set -euo pipefail
width="${MANWIDTH:-80}"
dir="$1"; shift
status=0
pages=0
for page in "$dir"/*.gz; do
  [ -e "$page" ] || { echo "check-man: no pages in $dir"; exit 1; }
  warnings=$(LC_ALL=C.UTF-8 MANWIDTH="$width" man --warnings -l "$page" 2>&1 >/dev/null)
  if [ -n "$warnings" ]; then echo "check-man: $page: $warnings"; status=1; fi
  pages=$((pages + 1))
done
for program in "$@"; do
  name=$(basename "$program")
  page=$(ls "$dir/$name".[1-8].gz 2>/dev/null | head -n 1)
  if [ -z "$page" ]; then echo "check-man: no page for $name"; status=1; continue; fi
  usage=$("$program" --help | sed -n 's/^Usage: //p' | head -n 1)
  if ! LC_ALL=C MANWIDTH=250 man -l "$page" 2>/dev/null | tr -s ' ' | grep -F -- "$(tr -s ' ' <<<"$usage")" >/dev/null; then
    echo "check-man: the page of $name does not show its usage \"$usage\""; status=1
  fi
done
[ $status -eq 0 ] && echo "check-man: $pages pages render without a warning; $# programs agree with their pages"
exit $status
