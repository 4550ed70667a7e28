#!/usr/bin/env bats
# What packaging/spdx prints of the programs and the library of this build.
#
# Environment: SOURCE_TREE, LIBRARY, TOOL, READELF.

# shellcheck disable=SC2154 # run sets output
bats_require_minimum_version 1.5.0

setup() {
  export SOURCE_DATE_EPOCH=1700000000
  document="$BATS_TEST_TMPDIR/document"
}

spdx() {
  "$SOURCE_TREE/packaging/spdx" package 1.0.0 "$(dpkg --print-architecture)" "$@" >"$document"
}
validate() { /usr/bin/python3 "$BATS_TEST_DIRNAME/validate_spdx.py" "$1"; }

@test "Document_OfTheTool_NamesEveryLibraryWithItsVersion" {
  spdx "$TOOL"
  validate "$document"
  diff <("$READELF" -dW "$TOOL" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | grep -vE '^(ld-linux|libNetworkgRPC)' | sort) \
    <(jq -r '.packages[].comment // empty | ltrimstr("Linked: ") | split(", ")[]' "$document" | sort)
  for header in libcli11-dev nlohmann-json3-dev libtomlplusplus-dev; do
    [ "$(jq -r --arg name $header '.packages[] | select(.name == $name).versionInfo' "$document")" = \
      "$(dpkg-query -W -f '${Version}' $header)" ]
  done
  jq -e '.packages[:2] | map([.name, .licenseDeclared]) ==
    [["package", "NOASSERTION"], ["libnetworkgrpc1", "NOASSERTION"]]' "$document"
}

@test "Document_MadeTwice_IsTheSame" {
  spdx "$LIBRARY"
  mv "$document" "$document.first"
  TZ=Asia/Tokyo LC_ALL=C spdx "$LIBRARY"
  cmp "$document.first" "$document"
  run ! grep -i cli11 "$document"
}

@test "Validation_DocumentIsWrong_RejectsIt" {
  spdx "$LIBRARY" --contains doxygen
  validate "$document"
  while IFS='|' read -r change message; do
    jq "$change" "$document" >"$document.wrong"
    run -1 validate "$document.wrong"
    [[ $output == *"$message"* ]] || { echo "$change: $output"; return 1; }
  done <<'CHANGES'
del(.dataLicense)|'dataLicense' is a required property
.packages[1].SPDXID = .packages[0].SPDXID|two elements have the same SPDXID
del(.packages[1])|a relationship names what is not there
del(.relationships[-1])|no relationship names
del(.hasExtractedLicensingInfos[0])|licences used and licences given differ
.packages[0].licenseDeclared = "my own"|'my own' does not match
.creationInfo.created = "today"|'today' does not match
CHANGES
}
