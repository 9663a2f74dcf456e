#!/bin/sh
# Sends a short text with quorvane-send.
#
#     simple.sh server[:port]
set -e
quorvane-send --server "$1" --from zoe@bjork.example --to ann@example.org \
    --subject "Tonight" --text "Dinner at eight?"
