# fish completion for sweepctl. The words come from the program itself ("sweepctl complete WORD..."),
# so that they are those of its help and of the device that is named.

function __sweepctl_words
    set -l words (commandline --tokenize --cut-at-cursor --current-process)
    set -l program $words[1]
    set -e words[1]
    set -l token (commandline --current-token --cut-at-cursor)
    # A quote may still be open.
    set -l last (string unescape -- "$token"; or string trim --left --chars='"\'' -- "$token")
    for line in ($program complete $words "$last" 2>/dev/null </dev/null)
        if string match --quiet --regex '^\t' -- $line
            set -l name (string match --regex -- '^--[a-z-]+=' "$token")
            for folder in (__fish_complete_directories (string replace -- "$name" '' "$token") '')
                echo "$name$folder"
            end
        else
            echo $line
        end
    end
end

complete --command sweepctl --no-files --keep-order --arguments '(__sweepctl_words)'
