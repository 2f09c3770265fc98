# Which Debian 12 packages each job needs, and installing what is missing. Sourced by ./dev.

# What the built program needs on the machine.
runPackages=(
    git fonts-dejavu-core
    qml6-module-qtqml qml6-module-qtqml-models qml6-module-qtqml-workerscript
    qml6-module-qtquick qml6-module-qtquick-controls qml6-module-qtquick-dialogs qml6-module-qt-labs-folderlistmodel qml6-module-qtquick-layouts
    qml6-module-qtquick-shapes qml6-module-qtquick-templates qml6-module-qtquick-window
)

# What configuring and building it needs.
buildPackages=(
    cmake ninja-build pkg-config ccache clang-19 lld-19 libclang-rt-19-dev
    qt6-base-dev qt6-declarative-dev qt6-declarative-dev-tools qt6-svg-dev
    nlohmann-json3-dev libicu-dev libssl-dev libglib2.0-dev libspdlog-dev libfmt-dev uuid-dev
)

# A display and a session bus of our own, and looking at what is on it.
desktopPackages=(xvfb xauth xdotool imagemagick dbus dbus-daemon)

testPackages=(
    libgtest-dev libgmock-dev python3 python3-pyatspi python3-dbus python3-gi gh xclip
    qml6-module-qttest at-spi2-core dunst "${desktopPackages[@]}"
)
benchPackages=(libgtest-dev libgmock-dev libbenchmark-dev python3)
lintPackages=(clang-format-19 clang-tidy-19 libgtest-dev libgmock-dev python3)
coveragePackages=(llvm-19)
fuzzPackages=(llvm-19)  # names the functions of a crash

# missingPackages NAME...: those that are not installed, one a line.
missingPackages() {
    local installed package
    installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "$@" 2>/dev/null || true)
    for package in "$@"; do
        grep -qx "installed $package" <<<"$installed" || echo "$package"
    done
}

# ensurePackages NAME...: installs what is missing. As root without a question, otherwise after one; silent and without
# touching apt when everything is there.
ensurePackages() {
    command -v dpkg-query >/dev/null || fail "this needs Debian 12 (dpkg-query was not found)"
    local missing=() asRoot=()
    mapfile -t missing < <(missingPackages "$@")
    [[ ${#missing[@]} -eq 0 ]] && return

    say "These Debian packages are missing: ${missing[*]}"
    if [[ $EUID -ne 0 ]]; then
        local byHand="apt-get install --no-install-recommends ${missing[*]}"
        command -v sudo >/dev/null || fail "without sudo I cannot install them; as root run: $byHand"
        [[ -t 0 ]] || fail "nobody is there to be asked; run: sudo $byHand"
        local answer=
        read -rp "Install them with sudo apt-get? [y/N] " answer || true
        [[ $answer == [yY]* ]] || fail "not installed"
        asRoot=(sudo)
    fi
    asRoot+=(env DEBIAN_FRONTEND=noninteractive apt-get -q)
    # The lists are fetched only where they do not know a package, or where what they know is out of date.
    if ! apt-cache show "${missing[@]}" >/dev/null 2>&1; then
        "${asRoot[@]}" update >&2
    fi
    local install=("${asRoot[@]}" install -y --no-install-recommends "${missing[@]}")
    "${install[@]}" >&2 || { "${asRoot[@]}" update >&2 && "${install[@]}" >&2; } ||
        fail "the packages could not be installed"
}
