# shellcheck shell=bash
# What every script begins with; sourced, not run.
#
# A script sets `usage` (one line) before it sources this file. From here on it stands in the
# project's root, whatever folder it was called from, and a command that fails is named in one line.
set -euo pipefail

script_name="$(basename "$(dirname "$0")")/$(basename "$0")"
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)"
cd "$root"

# die MESSAGE [STATUS]: ends the script with one line on standard error.
die() {
    echo "$script_name: $1" >&2
    trap - ERR
    exit "${2:-1}"
}

on_error() {
    local status=$?
    echo "$script_name: failed (status $status) at line $1: $2" >&2
    exit "$status"
}
trap 'on_error "$LINENO" "$BASH_COMMAND"' ERR
set -o errtrace

if [[ "${1:-}" == "--help" || "${1:-}" == "-h" ]]; then
    # shellcheck disable=SC2154  # each script sets it
    echo "$usage"
    exit 0
fi

if command -v ccache > /dev/null; then
    # Checkouts side by side share what they compile.
    export CCACHE_BASEDIR="$root" CCACHE_NOHASHDIR=1
    export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi

# jobs_at_once: how many jobs to run at once; SWEEPWRIGHT_JOBS overrides the number of processors.
jobs_at_once() { echo "${SWEEPWRIGHT_JOBS:-$(nproc)}"; }

# known_preset NAME: whether CMakePresets.json has such a configure preset.
known_preset() {
    grep -q "^  \"$1\"" <<< "$(cmake --list-presets)"
}

# step NAME WORDS...: runs one step of many and notes its time and outcome; finish tells them all.
steps=()
steps_failed=0
step() {
    local name="$1" started=$SECONDS outcome=passed
    shift
    echo "== $name: $*"
    "$@" || { outcome="FAILED (status $?)"; steps_failed=$((steps_failed + 1)); }
    steps+=("$(printf '%-16s %5d s  %s' "$name" "$((SECONDS - started))" "$outcome")")
}

# finish: the table of the steps; ends the script, with status 1 if any failed.
finish() {
    printf '\n%s\n' "$script_name"
    printf '%s\n' "${steps[@]}"
    [[ "$steps_failed" -eq 0 ]] || die "$steps_failed of ${#steps[@]} steps failed"
    echo "all ${#steps[@]} steps passed"
    exit 0
}

# show_progress WHAT: on a terminal, one line that tells how far the output is that it reads: Ninja's
# [done/all], or the percentage in apt's status lines.
show_progress() {
    local line
    while IFS= read -r line; do
        if [[ "$line" =~ ^\[([0-9]+)/([0-9]+)\] ]]; then
            printf '\r%s %d %%\e[K' "$1" "$((100 * BASH_REMATCH[1] / BASH_REMATCH[2]))"
        elif [[ "$line" =~ ^(dl|pm)status:[^:]*:([0-9]+) ]]; then
            printf '\r%s %d %%\e[K' "$1" "${BASH_REMATCH[2]}"
        fi
    done
    printf '\r\e[K'
}

# quietly WHAT LOG COMMAND...: runs a command with its output in a log, of which only progress and
# the time it took are shown. When it fails, the log's last lines tell why.
quietly() {
    local what="$1" log="$2" started=$SECONDS status=0
    shift 2
    mkdir -p "$(dirname "$log")"
    if [[ -t 1 ]]; then
        "$@" 2>&1 | tee "$log" | show_progress "$what" || status=$?
    else
        "$@" > "$log" 2>&1 || status=$?
    fi
    if [[ $status -ne 0 ]]; then
        tail -n 30 "$log" >&2
        echo "$what: failed; all it said is in $log" >&2
        return "$status"
    fi
    echo "$what: done in $((SECONDS - started)) s"
}

# tracked PATTERN...: the project's files that match, one a line. Where the folder is no git
# checkout (a source archive), all files below it but those in build/.
tracked() {
    if [[ -e .git ]] && command -v git > /dev/null; then
        # The checkout may belong to another user than the one who runs this, as in a container.
        git -c safe.directory="$root" ls-files --cached --others --exclude-standard -- "$@" |
            while IFS= read -r file; do [[ -e "$file" ]] && echo "$file"; done
    else
        local pattern names=()
        for pattern in "$@"; do names+=(-o -name "$pattern"); done
        find . -path ./build -prune -o -type f \( "${names[@]:1}" \) -print | sed 's|^\./||'
    fi | sort
}
