#!/usr/bin/env bats
# The source archive, made in clones of this tree. It has what is committed.
#
# Environment: SOURCE_TREE; CMAKE, CMAKE_GENERATOR, CC and CXX, the tools of the build.

setup() {
  commit_date=$(git -C "$SOURCE_TREE" log -1 --format=%ct) || skip "the tree is not a clone"
}

# archive FOLDER: makes it in a clone there, and prints its path.
archive() {
  git clone --quiet --shared "$SOURCE_TREE" "$1"
  "$1/scripts/dist" >/dev/null
  echo "$1"/build/dist/networkgrpc-*.tar.gz
}

# without_network COMMAND...
without_network() {
  if unshare --map-root-user --net true; then unshare --map-root-user --net "$@"; else "$@"; fi
}

@test "Dist_TwoClones_MakesTheSameBytes" {
  first=$(archive "$BATS_TEST_TMPDIR/first")
  umask 077
  second=$(TZ=Asia/Tokyo archive "$BATS_TEST_TMPDIR/second clone")
  cmp "$first" "$second"
}

@test "Dist_ArchiveWithoutGitAndNetwork_HasTheDateAndBuildsTheLibrary" {
  tar -xf "$(archive "$BATS_TEST_TMPDIR/clone")" -C "$BATS_TEST_TMPDIR"
  mkdir "$BATS_TEST_TMPDIR/programs"
  printf '#!/bin/sh\necho "git $*" >&2\nexit 99\n' >"$BATS_TEST_TMPDIR/programs/git"
  chmod +x "$BATS_TEST_TMPDIR/programs/git"
  export PATH="$BATS_TEST_TMPDIR/programs:$PATH"

  cd "$BATS_TEST_TMPDIR"/networkgrpc-*
  # shellcheck disable=SC2016 # expanded by the other shell
  [ "$(env -u SOURCE_DATE_EPOCH bash -c 'source scripts/lib/common.sh && export_date && echo "$SOURCE_DATE_EPOCH"')" \
    -eq "$commit_date" ]
  local options=()
  for part in SIMULATOR TOOLS EXAMPLES TESTS; do options+=("-DNETWORKGRPC_BUILD_$part=OFF"); done
  without_network "$CMAKE" -B build -DCMAKE_UNITY_BUILD=ON -DCMAKE_BUILD_TYPE=Debug "${options[@]}"
  without_network "$CMAKE" --build build --parallel 2
  [ -e build/libNetworkgRPC.so.1 ]
}
