# fish completion of networkgrpc: `networkgrpc __complete` prints the candidates.

function __networkgrpc_candidates
    set -l words (commandline -opc)
    set -l last (commandline -ct)
    # "$last" is an argument even if nothing has been typed yet.
    for line in ($words[1] __complete $words[2..-1] "$last" 2>/dev/null)
        if string match -q \t'*' -- $line
            __fish_complete_path "$last"
        else
            echo $line
        end
    end
end
complete -c networkgrpc -f -a '(__networkgrpc_candidates)'
