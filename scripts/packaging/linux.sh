# Sourced by scripts/package: the packages for the Linux on which it runs. $tree has the sources,
# $packages gets the packages of $version.

linux_packages() {  # [CMAKE OPTION]...
  local build=$tree/build/install
  (
    cd "$tree"
    quietly cmake --preset install "$@"
    cmake --build --preset install
    DESTDIR=$build/root quietly cmake --install "$build" --strip --prefix /usr/local
  )
  archive "$build/root/usr/local" "quillmark-mcp-$version-Linux-$(uname -m)"
  ! command -v dpkg-shlibdeps >/dev/null || debian_package "$build"
}

# Root owns the files in it, whoever makes it.
debian_package() {  # FOLDER OF THE BUILD
  (cd "$1" && quietly fakeroot cpack -G DEB -B "$1/packed")
  cp "$1"/packed/*.deb "$packages"
}
