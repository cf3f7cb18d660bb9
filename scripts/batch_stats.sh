#!/usr/bin/env bash
# The land-use balance of a directory of drawings on GNU parallel: one `kplan stats
# --format jsonl` per drawing, on this machine's cores or on the hosts of a bureau over
# ssh, then the combining step that adds the drawings' tables up.
#
#   scripts/batch_stats.sh DIR OUT.jsonl [PARALLEL OPTIONS...]
#
# DIR          a directory; its .dxf files (any case, subdirectories too) are the drawings
# OUT.jsonl    every drawing's line as kplan writes it (written whole, then combined);
#              what the jobs said on stderr goes to OUT.jsonl.errors
# PARALLEL OPTIONS are passed to GNU parallel as they are, for example
#   -j 4                          four local workers
#   --sshloginfile hosts.txt      the hosts of hosts.txt (one "user@host" or "4/host" a line,
#                                 ":" for this machine); each needs kplan on its PATH (or
#                                 KPLAN naming it) and the drawings at the same path, on a
#                                 shared disk (NFS, SMB)
#   --sshloginfile hosts.txt --retries 3
#                                 a job whose host fails is run again elsewhere
#   --sshloginfile hosts.txt --transferfile {}
#                                 the same, copying each drawing to the host that works on
#                                 it (into the ssh user's home, under the same relative path;
#                                 give DIR relative then) when there is no shared disk
#
# Environment: KPLAN the kplan program (default: kplan), KPLAN_OPTIONS more options of
# kplan stats for every drawing (for example "--boundary none --standard 通用国标"),
# COMBINE the combining step (default: combine_jsonl.py beside this script).
#
# Prints the combined tables (as `kplan stats DIR` prints its last section) and exits as
# kplan does: 0 when every drawing was read, 3 when some failed (each named on stderr), 1
# when none was. The jsonl lines are kept in OUT.jsonl: combine_jsonl.py OUT.jsonl prints
# the tables again, and combine_jsonl.py A.jsonl B.jsonl combines two batches.
set -euo pipefail

if [[ $# -lt 2 ]]; then
    sed -n '2,/^set -euo/p' "$0" | sed '$d' | sed 's/^# \{0,1\}//' >&2
    exit 2
fi
dir=$1
out=$2
shift 2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
kplan=${KPLAN:-kplan}
combine=${COMBINE:-$here/combine_jsonl.py}
command -v parallel >/dev/null || {
    echo "batch_stats: GNU parallel is not installed (Debian: apt-get install parallel)" >&2
    exit 1
}
[[ -d $dir ]] || {
    echo "batch_stats: $dir: not a directory" >&2
    exit 1
}

# One drawing a job, so that a host's failure loses one drawing, and each job's output is
# written whole (parallel groups it) as its own lines: a drawing's, then its run's total,
# which the combining step leaves aside. A drawing kplan cannot read still gives its line,
# with the error; parallel's count of failed jobs is not ours to report.
partial=$out.partial
expected=$out.drawings
find "$dir" -type f -iname '*.dxf' | LC_ALL=C sort >"$expected"
# shellcheck disable=SC2086  # KPLAN_OPTIONS are options, split as words
tr '\n' '\0' <"$expected" |
    parallel --null --will-cite "$@" \
        "$kplan" stats --quiet --format jsonl ${KPLAN_OPTIONS:-} {} >"$partial" \
        2>"$out.errors" || true
mv "$partial" "$out"
# What the jobs said on stderr (their drawings' errors, which their lines hold too, or why a
# job could not run) is kept beside the lines when there is any.
[[ -s $out.errors ]] || rm -f "$out.errors"
# A drawing without a line (its host was down, kplan missing there) counts as failed.
status=0
"$combine" --expect "$expected" "$out" || status=$?
rm -f "$expected"
exit "$status"
