#!/usr/bin/env bats
# The documents compared with the source tree.
#
# Environment: SOURCE_TREE.

setup() {
  cd "$SOURCE_TREE" || exit
}

# The Markdown files of the tree.
pages() { find . -path ./build -prune -o -name '*.md' -printf '%P\n'; }

# code_block LANGUAGE FILE: the first fenced block of that language.
code_block() {
  awk -v fence="\`\`\`$1" '$0 == "```" && inside { exit } inside; $0 == fence { inside = 1 }' "$2"
}

@test "documents quote the examples as they are" {
  diff <(code_block cpp README.md) examples/overview.cc
  diff <(code_block c README.md) examples/overview.c
  diff <(code_block cpp docs/daemon.md) examples/cookbook/write_daemon.cc
  diff <(code_block python docs/python.md) python/examples/overview.py
}

# squashed FILE: the file without white space.
squashed() { tr -d '[:space:]' <"$1"; }

# header_examples HEADER: the code in its comments, one example per line, without white space.
header_examples() {
  awk '/@endcode/ { inside = 0; print "" } inside { sub(/^ *(\/\/\/| \*) ?/, ""); gsub(/[ \t]/, ""); printf "%s", $0 }
       /@code/ { inside = 1 }' "$1"
}

@test "every class of the public headers has an example, quoted from the cookbook" {
  local header example recipe found classes
  for header in network/*gRPC*.h dante/DantegRPC.h client/*Client.h; do
    classes=$(grep -cE '^ *(class|struct|typedef struct) .*\{$' "$header")
    [ "$(header_examples "$header" | wc -l)" -eq "$classes" ] || { echo "$header"; return 1; }
    while read -r example; do
      found=
      for recipe in examples/cookbook/*.c*; do
        [[ $(squashed "$recipe") != *"$example"* ]] || found=1
      done
      [ -n "$found" ] || { echo "$header: $example"; return 1; }
    done < <(header_examples "$header")
  done
}

@test "from-clients.md has every method of the clients" {
  local method missing=
  while read -r method; do
    grep -q "\`$method\`" docs/from-clients.md || missing+=" $method"
  done < <(sed -nE 's/^  (static |grpc::|std::)[A-Za-z0-9_:&]+ ([A-Za-z0-9]+)\(.*/\2/p' client/*Client.h)
  fail_if_any "$missing"
}

# settings: one line per variable that the library reads: VARIABLE|DEFAULT|MEANING.
settings() {
  tr -d '\n' <client/environment.h | grep -oE 'Setting k[A-Za-z]+\{[^}]*\}' |
    sed -E 's/^[^"]*"([^"]*)", *"([^"]*)", *"[^"]*", *"([^"]*)"\}$/\1|\2|\3/'
}

@test "README lists the environment variables with the library's defaults" {
  local variable fallback meaning
  [ "$(settings | wc -l)" -eq 5 ]
  while IFS='|' read -r variable fallback meaning; do
    grep -qE "^\| \`$variable\` \| \`$fallback\` \| $meaning\b" README.md
  done < <(settings)
}

@test "networkgrpc-environment(7) lists the environment variables with the library's defaults" {
  local variable fallback meaning
  [ "$(grep -c '^\.It Ev ' man/networkgrpc-environment.7)" -eq "$(settings | wc -l)" ]
  while IFS='|' read -r variable fallback meaning; do
    grep -xF -A1 ".It Ev $variable Pq default Li $fallback" man/networkgrpc-environment.7 |
      grep -q "^${meaning^}"
  done < <(settings)
}

@test "the public headers name the environment variables with the library's defaults" {
  local variable fallback meaning text
  text=$(sed 's|^ *//*[ *]*||' network/NetworkgRPC.h dante/DantegRPC.h | tr '\n' ' ')
  while IFS='|' read -r variable fallback meaning; do
    grep -qE "$variable(,| \()? ?default \"$fallback\"" <<<"$text"
  done < <(settings)
}

# The functions of the facades and of C.
functions() {
  sed -nE 's/^ *(static bool|int) ([A-Za-z0-9]+)\(.*/\2/p' \
    network/NetworkgRPC.h dante/DantegRPC.h network/NetworkgRPC_c.h
}

@test "libNetworkgRPC(3) lists every function" {
  local function
  [ "$(functions | wc -l)" -gt 40 ]
  while read -r function; do
    grep -qE "^\.It .*Fn $function( |\$)" man/libNetworkgRPC.3 || { echo "$function is missing"; return 1; }
  done < <(functions)
}

@test "mandoc accepts the hand-written manual pages" {
  mandoc -T lint -W warning man/libNetworkgRPC.3 man/networkgrpc-environment.7
}

@test "the options of the build are listed with their defaults" {
  local option default
  find . -path ./build -prune -o -name CMakeLists.txt -exec grep -h '^option(' {} + >"$BATS_TEST_TMPDIR/options"
  [ "$(wc -l <"$BATS_TEST_TMPDIR/options")" -ge 8 ]
  while read -r option default; do
    # shellcheck disable=SC2016 # CMake's variable, and code in a document
    case "$default" in
      '${PROJECT_IS_TOP_LEVEL}') default='`ON`, `OFF` inside another project' ;;
      *) default="\`$default\`" ;;
    esac
    grep -qF "| \`$option\` | $default |" docs/building.md || { echo "$option"; return 1; }
  done < <(sed -E 's/^option\(([A-Z_]+) .* ([^ ]+)\)$/\1 \2/' "$BATS_TEST_TMPDIR/options")
}

@test "the variables that a recipe sets exist" {
  local variable
  grep -oP '(`|-D)\KNETWORKGRPC_[A-Z0-9_]+' docs/build_systems.md | sort -u >"$BATS_TEST_TMPDIR/variables"
  [ "$(wc -l <"$BATS_TEST_TMPDIR/variables")" -ge 8 ]
  while read -r variable; do
    grep -rqw --include=CMakeLists.txt --include='*.cmake' "$variable" CMakeLists.txt cmake man python tools || { echo "$variable"; return 1; }
  done <"$BATS_TEST_TMPDIR/variables"
}

@test "the presets are listed" {
  local preset
  while read -r preset; do
    grep -qF "| \`$preset\` |" docs/building.md
  done < <(jq -r '.configurePresets[] | select(.hidden | not) | .name' CMakePresets.json)
}

# fail_if_any LINES: prints the lines; fails if there are any.
fail_if_any() {
  printf '%s' "$1"
  [ -z "$1" ]
}

@test "every relative link of a page leads to a file" {
  local page link missing=
  while IFS=: read -r page link; do
    [ -e "$(dirname "$page")/${link%%#*}" ] || missing+="$page: $link"$'\n'
  done < <(pages | xargs grep -oHP '\]\(\K(?!https?:|#)[^)]+')
  fail_if_any "$missing"
}

@test "every file and folder that a page names exists" {
  local folders page path missing=
  folders=$(find . -mindepth 1 -maxdepth 1 -type d ! -name build ! -name .git -printf '\\Q%f\\E|')
  while IFS=: read -r page path; do
    compgen -G "$path" >/dev/null || missing+="$page: $path"$'\n'
  done < <(pages | xargs grep -oHP "(?<![\w/.$-])(${folders%|})/[\w./*-]*[\w/*]")
  fail_if_any "$missing"
}

@test "every test that a page names exists" {
  local page test missing=
  while IFS=: read -r page test; do
    grep -rqzE "TEST(_F|_P)?\\(${test%.*},\s*${test#*.}" --include='*.cc' tests || missing+="$page: $test"$'\n'
  done < <(pages | xargs grep -oHP '\x60(\w+/)?\K[A-Z]\w+[.][A-Z]\w+(?=([.]{3})?\x60)')
  fail_if_any "$missing"
}
