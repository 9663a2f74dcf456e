#!/bin/bash
# regsvr32.sh RUN-WINE SCRIPTHOST LIBRARY: registers the library as its users do, and takes it
# back. Leaves it registered, for the scripts that come after.
set -uo pipefail
run_wine=$1 host=$2 library=$3
here=$(cd "$(dirname "$0")" && pwd)

die() {
    echo "regsvr32.sh: $*" >&2
    exit 1
}

created() { "$run_wine" "$host" -t 60 "$here/create.vbs"; }

cd "$(dirname "$library")" || exit 1
for step in first again; do
    "$run_wine" regsvr32 /s "$(basename "$library")" || die "can't register ($step)"
    created || die "the classes can't be created after registration ($step)"
done
"$run_wine" regsvr32 /u /s "$(basename "$library")" || die "can't unregister"
created 2>/dev/null
[ $? -eq 3 ] || die "a class can still be created"
"$run_wine" regsvr32 /s "$(basename "$library")" || die "can't register once more"
created || die "the classes can't be created after all"
