# The documents against the tree that they speak of.

setup() {
  cd "$SOURCE_DIR" || exit
}

# code_block LANGUAGE FILE: the first fenced block of that language.
code_block() {
  awk -v fence="\`\`\`$1" '$0 == "```" && inside { exit } inside; $0 == fence { inside = 1 }' "$2"
}

@test "README quotes the examples as they are" {
  diff <(code_block cpp README.md) examples/overview.cc
  diff <(code_block c README.md) examples/overview.c
}

# The variables that the library reads, each with its default.
settings() {
  sed -n 's/^inline constexpr Setting k[A-Za-z]*{"\(.*\)", "\(.*\)"};$/\1 \2/p' client/environment.h
}

@test "README lists the environment variables with the library's defaults" {
  local variable fallback
  [ "$(settings | wc -l)" -eq "$(grep -c '^inline constexpr Setting' client/environment.h)" ]
  while read -r variable fallback; do
    grep -qF "| \`$variable\` | \`$fallback\` |" README.md
  done < <(settings)
}

@test "every relative link of the documents leads somewhere" {
  local document link missing=
  for document in *.md docs/*.md; do
    while read -r link; do
      [ -e "$(dirname "$document")/${link%%#*}" ] || missing+="$document: $link"$'\n'
    done < <(grep -oE '\]\([^)]+\)' "$document" | sed 's/^](//; s/)$//' | grep -vE '^(https?:|#)')
  done
  printf '%s' "$missing"
  [ -z "$missing" ]
}
