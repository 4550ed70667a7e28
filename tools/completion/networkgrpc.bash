# bash completion of networkgrpc: `networkgrpc __complete` prints the candidates.

_networkgrpc() {
  local words=() word joined='' line typed
  # bash splits "--name=lan0" and "127.0.0.1:50007" into several words.
  for word in "${COMP_WORDS[@]:1:COMP_CWORD}"; do
    if [[ ${#words[@]} -gt 0 && ( -n $joined || $word == [:=]* ) ]]; then
      words[-1]+=$word
    else
      words+=("$word")
    fi
    joined=${word##*[!:=]}
  done
  # bash replaces only the last part of such a word.
  typed=${words[-1]}
  [[ $typed == *[:=]* ]] && typed=${typed%"${typed##*[:=]}"} || typed=''
  COMPREPLY=()
  while IFS= read -r line; do
    line=${line#"$typed"}
    case $line in
      $'\t'*) compopt -o default ;;
      *) COMPREPLY+=("$(printf '%q' "${line%%$'\t'*}")") ;;
    esac
  done < <("${COMP_WORDS[0]}" __complete "${words[@]}" 2>/dev/null)
}
complete -F _networkgrpc networkgrpc
