# What the demonstrations share; sourced by them.

# A line that says so to whoever passes on what is shown.
END_OF_SHOW=$'\004'

say() { printf '\n== %s\n' "$*"; }

fail()
{
    echo "$(basename "$0"): $*" >&2
    exit 1
}

# Shows a command as it would be typed.
show_command()
{
    local words
    printf -v words ' %q' "$@"
    echo "\$${words}"
}

# start_devices COMMAND...: starts the simulator by the command, and waits until its devices listen. Sets simulator to
# its process, and devices to a line for each one, of name, MAC address and IP address.
start_devices()
{
    local output line
    exec {output}< <(exec "$@" </dev/null)
    simulator=$!
    devices=()
    while read -r -t 30 line <&"$output" && [ "$line" != ready ]; do
        devices+=("$line")
    done
    [ "${line:-}" = ready ] || fail "the simulated devices do not start"
}
