#!/bin/sh
# installed_docs.sh: looks over the pages in the current folder, that of an installation's documentation.
set -eu
failed=0
for page in *.md; do
  # What stands behind "](", without the place in the page. Links to other hosts are none of this.
  for link in $(grep -o '](\([^)]*\))' "$page" | sed 's/^](//; s/)$//; s/#.*//' | grep -v '^https*:' | sort -u); do
    [ -s "$link" ] || { echo "$page: $link is not installed"; failed=1; }
  done
  # Places in a page are its headings in small letters, with dashes for blanks.
  for link in $(grep -o '](\([^)]*#[^)]*\))' "$page" | sed 's/^](//; s/)$//' | sort -u); do
    target=${link%%#*}
    tr '[:upper:]' '[:lower:]' <"${target:-$page}" | grep '^#' | sed 's/^#* *//; s/[^a-z0-9 -]//g; s/ /-/g' |
      grep -qx -e "${link#*#}" || { echo "$page: there is no heading for $link"; failed=1; }
  done
  # The folders of the sources. "examples" is told of in examples.md, with when it is there.
  if grep -n -E '(^|[^a-z/])(scripts|build|bench|tests|cmake|data|docs|examples)/' "$page"; then
    echo "$page: names what is not installed"
    failed=1
  fi
done
exit $failed
