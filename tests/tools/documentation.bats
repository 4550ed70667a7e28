#!/usr/bin/env bats
# Runs every example of the manual pages and of docs/tool.md, each against a new device;
# checks the manual pages; compares the README's tour with the output of scripts/demo.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

# examples_of ARGUMENT...: the examples that a help text shows.
examples_of() { tool "$@" | sed -n '/^Examples:$/,$ s/^  \$ //p'; }

with_tool() { PATH="$(dirname "$TOOL"):$PATH" "$@"; }

# run_examples: runs the lines of standard input; each must exit with 0.
run_examples() {
  local example count=0
  cd "$BATS_TEST_TMPDIR" || return
  while IFS= read -r example; do
    start_simulator
    with_tool bash -c "$example" >output 2>&1 </dev/null || { echo "$example"; cat output; return 1; }
    stop_devices
    count=$((count + 1))
  done
  [ "$count" -gt 0 ]
}

@test "Examples_OfEveryNoun_ExitWithZero" {
  for noun in $(tool __complete '' | cut -f1); do
    run_examples < <(examples_of "$noun" --help-all)
  done
}

@test "Examples_OfTheTool_ExitWithZero" { run_examples < <(examples_of --help); }

@test "Examples_OfTheGuide_ExitWithZero" {
  # shellcheck disable=SC2016 # backticks of Markdown
  run_examples < <(sed -n '/^```sh$/,/^```$/p' "$SOURCE_TREE/docs/tool.md" | grep -v '^```' |
    sed -E 's/ +# .*//')
}

@test "FiveMinutes_CommandsOfThePage_ChangeTheRouting" {
  cd "$BATS_TEST_TMPDIR"
  # The page starts a shell on a simulated device, which reads the rest.
  PATH="$(dirname "$TOOL"):$(dirname "$SIMULATOR"):$PATH"
  # shellcheck disable=SC2016 # backticks of Markdown
  run -0 env SHELLOPTS=errexit bash < <(sed -n '/^```sh$/,/^```$/p' "$SOURCE_TREE/docs/five_minutes.md" | grep -v '^```')
  [[ $output == *"receive channel 16 is subscribed to Mic 8 @ Stage box"$'\nMic 8\n'* ]]
  grep -q '^16,Stage box,Mic 8,' patch.csv
  jq -e '.dante.routing[15].channel == "Mic 8"' state.json
}

@test "ManualPages_EveryNoun_ExistAndPassLint" {
  [ -e "$MAN_PAGES/networkgrpc.1" ] || skip "help2man was not installed"
  for noun in $(tool __complete '' | cut -f1); do [ -e "$MAN_PAGES/networkgrpc-$noun.1" ]; done
  [ -e "$MAN_PAGES/networkgrpc-simulator.1" ]
  run -0 mandoc -Tlint "$MAN_PAGES"/*.1
  [ -z "$output" ]
}

@test "ManualPages_OfPrograms_HaveTheUsualSections" {
  for page in networkgrpc networkgrpc-simulator; do
    for section in NAME '"EXIT STATUS"' ENVIRONMENT EXAMPLES; do
      grep -qxF ".SH $section" "$MAN_PAGES/$page.1"
    done
  done
  grep -qxF '.SH FILES' "$MAN_PAGES/networkgrpc-simulator.1"
}

@test "Tour_OfTheReadme_IsTheOutputOfTheDemo" {
  cd "$SOURCE_TREE" || return
  NETWORKGRPC_BUILD=$(dirname "$(dirname "$TOOL")") scripts/demo --transcript >"$BATS_TEST_TMPDIR/tour"
  sed -n '/<!-- tour -->/,/<!-- end of the tour -->/p' README.md | grep -Ev '^(<!--|```)' |
    diff -u - "$BATS_TEST_TMPDIR/tour"
}
