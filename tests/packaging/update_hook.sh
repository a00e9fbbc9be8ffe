# Sourced by the tests with a machine, which define inside().

# Runs the command that the package tool runs after it has updated its lists. Fails without such a command.
run_update_hook() {
    local command
    command=$(inside apt-config dump |
        sed -n 's/^APT::Update::Post-Invoke-Success:: "\(test -x .*quarrynet.*\)";$/\1/p')
    [ -n "$command" ] || { echo "the package tool has no hook of the services" >&2; return 1; }
    inside sh -c "$command"
}
