# Completion of snaplift-cli for fish; the program itself knows what can come next.

function __snaplift_cli_candidates
    set -l words (commandline -opc)
    set -l word (commandline -ct)
    for line in ($words[1] complete $words[2..-1] "$word" 2>/dev/null)
        if test "$line" = /
            __fish_complete_directories "$word"
        else if test "$line" = '*'
            __fish_complete_path "$word"
        else
            echo $line
        end
    end
end

complete -c snaplift-cli -f -a '(__snaplift_cli_candidates)'
