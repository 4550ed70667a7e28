#!/usr/bin/env bats
# The preset for editors has the compile command of every source.
#
# Environment: SOURCE_TREE, CMAKE.

@test "Preset_Editor_HasACompileCommandForEverySource" {
  cd "$SOURCE_TREE"
  grep -qx '  CompilationDatabase: build/editor' .clangd
  "$CMAKE" --preset editor -B "$BATS_TEST_TMPDIR" >/dev/null
  jq -r '.[].file' "$BATS_TEST_TMPDIR/compile_commands.json" | sort -u >"$BATS_TEST_TMPDIR/compiled"
  find "$PWD"/{call_frame,client,conformance,dante,examples,network,python,simulator,state_document,support,terminal,tools,wire_schema} \
    -name '*.cc' ! -name simulated_device.cc | sort >"$BATS_TEST_TMPDIR/sources"
  [ "$(wc -l <"$BATS_TEST_TMPDIR/sources")" -gt 50 ]
  run comm -13 "$BATS_TEST_TMPDIR/compiled" "$BATS_TEST_TMPDIR/sources"
  echo "$output"
  [ -z "$output" ]
  # GCC's default is the language of this project, clangd's is not.
  jq -r '.[] | select(.file | endswith(".cc")) | .command' "$BATS_TEST_TMPDIR/compile_commands.json" >"$BATS_TEST_TMPDIR/commands"
  [ "$(grep -c -e ' -std=c++17 ' "$BATS_TEST_TMPDIR/commands")" -eq "$(wc -l <"$BATS_TEST_TMPDIR/commands")" ]
}
