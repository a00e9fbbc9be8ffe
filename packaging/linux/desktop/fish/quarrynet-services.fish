# Completions of fish for quarrynet-services.

set -l commands index crawl serve check status help
set -l none "not __fish_seen_subcommand_from $commands"

complete -c quarrynet-services -f
complete -c quarrynet-services -s h -l help -d 'Show the commands or options'
complete -c quarrynet-services -n $none -l version -d 'Show the version'
complete -c quarrynet-services -n $none -a index -d 'Make the index for the searches'
complete -c quarrynet-services -n $none -a crawl -d 'List the files of a server and add them to the index'
complete -c quarrynet-services -n $none -a serve -d 'Answer searches'
complete -c quarrynet-services -n $none -a check -d 'Ask each configured source one search'
complete -c quarrynet-services -n $none -a status -d 'Say what is indexed and what answers'
complete -c quarrynet-services -n $none -a help -d 'Show the commands'

set -l index '__fish_seen_subcommand_from index'
complete -c quarrynet-services -n $index -l if-needed -d 'Do nothing if there is a usable index'
complete -c quarrynet-services -n $index -l force -d 'Replace a newer index, or one that has much more'
complete -c quarrynet-services -n $index -l wait -d 'Wait while another process writes the index'
complete -c quarrynet-services -n $index -l packages -rF -d 'Package stanzas instead of the lists of this machine'
complete -c quarrynet-services -n $index -l mirror -x -d 'The mirror that has these packages'
complete -c quarrynet-services -n $index -l catalog -rF -d 'A software catalog of these packages'
complete -c quarrynet-services -n $index -l contents -rF -d 'A contents list of these packages'
complete -c quarrynet-services -n $index -l folder -x -a '(__fish_complete_directories)' -d 'HTML pages instead of the installed documentation'
complete -c quarrynet-services -n $index -l pictures -x -a '(__fish_complete_directories)' -d 'Pictures instead of the installed ones'

set -l crawl '__fish_seen_subcommand_from crawl'
complete -c quarrynet-services -n $crawl -l due -d 'Crawl the configured servers that are due'
complete -c quarrynet-services -n $crawl -l depth -x -d 'Maximum depth below the first directory'
complete -c quarrynet-services -n $crawl -l entries -x -d 'Maximum number of names'
complete -c quarrynet-services -n $crawl -l minutes -x -d 'Maximum duration in minutes'
complete -c quarrynet-services -n $crawl -l rate -x -d 'Maximum directories per second'

set -l serve '__fish_seen_subcommand_from serve'
set -l listening '__fish_seen_subcommand_from serve status'
complete -c quarrynet-services -n $listening -l web-address -x -d 'Where the web search listens'
complete -c quarrynet-services -n $listening -l image-address -x -d 'Where the image search listens'
complete -c quarrynet-services -n $listening -l download-address -x -d 'Where the download search listens'
complete -c quarrynet-services -n $listening -l file-address -x -d 'Where the file search listens'
complete -c quarrynet-services -n $listening -l port -x -d 'The port of all services'
complete -c quarrynet-services -n $listening -l proxy-address -x -d 'Where the proxy listens'
complete -c quarrynet-services -n $listening -l proxy-port -x -d 'Its port'
complete -c quarrynet-services -n $serve -l user -x -a '(__fish_complete_users)' -d 'The user that root becomes'
complete -c quarrynet-services -n $serve -l log-queries -d 'Write each search to the error output'

complete -c quarrynet-services -n '__fish_seen_subcommand_from check' -l words -x -d 'The words to search for'
complete -c quarrynet-services -n '__fish_seen_subcommand_from crawl serve check status' -l config -rF -d 'Which sources are asked'
complete -c quarrynet-services -n '__fish_seen_subcommand_from index crawl serve check status' -l data -x -a '(__fish_complete_directories)' -d 'Where the index is kept'
