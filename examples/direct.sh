#!/bin/sh
# Sends directly to the mail server of the recipient's domain.
set -e
quorvane-send --direct --helo host.example.com --from zoe@bjork.example --to ann@example.org \
    --subject "Tonight" --text "Dinner at eight?"
