#!/bin/sh
# Sends through a relay that wants encryption and a password, which is the first line of a file
# "password" that nobody else may read.
#
#     login.sh server[:port]
set -e
quorvane-send --server "$1" --ssl --user zoe@bjork.example --password-file password \
    --from zoe@bjork.example --to ann@example.org --subject "Tonight" --text "Dinner at eight?"
