# The checks that read the code instead of running it. Sourced by ./dev.

# changedFiles: what differs from the last commit, or when nothing does, what the last commit changed. One path a line.
changedFiles() {
    local changed
    changed=$({
        git diff --name-only --diff-filter=d HEAD
        git ls-files --others --exclude-standard
    } 2>/dev/null | sort -u)
    [[ -n $changed ]] || changed=$(git show --name-only --diff-filter=d --format= HEAD 2>/dev/null)
    echo "$changed"
}

# sourcesToTidy FILE...: the sources that show the code of these files to clang-tidy: a source itself, and for a header
# the source of the same name or else one that includes it.
sourcesToTidy() {
    local file found
    for file in "$@"; do
        case $file in
            *.cpp) found=$file ;;
            *.h)
                found=${file%.h}.cpp
                [[ -f $found ]] || found=$(grep -rlF --include='*.cpp' "\"${file#src/}\"" src tests benchmarks | head -n 1)
                ;;
            *) continue ;;
        esac
        [[ -n $found ]] && echo "$found"
    done | sort -u
}

# runLint [--all]: every check, also after one has failed; fails when any did.
runLint() {
    local failed=() files=() all=() sources=()
    mapfile -t all < <(find src tests benchmarks -name '*.h' -o -name '*.cpp' | sort)
    if [[ ${1:-} == --all ]]; then
        files=("${all[@]}")
    else
        mapfile -t files < <(changedFiles | grep -E '^(src|tests|benchmarks)/.*\.(h|cpp)$')
    fi

    say "Rules of the tree"
    python3 tools/check_tree.py . || failed+=("rules of the tree")

    say "Formatting of all files"
    clang-format-19 --dry-run -Werror "${all[@]}" || failed+=(formatting)

    build debug
    mapfile -t sources < <(sourcesToTidy "${files[@]}")
    say "clang-tidy on ${#sources[@]} file(s)"
    # A file that nothing compiles (a template of a test, say) is not in the database and has nothing to be checked with.
    if [[ ${#sources[@]} -gt 0 ]]; then
        printf '%s\0' "${sources[@]}" |
            xargs -0 -n 1 -P "$(nproc)" clang-tidy-19 --quiet -p build/debug 2> >(grep -v 'warnings generated' >&2) ||
            failed+=(clang-tidy)
    fi

    say "qmllint"
    lintQml || failed+=(qmllint)

    [[ ${#failed[@]} -eq 0 ]] || fail "not clean: ${failed[*]}"
    say "Clean."
}

# lintQml: qmllint over the modules as they were built, where each file stands beside its module's description, which it
# needs to know the types. A warning counts as a failure.
lintQml() {
    local file folder files=() output
    while read -r file; do
        folder=$(dirname "$file")
        files+=("build/debug/qml/Cairnfield/${folder##*/}/${file##*/}")
    done < <(find src -name '*.qml' | sort)
    [[ ${#files[@]} -gt 0 ]] || return 0
    output=$(/usr/lib/qt6/bin/qmllint -I build/debug/qml "${files[@]}" 2>&1) || true
    [[ -z $output ]] || { echo "$output"; return 1; }
}
