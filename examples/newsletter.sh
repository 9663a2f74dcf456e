#!/bin/sh
# Sends an HTML file with the pictures that it shows to three people, and the same as plain text for
# readers without HTML.
#
#     newsletter.sh server[:port]
set -e
cd "$(dirname "$0")"
quorvane-send --server "$1" --from "Zoe <zoe@bjork.example>" \
    --to "Ann Miller <ann@example.org>" --to bob@example.org --bcc archive@bjork.example \
    --subject "Midsummer" \
    --html-file newsletter/newsletter.html --text-file newsletter/newsletter.txt
