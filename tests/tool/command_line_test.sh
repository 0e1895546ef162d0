#!/bin/sh
# lorekeep-tool as a user runs it: usage errors end with status 2.
set -u
tool="$1"
"$tool" >/dev/null 2>&1; [ $? -eq 2 ] || { echo "no command: not 2"; exit 1; }
"$tool" bogus >/dev/null 2>&1; [ $? -eq 2 ] || { echo "unknown command: not 2"; exit 1; }
exit 0
