#!/usr/bin/env bash
# Compiles libntlm for Windows from Debian's signed source, once per machine and version. Prints
# the folder with its include/ and lib/.
set -euo pipefail

cache=${XDG_CACHE_HOME:-$HOME/.cache}/quorvane
version=$(dpkg-query -W -f '${source:Version}' libntlm0-dev)
prefix=$cache/libntlm-$version-mingw-w64

# Shows the end of the log when the work was cut short, and leaves nothing behind.
clean_up() {
    if [ ! -e "$prefix" ]; then
        tail -n 20 "$work/log" >&2
        echo "scripts/setup: libntlm could not be compiled for Windows" >&2
    fi
    rm -rf "$work"
}

# The archives that the machine installs from, as places of source packages.
source_entries() {
    apt-get indextargets --format 'deb-src $(REPO_URI) $(RELEASE) main' \
        'Created-By: Packages' 'Component: main' | sort -u
}

# apt with package lists of its own, so that the machine's stay as they are.
apt_source() {
    apt-get -q -o Dir::Etc::sourcelist="$work/sources.list" -o Dir::Etc::sourceparts=/dev/null \
        -o Dir::State::lists="$work/lists" -o Dir::Cache="$work/cache" \
        -o APT::Sandbox::User="$(id -un)" "$@"
}

make_library() {
    mkdir -p lists/partial cache/archives/partial source
    source_entries >sources.list
    apt_source update
    apt_source source --download-only "libntlm=$version"
    tar xf libntlm_*.orig.tar.?z -C source --strip-components=1
    cd source
    ./configure --host=x86_64-w64-mingw32 CC=x86_64-w64-mingw32-gcc-posix CFLAGS=-O2 \
        --disable-shared --enable-static --prefix="$work/installed"
    make -j"$(nproc)"
    make install
}

if [ ! -e "$prefix" ]; then
    mkdir -p "$cache"
    work=$(mktemp -d "$cache/libntlm.XXXXXX")
    trap clean_up EXIT
    echo "Compiling libntlm $version for Windows." >&2
    cd "$work"
    make_library >log 2>&1
    # Moved when complete: a run that was cut off leaves nothing that looks finished.
    mv "$work/installed" "$prefix"
fi
echo "$prefix"
