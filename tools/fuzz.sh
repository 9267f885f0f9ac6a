#!/usr/bin/env bash
# Runs each fuzz target for some seconds (or, with "runs=N", for N inputs) on a copy of its seeds.
#   tools/fuzz.sh 20        tools/fuzz.sh runs=1000000 dxf
set -euo pipefail
cd "$(dirname "$0")/.."
limit=${1:-20}
only=${2:-}
for target in build/fuzz/bin/fuzz_*; do
  name=${target##*/fuzz_}
  [ -n "$only" ] && [ "$name" != "$only" ] && continue
  seeds=$(mktemp -d)
  cp tests/fuzz/corpus/"$name"/* "$seeds"/ 2>/dev/null || true
  case $limit in
    runs=*) bound=-runs=${limit#runs=} ;;
    *) bound=-max_total_time=$limit ;;
  esac
  echo "fuzzing $name ($limit)"
  log=$(mktemp)
  if ! "$target" "$bound" -timeout=10 -rss_limit_mb=3000 -max_len=20000 -artifact_prefix=build/fuzz/ \
      "$seeds" >"$log" 2>&1; then
    tail -40 "$log"
    exit 1
  fi
  grep -E '^(Done|stat::)' "$log" || tail -1 "$log"
  rm -rf "$seeds" "$log"
done
