#!/bin/bash
# merge.sh OUT SHARDS: writes the records of OUT/1.ndjson to OUT/SHARDS.ndjson to standard output, in the order of
# the list that the shards were made from. (`cat OUT/*.ndjson` has the same records, shard by shard.)
set -euo pipefail
out=$1 shards=$2
# Shard I has every N-th file from the I-th on, one record per line: a row of `paste` is the next N files.
((shards < 1000)) || ulimit -n "$((shards + 16))"
mapfile -t files < <(seq -f "$out/%.0f.ndjson" "$shards")
paste -d '\n' "${files[@]}" | sed '/^$/d'
