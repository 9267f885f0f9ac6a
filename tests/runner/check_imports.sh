#!/usr/bin/env bash
# Of what the host's library shows, a module uses exactly what the committed list names: the seam to
# other hosts, which offer no more than they have agreed to.
#   check_imports.sh MODULE LIBRARY LIST        UPDATE_GOLDEN=1 rewrites the list
set -euo pipefail
export LC_ALL=C
symbols() { nm -D -C "$1" "$2" | sed 's/^[0-9a-f ]* [A-Za-z] //' | sort -u; }
wanted=$(symbols --undefined-only "$1")
offered=$(symbols --defined-only "$2")
used=$(comm -12 <(echo "$wanted") <(echo "$offered"))
[ -n "$used" ] || { echo "$1 uses nothing of $2"; exit 1; }
if [ -n "${UPDATE_GOLDEN:-}" ]; then
  echo "$used" > "$3"
  exit 0
fi
more=$(comm -23 <(echo "$used") <(sort -u "$3"))
less=$(comm -13 <(echo "$used") <(sort -u "$3"))
[ -z "$more$less" ] && exit 0
echo "$1 and $3 differ."
[ -z "$more" ] || printf 'Used and not listed (can every host offer it?):\n%s\n' "$more"
[ -z "$less" ] || printf 'Listed and not used any more:\n%s\n' "$less"
echo "When that is meant: UPDATE_GOLDEN=1 ctest -R imports, and review the list like code."
exit 1
