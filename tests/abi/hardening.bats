#!/usr/bin/env bats
# How the shared object and the programs are hardened against attacks.
#
# Environment: OBJECTS the shared object and the programs, a line each, FORTIFIED
# whether functions of the C library check their buffers (only an optimising build
# can), NM and READELF the build's own binutils, BUILD_TREE, FLAGS and
# PROGRAM_FLAGS, those that its compiler has for all code and for programs.

bats_require_minimum_version 1.5.0

# each COMMAND...: for every object, and names the one that fails.
each() {
  local object
  [ -n "$OBJECTS" ]
  while IFS= read -r object; do
    "$@" "$object" || { echo "$* $object"; return 1; }
  done <<<"$OBJECTS"
}

dynamic_section() { "$READELF" -dW "$1"; }
segments() { "$READELF" -lW "$1"; }
imports() { "$NM" -D --undefined-only "$1"; }

bound_at_load() { dynamic_section "$1" | grep -Eq '\((FLAGS|FLAGS_1)\).*\b(BIND_NOW|NOW)\b'; }
read_only_after() { segments "$1" | grep -q '^ *GNU_RELRO'; }
checks_stacks() { imports "$1" | grep -q ' __stack_chk_fail'; }
has_stack_that_is_no_code() { segments "$1" | grep -E '^ *GNU_STACK' | grep -qv ' RWE '; }
has_no_text_relocation() { dynamic_section "$1" | grep -q 'NEEDED' && ! dynamic_section "$1" | grep TEXTREL; }
has_no_segment_to_write_and_run() { segments "$1" | grep -q LOAD && ! segments "$1" | grep 'LOAD.* RWE '; }
is_position_independent() { "$READELF" -hW "$1" | grep -Eq 'Type: +DYN'; }
is_fortified_as_built() {
  if imports "$1" | grep -Eq ' __[a-z]+_chk(@|$)'; then
    [ "$FORTIFIED" = yes ]
  else
    [ "$FORTIFIED" != yes ]
  fi
}

# The shared object is the first.
programs() { tail -n +2 <<<"$OBJECTS"; }
asserts() { imports "$1" | grep -q '__glibcxx_assert_fail'; }

# compiled_with FLAG SOURCES: every file whose path matches.
compiled_with() {
  local commands
  commands=$(jq -r --arg sources "$2" '.[] | select(.file | test($sources)).command' "$BUILD_TREE/compile_commands.json")
  [ -n "$commands" ]
  run ! grep -vF -e " $1" <<<"$commands"
}

@test "programs check the library of C++" {
  OBJECTS=$(programs) each asserts
}
@test "everything is compiled with the flags that the compiler has" {
  all='/(abi|call_frame|client|dante|network|state_document|simulator|terminal|tools|conformance)/[^/]*[.]cc$'
  for flag in $FLAGS; do compiled_with "$flag" "$SOURCE_TREE$all"; done
  for flag in $PROGRAM_FLAGS; do compiled_with "$flag" "$SOURCE_TREE/(tools|conformance|terminal)/[^/]*[.]cc$"; done
}
@test "symbols are bound at load" { each bound_at_load; }
@test "what is bound is then read-only" { each read_only_after; }
@test "functions with buffers check their stack" { each checks_stacks; }
@test "functions of the C library check their buffers" { each is_fortified_as_built; }
@test "the stack cannot be run" { each has_stack_that_is_no_code; }
@test "no code needs to be changed at load" { each has_no_text_relocation; }
@test "no memory can be both written and run" { each has_no_segment_to_write_and_run; }
@test "code runs at any address" { each is_position_independent; }
