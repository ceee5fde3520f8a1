# shellcheck shell=bash
# Sourced by the end-to-end scripts. make_work_dir makes the temporary folder $work, removed
# at exit with the simulator (if one runs) stopped first. start_listening_sim COMMAND... runs COMMAND (a simulator
# with --listen 127.0.0.1:0) in the background with its log on a FIFO in $work, reads the log
# until the command server says which TCP port it took (no polling, no sleep), and keeps
# reading it afterwards so the simulator never blocks on it. Sets sim_pid and tcp (HOST:PORT).
make_work_dir() {
    work=$(mktemp -d)
    sim_pid=
    trap stop_sim_and_remove_work_dir EXIT
}

stop_sim_and_remove_work_dir() {
    if [ -n "$sim_pid" ]; then kill -TERM "$sim_pid" 2> /dev/null || true; fi
    rm -rf "$work"
}

# shellcheck disable=SC2034 # sim_pid and tcp are for the sourcing script
start_listening_sim() {
    mkfifo "$work/log"
    "$@" 2> "$work/log" &
    sim_pid=$!
    exec 3< "$work/log"
    tcp=
    local line
    while IFS= read -r line <&3; do
        case $line in
            *"listening on 127.0.0.1:"*) tcp=${line##*listening on } ;;
            *"listening on unix:"*) ;;
            *) echo "$line" >&2 ;;
        esac
        [ -n "$tcp" ] && break
    done
    [ -n "$tcp" ] || { echo "frontpanel-sim did not start listening" >&2; return 1; }
    cat <&3 > "$work/rest.log" &
}
