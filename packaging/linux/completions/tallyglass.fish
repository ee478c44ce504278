# Completion of tallyglass for fish.
complete -c tallyglass -f
complete -c tallyglass -l help -s h -d 'Print a summary'
complete -c tallyglass -n __fish_use_subcommand -l version -d 'Print the version'
complete -c tallyglass -n __fish_use_subcommand -a report -d 'What is used'
complete -c tallyglass -n __fish_use_subcommand -a explain -d 'Where a figure comes from'
complete -c tallyglass -n __fish_use_subcommand -a audit -d 'Two ways of counting, and what is not read'
complete -c tallyglass -n __fish_use_subcommand -a status -d 'One line for a prompt or a bar'
set -l seen __fish_seen_subcommand_from
complete -c tallyglass -n "$seen report explain audit status" -l window -x \
    -a 'fiveHours hour day week month' -d 'One window'
complete -c tallyglass -n "$seen explain status" -l tool -x -a 'codex claude copilot' -d 'One tool'
complete -c tallyglass -n "$seen report explain" -l count -x -a 'every once' -d 'How to count'
complete -c tallyglass -n "$seen explain" -l model -x -d 'One model'
complete -c tallyglass -n "$seen explain" -l all -d 'Every record and reading'
complete -c tallyglass -n "$seen status" -l format -x -d 'Text with placeholders'
complete -c tallyglass -n "$seen report explain audit status" -l json -d 'Print JSON'
complete -c tallyglass -n "not $seen status" -l demo -d 'Work on a made-up home folder'
