# shellcheck shell=bash
# What ./dev needs of a machine, sourced by it.  Packages have Debian's names, but what is asked for is what they
# bring: a program by its name, a header by the compiler, a few by a file.  So a machine of another kind, or one that
# got them in another way, has them too.

hasProgram() { command -v "$1" >/dev/null; }

# hasHeader HEADER [FLAGS...]
hasHeader() {
    local header=$1
    shift
    echo "#include <$header>" | g++ -std=c++20 -E -o /dev/null "$@" -x c++ - 2>/dev/null
}

# linksWith COMPILER FLAGS...: an empty program is linked.
linksWith() { echo 'int main() {}' | "$@" -x c++ -o /dev/null - 2>/dev/null; }

# Whether the machine has what a package brings.
has() {
    case $1 in
        abigail-tools) hasProgram abidiff ;;
        binutils) hasProgram objcopy ;;
        binutils-s390x-linux-gnu) hasProgram s390x-linux-gnu-ld ;;
        build-essential) hasProgram make && hasProgram dpkg-buildpackage ;;
        clang) hasProgram clang++ ;;
        clang-16) hasProgram clang++-16 ;;
        debhelper) hasProgram dh ;;
        dpkg-dev) hasProgram dpkg-buildpackage ;;
        g++-mingw-w64-i686-posix) hasProgram i686-w64-mingw32-g++-posix ;;
        g++-mingw-w64-x86-64-posix) hasProgram x86_64-w64-mingw32-g++-posix ;;
        g++-multilib) linksWith g++ -m32 ;;
        googletest) [ -f /usr/src/googletest/CMakeLists.txt ] ;;
        libbenchmark-dev) hasHeader benchmark/benchmark.h ;;
        libboost-dev) hasHeader boost/shared_ptr.hpp ;;
        libc++-16-dev | libc++abi-16-dev) linksWith clang++-16 -stdlib=libc++ ;;
        libc6-dev-s390x-cross) [ -f /usr/s390x-linux-gnu/include/stdio.h ] ;;
        libclang-rt-14-dev) linksWith clang++ -fsanitize=address,undefined ;;
        libglib2.0-dev) pkgconf --exists glib-2.0 ;;
        libgtest-dev) hasHeader gtest/gtest.h ;;
        libinih-dev) hasHeader ini.h ;;
        libleveldb-dev) hasHeader leveldb/db.h ;;
        libncurses-dev) hasHeader curses.h ;;
        libpng-dev) hasHeader png.h ;;
        libprotobuf-dev) hasHeader google/protobuf/message.h ;;
        libquantlib0-dev) hasHeader ql/version.hpp ;;
        libsqlite3-dev) hasHeader sqlite3.h ;;
        libssl-dev) hasHeader openssl/evp.h ;;
        libstdc++-12-dev-s390x-cross) [ -d /usr/s390x-linux-gnu/include/c++/12 ] ;;
        libx11-dev) hasHeader X11/Xlib.h ;;
        llvm) hasProgram llvm-profdata ;;
        locales) [ -f /usr/share/i18n/locales/de_DE ] ;;
        ninja-build) hasProgram ninja ;;
        protobuf-compiler) hasProgram protoc ;;
        python3-matplotlib) /usr/bin/python3 -c 'import matplotlib' 2>/dev/null ;;
        qemu-user) hasProgram qemu-s390x ;;
        tzdata) [ -f /usr/share/zoneinfo/Australia/Lord_Howe ] ;;
        wine64) [ -x /usr/lib/wine/wine64 ] ;;
        *) hasProgram "$1" ;;  # clang-format, clang-tidy, cmake, doxygen, g++, gdb, linkchecker, lintian, pkgconf, python3
    esac
}

# Installs those of the named packages that the machine lacks, where it has apt and may; says which they are elsewhere.
need() {
    local missing=() package root=()
    for package in "$@"; do has "$package" || missing+=("$package"); done
    [ ${#missing[@]} -eq 0 ] && return
    [ "$(id -u)" -eq 0 ] || root=(sudo)
    if ! hasProgram apt-get || ! hasProgram "${root[0]:-apt-get}"; then
        echo "This needs what Debian's packages ${missing[*]} bring: install it, and call ./dev again." >&2
        exit 2
    fi
    echo "Installing: ${missing[*]}"
    "${root[@]}" apt-get update -qq
    "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}
