# bash completion of networkgrpc: the program itself knows what can come next.

_networkgrpc() {
  local line
  COMPREPLY=()
  while IFS= read -r line; do
    COMPREPLY+=("$(printf '%q' "${line%%$'\t'*}")")
  done < <("${COMP_WORDS[0]}" __complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -o default -F _networkgrpc networkgrpc
