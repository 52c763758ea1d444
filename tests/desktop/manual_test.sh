#!/bin/sh
# manual_test.sh: the manual pages are set without a warning.
set -eu
command -v groff >/dev/null || { echo "There is no groff here."; exit 77; }
failed=0
for page in docs/man/*.1; do
  warnings=$(groff -man -Tutf8 -ww -rLL=100n "$page" 2>&1 >/dev/null) || failed=1
  if [ -n "$warnings" ]; then
    printf '%s\n' "$warnings"
    failed=1
  fi
done
exit $failed
