# fish completion of networkgrpc: the program itself knows what can come next.

function __networkgrpc_candidates
    set -l words (commandline -opc) (commandline -ct)
    $words[1] __complete $words[2..-1] 2>/dev/null
end
complete -c networkgrpc -a '(__networkgrpc_candidates)'
