# Completions of fish for quarrynet.

complete -c quarrynet -f
complete -c quarrynet -s h -l help -d 'Show the options'
complete -c quarrynet -l help-all -d 'Show the options, with those of Qt'
complete -c quarrynet -s v -l version -d 'Show the version'
complete -c quarrynet -l tab -x -d 'Show a tab' -a "
    web\t'Search The Internet'
    page\t'Specific Page Search'
    image\t'Image Search'
    download\t'Search For Downloads'
    file\t'Specific File Search'
    1\t'Search The Internet'
    2\t'Specific Page Search'
    3\t'Image Search'
    4\t'Search For Downloads'
    5\t'Specific File Search'"
complete -c quarrynet -l tour -x -a '(__fish_complete_directories)' -d 'Take screenshots, then exit'
complete -c quarrynet -l language -x -a "en\tEnglish de\tGerman" -d 'Language of texts and manual'
