#!/bin/bash
# parse-hosts.sh HOSTS LIST OUT [SHARDS]: parses the files that are named in LIST on several hosts, which share
# the current folder, one ssh login per line of HOSTS, by GNU parallel. Writes OUT/1.ndjson to
# OUT/SHARDS.ndjson. The same command again does what was not finished.
set -euo pipefail
hosts=$1 list=$2 out=$3 shards=${4:-16} tessera=${TESSERA:-tessera}
mkdir -p "$out"
# 3: some files could not be read or parsed. Their records say why, and running the job again does not help.
seq "$shards" | parallel --sshloginfile "$hosts" --workdir . --joblog "$out/jobs.log" --resume-failed --retries 2 \
  "$tessera parse --format ndjson --omit-empty --resume -o $out/{}.ndjson --files-from $list \
     --shard {}/$shards || test \$? -eq 3"
