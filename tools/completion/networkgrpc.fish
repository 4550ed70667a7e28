# fish completion of networkgrpc: the program itself knows what can come next.

function __networkgrpc_candidates
    set -l words (commandline -opc)
    set -l last (commandline -ct)
    # Not a list of none where nothing is typed yet.
    for line in ($words[1] __complete $words[2..-1] "$last" 2>/dev/null)
        if string match -q \t'*' -- $line
            __fish_complete_path "$last"
        else
            echo $line
        end
    end
end
complete -c networkgrpc -f -a '(__networkgrpc_candidates)'
