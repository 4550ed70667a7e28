# bash completion of networkgrpc: the program itself knows what can come next.

_networkgrpc() {
  local words=() word joined='' line typed
  # bash takes "--name=lan0" and "127.0.0.1:50007" apart; the program does not.
  for word in "${COMP_WORDS[@]:1:COMP_CWORD}"; do
    if [[ ${#words[@]} -gt 0 && ( -n $joined || $word == [:=]* ) ]]; then
      words[-1]+=$word
    else
      words+=("$word")
    fi
    joined=${word##*[!:=]}
  done
  # What stands before the last piece of such a word stays as it is.
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
