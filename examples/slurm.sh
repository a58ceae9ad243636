#!/usr/bin/env bash
# Processes a folder of pictures as a Slurm job array, and then verifies the results of all its tasks:
#     examples/slurm.sh TASKS IN OUT CALL...
# Run it again, with as many tasks, to finish what failed or was cancelled. sbatch takes further options from
# SBATCH_... variables. The program is $KRLIMAGE, or krlimage on the path.
set -eu
[ $# -ge 4 ] || { echo "usage: $0 TASKS IN OUT CALL..." >&2; exit 2; }
tasks=$1 in=$2 out=$3
shift 3
krlimage=${KRLIMAGE:-krlimage}
words() { printf '%q ' "$@"; }

array=$(sbatch --parsable --job-name=krlimage --array="1-$tasks" <<END
#!/bin/bash
exec $(words "$krlimage" apply "$in" -o "$out" "$@") \\
    --recursive --resume --shard auto --retry 5 --jobs "\${SLURM_CPUS_PER_TASK:-1}"
END
)
check=$(sbatch --parsable --job-name=krlimage-verify --dependency="afterany:$array" <<END
#!/bin/bash
exec $(words "$krlimage" ledger verify "$out")
END
)
echo "job $array has $tasks tasks, job $check verifies their results"
