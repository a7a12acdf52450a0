# Completion of framekeeper-cli for fish.
set -l verbs list info reveal quit trash restore delete swap-icon login places report

complete -c framekeeper-cli -f
complete -c framekeeper-cli -n "not __fish_seen_subcommand_from $verbs" -a list -d "All copies on this computer"
complete -c framekeeper-cli -n "not __fish_seen_subcommand_from $verbs" -a info -d "What is known of these copies"
complete -c framekeeper-cli -n "not __fish_seen_subcommand_from $verbs" -a reveal -d "Show them in the file browser"
complete -c framekeeper-cli -n "not __fish_seen_subcommand_from $verbs" -a quit -d "Ask the running copies to quit"
complete -c framekeeper-cli -n "not __fish_seen_subcommand_from $verbs" -a trash -d "Move them to the trash"
complete -c framekeeper-cli -n "not __fish_seen_subcommand_from $verbs" -a restore -d "Put them back from the trash"
complete -c framekeeper-cli -n "not __fish_seen_subcommand_from $verbs" -a delete -d "Delete them for good"
complete -c framekeeper-cli -n "not __fish_seen_subcommand_from $verbs" -a swap-icon -d "Give them the other one of their icons"
complete -c framekeeper-cli -n "not __fish_seen_subcommand_from $verbs" -a login -d "The copies that start at login"
complete -c framekeeper-cli -n "not __fish_seen_subcommand_from $verbs" -a places -d "The copies in the places"
complete -c framekeeper-cli -n "not __fish_seen_subcommand_from $verbs" -a report -d "One page of the copies on many hosts"
complete -c framekeeper-cli -n "__fish_seen_subcommand_from login" -a "add remove"
complete -c framekeeper-cli -n "__fish_seen_subcommand_from places" -a remove
complete -c framekeeper-cli -n "__fish_seen_subcommand_from info reveal quit trash restore delete swap-icon add remove report" -F
complete -c framekeeper-cli -l json -d "Output for programs"
complete -c framekeeper-cli -s 0 -l null -d "Paths alone, each with a NUL behind it"
complete -c framekeeper-cli -l csv -d "The report as rows for a spreadsheet"
complete -c framekeeper-cli -s y -l yes -d "Delete without asking"
complete -c framekeeper-cli -s h -l help -d "How the command is used"
complete -c framekeeper-cli -l version -d "The version"
