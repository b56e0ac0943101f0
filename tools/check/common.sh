# Shared by the rules of this folder; source it first. A rule prints file:line messages and exits with 1.

cd "$(dirname "${BASH_SOURCE[0]}")/../.."
QZR_BIN=${QZR_BIN:-build/debug/bin}
folders=(core string variant stream fio param supp)
status=0

git -c safe.directory='*' rev-parse --git-dir >/dev/null || exit 1

# tracked PATTERN...: the tree's own files that match, new ones not yet added included, deleted ones not.
tracked() {
    git -c safe.directory='*' ls-files --cached --others --exclude-standard -- "$@" |
        while IFS= read -r file; do
            if [ -f "$file" ]; then printf '%s\n' "$file"; fi
        done
}

library_sources() {
    local folder patterns=()
    for folder in "${folders[@]}"; do patterns+=("$folder/*.cpp" "$folder/*.h"); done
    tracked "${patterns[@]}"
}

public_headers() { tracked 'include/*.h'; }

problem() {
    printf '%s\n' "$*"
    status=1
}

# need_built NAME: the path of a built file, or the end of the rule.
need_built() {
    [ -f "$QZR_BIN/$1" ] || { echo "$QZR_BIN/$1 is not built"; exit 1; }
    printf '%s\n' "$QZR_BIN/$1"
}
