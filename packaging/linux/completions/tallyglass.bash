# Completion of tallyglass for bash.
_tallyglass()
{
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command= other choices
    for other in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case $other in
            report|explain|audit|status) command=$other ;;
        esac
    done
    case $before in
        --window) choices='fiveHours hour day week month' ;;
        --tool) choices='codex claude copilot' ;;
        --count) choices='every once' ;;
        --model|--format) return ;;
        *)
            case $command in
                report) choices='--window --count --json --demo' ;;
                explain) choices='--window --tool --model --count --all --json --demo' ;;
                audit) choices='--window --json --demo' ;;
                status) choices='--window --tool --format --json' ;;
                *) choices='report explain audit status --demo --version' ;;
            esac
            choices+=' --help' ;;
    esac
    COMPREPLY=($(compgen -W "$choices" -- "$word"))
}
complete -F _tallyglass tallyglass
