#!/usr/bin/env bats
# Every help page of both programs is at most 80 columns wide.
#
# Environment: TOOL and SIMULATOR, the programs.

bats_require_minimum_version 1.5.0

# walk WORD...: prints the command line of a command and of those below it.
walk() {
  printf '%s\n' "$*"
  local command
  while read -r command; do
    walk "$@" "$command"
  done < <("$@" --help | sed -n '/^Commands:$/,/^$/ s/^  \([a-z][a-z0-9-]*\).*/\1/p')
}

# check_pages PROGRAM LEAST: LEAST is the number of commands that a walk must reach.
check_pages() {
  local line words page count=0
  while read -r line; do
    read -r -a words <<<"$line"
    page=$("${words[@]}" "$help")
    count=$((count + 1))
    awk -v page="$line $help" '
      length > 80 || / $/ { print page ": " length " columns: " $0 "|"; bad = 1 }
      END { exit bad }' <<<"$page"
  done < <(walk "$1")
  [ "$count" -ge "$2" ]
}

@test "Help_EveryCommandOfTheTool_IsAtMost80ColumnsWide" {
  for help in --help --help-all; do check_pages "$TOOL" 40; done
}

@test "Help_EveryCommandOfTheSimulator_IsAtMost80ColumnsWide" {
  help=--help check_pages "$SIMULATOR" 10
}
