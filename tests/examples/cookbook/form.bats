#!/usr/bin/env bats
# The form of the cookbook, and that it leaves no function out.
#
# Environment: SOURCE_TREE, BUILD_TREE, CMAKE.

setup() {
  cd "$SOURCE_TREE/examples/cookbook" || exit
}

recipes() { printf '%s\n' *.cc *.c *.py *.sh; }

@test "AnyRecipe_HasAtMostSixtyLines" {
  local recipe
  while read -r recipe; do
    [ "$(wc -l <"$recipe")" -le 60 ] || { wc -l "$recipe"; return 1; }
  done < <(recipes)
}

@test "AnyRecipe_OpensWithWhatItShows" {
  local recipe
  while read -r recipe; do
    grep -v '^#!' "$recipe" | head -n 1 | grep -qE '^(// |/\* |# |""")[A-Z].*[^ ]$' || { echo "$recipe"; return 1; }
  done < <(recipes)
}

@test "AnyRecipe_IsLinkedOnThePage" {
  local recipe
  while read -r recipe; do
    grep -qF "[$recipe](../examples/cookbook/$recipe)" "$SOURCE_TREE/docs/cookbook.md" || { echo "$recipe"; return 1; }
  done < <(recipes)
}

# The functions of the facades and of C, with their classes.
functions() {
  sed -nE 's/^ *static bool ([A-Za-z0-9]+)\(.*/NetworkgRPC::\1/p' "$SOURCE_TREE/network/NetworkgRPC.h"
  sed -nE 's/^ *static bool ([A-Za-z0-9]+)\(.*/DantegRPC::\1/p' "$SOURCE_TREE/dante/DantegRPC.h"
  sed -nE 's/^int ([A-Za-z]+)\(.*/\1/p' "$SOURCE_TREE/network/NetworkgRPC_c.h"
}

@test "AnyExportedFunction_HasARecipe" {
  [ "$(functions | wc -l)" -ge 47 ]
  local function without=
  while read -r function; do
    cat -- *.cc *.c | sed 's|//.*||' | grep -qw "$function" || without+=" $function"
  done < <(functions)
  echo "without an example:$without"
  [ -z "$without" ]
}

@test "Install_HasEveryRecipe" {
  "$CMAKE" --install "$BUILD_TREE" --component cookbook --prefix "$BATS_TEST_TMPDIR" >/dev/null
  local installed
  installed=$(find "$BATS_TEST_TMPDIR" -type d -name cookbook)
  diff -r --exclude=CMakeLists.txt . "$installed"
}
