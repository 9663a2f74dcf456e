#!/bin/sh
# Sends what another command says, and writes the outcome into a log.
#
#     pipe.sh server[:port]
df -h | quorvane-send --server "$1" --from root@bjork.example --to ops@bjork.example \
    --subject "Disks of $(hostname)" --text - --json >>mail.log || echo "no mail: see mail.log" >&2
