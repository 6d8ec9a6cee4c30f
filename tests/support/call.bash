# The scripted engine: records every argument list and answers as the test has said.
#
# Beside the home folder stand "calls" (one file per call: the number of arguments and the arguments, each ended
# by NUL), "answers" (SUBCOMMAND.N for the N-th call of a subcommand, else "SUBCOMMAND ARGUMENT" for those with that first
# argument, which may have a value behind "=", else SUBCOMMAND: the name of a folder with "before", "out", "err", "after",
# "status"), "gates" and "book". Everything ends when that folder is gone. Without an answer a subcommand of the engine
# ends well and says nothing.

# What can be answered: the engine's subcommands, and one for tests that wait for all calls before it.
commands='process history status resume pause continue cancel retry rename hide copy speaker edit split models settings
doctor settle'
root=${BASH_SOURCE[0]%/home/Library/*}
shopt -s nullglob
exec {never}<>"$root/never"

locked() {
    local lock status
    exec {lock}>>"$root/lock"
    flock "$lock"
    "$@"
    status=$?
    exec {lock}>&-
    return "$status"
}

counted() {
    local number=0
    [[ -e $1 ]] && read -r number <"$1"
    echo $((++number)) >"$1"
    REPLY=$number
}

record() {
    local name
    counted "$root/total"
    printf -v name '%08d' "$REPLY"
    counted "$root/count.$subcommand"
    printf '%s\0' "$#" "$@" >"$root/calls/$name"
}

# Waits until the test has opened the gate; the process ends when the test's folder is gone.
wait_for() {
    until [[ -e $root/gates/$1 ]]; do
        [[ -d $root/gates ]] || exit 1
        read -rt 0.01 -u "$never"
    done
}

hang() {
    wait_for 'never opened'
}

# A small engine: every file handed over becomes a job in the book, which is the history.
book_add() {
    local title=${1##*/} jobs=("$root"/book/*.job) number status=queued
    number=$((${#jobs[@]} + 1))
    title=${title%.*}
    [[ -e $root/book/first-status ]] && read -r status <"$root/book/first-status"
    printf -v name '%08d' "$number"
    printf '{"id":"job-%d","title":"%s","status":"%s","paused":false,"call_dir":"/calls/%s"}' \
        "$number" "$title" "$status" "$title" >"$root/book/$name.job"
}

book_list() {
    local job separator=
    printf '['
    for job in "$root"/book/*.job; do
        printf '%s%s' "$separator" "$(<"$job")"
        separator=,
    done
    printf ']'
}

subcommand=${1-none}
subcommand=${subcommand//\//_}
locked record "$@"
nth=$REPLY

choice=$root/answers/$subcommand.$nth
[[ -e $choice ]] || choice="$root/answers/$subcommand ${2%%=*}"
[[ -e $choice ]] || choice=$root/answers/$subcommand
if [[ ! -e $choice ]]; then
    [[ " ${commands//$'\n'/ } " == *" $subcommand "* ]] && exit 0
    echo "Error: “$subcommand” is not a command." >&2
    exit 2
fi
read -r answer <"$choice"
answer=$root/answers/$answer
. "$answer/before"
[[ -s $answer/out ]] && cat "$answer/out"
[[ -s $answer/err ]] && cat "$answer/err" >&2
. "$answer/after"
read -r status <"$answer/status"
exit "$status"
