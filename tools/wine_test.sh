#!/usr/bin/env bash
# Runs a Windows program under Wine. Once in some hundreds of starts Wine ends before the program's first instruction,
# with a failure and without a word. That isn't the program's failure, so it is started again, at most twice; a program
# that has printed anything is not.
set -uo pipefail
output=$(mktemp)
trap 'rm -f "$output"' EXIT
for _ in 1 2 3; do
  wine "$@" >"$output" 2>&1 </dev/null
  status=$?
  if [ $status -eq 0 ] || [ -s "$output" ]; then break; fi
  echo "wine_test.sh: '$1' ended with $status before its first line" >&2
done
cat "$output"
exit $status
