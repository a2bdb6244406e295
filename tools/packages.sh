# Installs the Debian packages named as arguments that are missing. Sourced; needs root or sudo only when one is.
install_missing() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "Installing: ${missing[*]}"
  local root=()
  [ "$(id -u)" -eq 0 ] || root=(sudo)
  "${root[@]}" apt-get update -qq
  "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

PACKAGES_BUILD=(cmake ninja-build ccache g++ zlib1g-dev g++-mingw-w64-x86-64-posix libz-mingw-w64-dev googletest libxxhash-dev)
PACKAGES_WINE=(wine wine64 fonts-wine fonts-liberation xvfb xdotool)
PACKAGES_TEST=(clang-format strace binutils file)
PACKAGES_FUZZ=(clang-14)
PACKAGES_PACKAGE=(nsis zip unzip cmark-gfm)
