#!/bin/sh
# Sends a mail of their own to each of those whose addresses stand in a file, one a line. Those that
# failed are written into another, FILE.failed, which can be the list of the next attempt.
#
#     each.sh server[:port] file
set -e
: >"$2.failed"
while read -r reader || [ -n "$reader" ]; do
    quorvane-send --server "$1" --from zoe@bjork.example --to "$reader" --quiet \
        --subject "Midsummer" --text "Dinner at eight?" || echo "$reader" >>"$2.failed"
done <"$2"
[ ! -s "$2.failed" ]
