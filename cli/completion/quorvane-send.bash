# Completion of quorvane-send for bash.

_quorvane_send() {
    local options='--server --direct --user --password-file --spa --ssl --timeout --attempts --helo
        --from --to --cc --bcc --reply-to --subject --header --priority --read-receipt --message-id
        --text --text-file --html --html-file --no-import --alt --body-file --charset --alt-charset
        --encoding --attach --inline --count --async --threads --json --quiet --verbose --dry-run
        --help --help-all --version'
    local word=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]}
    # "--option=value" comes in three words.
    if [[ $word == '=' ]]; then
        word=
    elif [[ $option == '=' ]]; then
        option=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    COMPREPLY=()
    case $option in
        --attach | --inline | --text-file | --html-file | --body-file | --password-file)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            ;;
        --server) mapfile -t COMPREPLY < <(compgen -A hostname -- "$word") ;;
        --priority) mapfile -t COMPREPLY < <(compgen -W 'high normal low' -- "$word") ;;
        --encoding)
            mapfile -t COMPREPLY < <(compgen -W 'default 7bit 8bit qp base64' -- "$word")
            ;;
        --charset | --alt-charset)
            mapfile -t COMPREPLY < <(compgen -W 'utf-8 iso-8859-1 us-ascii' -- "$word")
            ;;
        --user | --timeout | --attempts | --helo | --from | --to | --cc | --bcc | --reply-to | \
            --subject | --header | --message-id | --text | --html | --alt | --count | --threads) ;;
        *) mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word") ;;
    esac
}

complete -F _quorvane_send quorvane-send
