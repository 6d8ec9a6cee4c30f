# Stands before the engine's `call` and spoils the replies that it is told to, each once: plan/SUBCOMMAND names how.

folder=${BASH_SOURCE[0]%/*}
real=$folder/call-itself
subcommand=${1-none}
plan=$folder/plan/$subcommand
spoilt=$folder/plan/.$subcommand.$$
how=
if mv "$plan" "$spoilt" 2>/dev/null; then
    read -r how <"$spoilt"
    rm "$spoilt"
    echo "$subcommand: $how" >>"$folder/plan/.told"
fi

case $how in
    empty) exit 0 ;;
    noise) head -c 5000 /dev/urandom; exit 0 ;;
    type) printf '17'; exit 0 ;;
    unicode) printf '[{"id":"\xff\xfe\xc3"}'; exit 0 ;;
    deep) printf '[%.0s' {1..5000}; exit 0 ;;
    half) reply=$(/bin/bash "$real" "$@"); printf '%s' "${reply:0:${#reply}/2}"; exit 0 ;;
    twice) /bin/bash "$real" "$@"; exec /bin/bash "$real" "$@" ;;
    refused) echo 'Error: It is raining.' >&2; exit 1 ;;
    flood) head -c 3000000 /dev/zero | tr '\0' 'x' >&2; exit 1 ;;
    missing) exit 127 ;;
    killed) kill -9 $$ ;;
    done-and-killed) /bin/bash "$real" "$@"; kill -9 $$ ;;
    hang) exec tail -f /dev/null ;;
esac
exec /bin/bash "$real" "$@"
